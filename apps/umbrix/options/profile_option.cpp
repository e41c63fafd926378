// SPDX-License-Identifier: MIT
#include "options/profile_option.h"

#include "options/saving_options.h"
#include "toolkit/pictures/naming.h"
#include "toolkit/pictures/output_format.h"

#include <functional>

namespace umbrix_cli {

CLI::Option* declare_profile(CLI::App& command, ProfileOption& option)
{
    std::function<void(std::string const&)> const take = [&option](std::string const& name) {
        option = {name, read_profile(name)};
    };
    return command
        .add_option_function<std::string>(
            "--profile", take,
            "Name and save what is written as an engine wants it: a shipped profile (`umbrix profile list`) "
            "or "
            "a file ending in .toml. Options given here come before it, and it comes before a preset")
        ->type_name("PROFILE|FILE")
        ->group("Preset");
}

void follow_profile(ProfileOption const& option, ProfileMap map, CommonOptions& common)
{
    if (!option) {
        return;
    }
    ProfileFile const& file = option.file(map);
    if (common.output.empty()) {
        common.output = default_output(common.input, file.suffix, option.profile->format).string();
    }
    OutputFormat const* const format = output_format(common.output);
    if (file.depth && format != nullptr && format->holds(*file.depth)) {
        common.saving = with_depth(common.saving, file.depth);
    }
}

void follow_profile(ProfileOption const& option, ProfileMap map, CommonOptions& common, Settings& settings)
{
    follow_profile(option, map, common);
    settings.normal_y = option ? option.profile->normal_y : settings.normal_y;
}

} // namespace umbrix_cli
