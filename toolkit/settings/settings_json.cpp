// SPDX-License-Identifier: MIT
#include "toolkit/settings/settings_json.h"

#include "toolkit/base/overloaded.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/settings/setting_table.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::toolkit {

nlohmann::json to_json(Settings const& settings)
{
    nlohmann::json fields;
    for (SettingRow const& row : setting_table()) {
        std::visit(Overloaded{
                       [&](auto Settings::*field) { fields[row.name] = settings.*field; },
                       [&]<typename Value>(std::optional<Value> Settings::*field) {
                           fields[row.name] = (settings.*field).has_value()
                                                  ? nlohmann::json(*(settings.*field))
                                                  : nlohmann::json(nullptr);
                       },
                   },
                   row.field);
    }
    return fields;
}

Settings settings_from_json(nlohmann::json const& fields)
{
    Settings settings = kDefaults;
    for (SettingRow const& row : setting_table()) {
        nlohmann::json const& value = fields.at(row.name);
        std::visit(Overloaded{
                       [&](auto Settings::*field) { value.get_to(settings.*field); },
                       [&]<typename Value>(std::optional<Value> Settings::*field) {
                           settings.*field =
                               value.is_null() ? std::nullopt : std::optional(value.get<Value>());
                       },
                   },
                   row.field);
    }
    return settings;
}

} // namespace umbrixlib::toolkit
