// SPDX-License-Identifier: MIT
#include "toolkit/settings/graphics_settings.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

void to_json(nlohmann::json& fields, Graphics const& graphics)
{
    fields = {{"device", nullptr}, {"match_cpu", graphics.match_cpu}};
    if (graphics.device) {
        fields["device"] = *graphics.device;
    }
}

void from_json(nlohmann::json const& fields, Graphics& graphics)
{
    nlohmann::json const& device = fields.at("device");
    graphics.device = device.is_null() ? std::nullopt : std::optional(device.get<int>());
    fields.at("match_cpu").get_to(graphics.match_cpu);
}

} // namespace umbrixlib::toolkit
