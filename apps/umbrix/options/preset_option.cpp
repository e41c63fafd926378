// SPDX-License-Identifier: MIT
#include "options/preset_option.h"

#include "toolkit/settings/preset.h"

namespace umbrix_cli {

void declare_preset(CLI::App& command, Settings& settings)
{
    // Options act in the order of their declaration, not in that of the command line.
    std::function<void(std::string const&)> const apply = [&settings](std::string const& name) {
        settings = read_preset(name).settings;
    };
    command
        .add_option_function<std::string>("--preset", apply,
                                          "Take the options from a preset: a shipped one (`umbrix preset "
                                          "list`) or a file ending in .toml. Options given here come before "
                                          "its own")
        ->type_name("NAME|FILE")
        ->group("Preset");
}

} // namespace umbrix_cli
