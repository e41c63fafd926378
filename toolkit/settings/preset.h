// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/defaults.h"

#include <string>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

struct SettingRow;

/// The options of a run under a name. What a preset does not mention has its default.
struct Preset {
    std::string description; ///< One line; may be empty.
    Settings settings = kDefaults;
};

/// Key of an option in a preset: its name with underscores, as in all files that the tool reads.
std::string preset_key(SettingRow const& row);

/// A value as it stands in a preset, which is valid as JSON, too: true, 0.05, "auto".
std::string preset_value(SettingRow const& row, Settings const& settings);

/// Names of the shipped presets in the order of the alphabet.
std::vector<std::string_view> shipped_presets();

/// Reads a preset. A @p name with a '/' in it or with ".toml" at its end is that of a file, any other one
/// that of a shipped preset. A Failure names the file, the line and the key at fault.
Preset read_preset(std::string const& name);

/// The preset in TOML with every key, under the headings that the help has.
std::string preset_text(Preset const& preset);

/// Whether a text can describe a preset: it has no line breaks nor other control characters.
bool is_one_line(std::string_view text);

/// Throws a Failure unless @p file can be written to and afterwards found as a preset or a profile.
void check_preset_output(std::string const& file, bool overwrite);

} // namespace umbrixlib::toolkit
