// SPDX-License-Identifier: MIT
#pragma once

#include "options/common_options.h"
#include "toolkit/settings/profile.h"
#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <optional>
#include <string>

namespace umbrix_cli {

/// What --profile asks for.
struct ProfileOption {
    std::string name;               ///< As it was given.
    std::optional<Profile> profile; ///< Empty: it was not.

    explicit operator bool() const { return profile.has_value(); }
    ProfileFile const& file(ProfileMap map) const { return profile->file(map); }
};

/// Adds --profile to @p command.
CLI::Option* declare_profile(CLI::App& command, ProfileOption& option);

/// Does as the profile says, if there is one, where the command line says nothing: names the output after the
/// input, and sets the depth if the output's format has it. A preset comes behind.
void follow_profile(ProfileOption const& option, ProfileMap map, CommonOptions& common);

/// The same, and where green points.
void follow_profile(ProfileOption const& option, ProfileMap map, CommonOptions& common, Settings& settings);

} // namespace umbrix_cli
