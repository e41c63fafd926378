// SPDX-License-Identifier: MIT
#include "options/map_usage.h"

#include "terminal/complaint.h"
#include "toolkit/pictures/output_format.h"

namespace umbrix_cli {

void check_map_usage(Settings const& settings, std::string const& output)
{
    if (!settings.light && !settings.occlusion) {
        throw UsageError("--no-light", "with --no-occlusion nothing is left to make a map of",
                         "leave one of them out");
    }
    if (settings.min > settings.max || settings.h_min > settings.h_max) {
        bool const result = settings.min > settings.max;
        throw UsageError(result ? "--min" : "--h-min", "it is above the upper limit", "give a smaller one");
    }
    if (settings.height_in_alpha && !output.empty()) {
        OutputFormat const* const format = output_format(output);
        if (format != nullptr && !format->alpha) {
            throw no_alpha(*format, output, ", or leave --height-in-alpha out");
        }
    }
}

} // namespace umbrix_cli
