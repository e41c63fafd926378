// SPDX-License-Identifier: MIT
#include "commands/light/albedo_option.h"

#include "toolkit/files/preflight.h"

#include <fmt/format.h>

namespace umbrix_cli {

void declare_albedo(CLI::App& command, std::string& albedo, std::string const& effect)
{
    command
        .add_option(
            "--albedo", albedo,
            fmt::format("Colours of the surface in the size of the map: sRGB, or linear floats. {}", effect))
        ->type_name("FILE")
        ->group(kFilesGroup);
}

void check_albedo(CommonOptions const& options, std::string const& suffix, std::string const& albedo)
{
    if (!albedo.empty()) {
        check_input(albedo);
        check_that_is_kept(prepare_output(options, suffix), albedo, "the albedo");
    }
}

} // namespace umbrix_cli
