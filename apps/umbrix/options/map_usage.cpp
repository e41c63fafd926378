// SPDX-License-Identifier: MIT
#include "options/map_usage.h"

#include "toolkit/base/failure.h"
#include "toolkit/pictures/output_format.h"

#include <fmt/format.h>

namespace umbrix_cli {

void check_map_usage(Settings const& settings, std::string const& output)
{
    if (!settings.light && !settings.occlusion) {
        throw Failure("--no-light", "with --no-occlusion nothing is left to make a map of",
                      "leave one of them out", kWrongUsage);
    }
    if (settings.min > settings.max || settings.h_min > settings.h_max) {
        bool const result = settings.min > settings.max;
        throw Failure(result ? "--min" : "--h-min", "it is above the upper limit", "give a smaller one",
                      kWrongUsage);
    }
    if (settings.height_in_alpha && !output.empty()) {
        OutputFormat const* const format = output_format(output);
        if (format != nullptr && !format->alpha) {
            throw Failure(output, fmt::format("{} files hold no alpha", format->extension),
                          "give a name ending in .png, or leave --height-in-alpha out", kWrongUsage);
        }
    }
}

} // namespace umbrix_cli
