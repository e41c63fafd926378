// SPDX-License-Identifier: MIT
#pragma once

#include "settings.h"

#include <CLI/App.hpp>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <variant>

namespace umbrix_cli {

/// The member of `Settings` that an option sets.
using SettingsField =
    std::variant<bool Settings::*, int Settings::*, float Settings::*, std::optional<float> Settings::*,
                 Modes Settings::*, std::optional<Kind> Settings::*, NormalY Settings::*>;

/// The commands that have an option. Those of kForPresets alone are keys of a preset that commands declare in
/// their own words: what the input is, and where green points in it.
enum OptionUser : unsigned { kForPresets = 0, kForMap = 1, kForNormal = 2, kForRelight = 4, kForFit = 8 };

/// One option of a run. The table of them yields the parsing, the help, the presets and the job that a worker
/// is sent.
struct OptionRow {
    char const* name;  ///< Without the dashes.
    char const* group; ///< Heading in the help.
    SettingsField field;
    double minimum; ///< Of a number, and `maximum`; both allowed.
    double maximum;
    char const* unit; ///< Of a number, as it follows the range: " texels, 0 is off".
    unsigned users;   ///< Sum of OptionUser.
    char const* help; ///< One sentence without a full stop.
};

/// Every option of a run, in the order of the help.
std::span<OptionRow const> option_table();

/// Help text of a row with its unit, range and default.
std::string describe(OptionRow const& row);

/// What --mode calls @p mode, or its number.
std::string name_of_mode(Modes mode);

/// The words for the values of a row that is neither a number nor a flag; empty for the others.
std::span<char const* const> choices(OptionRow const& row);

/// Takes the choice of that number in.
void choose(OptionRow const& row, Settings& settings, int choice);

/// What the row's option is set to, as one would type it: 0.05, auto, projection. A flag is true or false.
std::string value_text(OptionRow const& row, Settings const& settings);

/// Adds the options of @p user to @p command, which then writes @p settings, and before them --preset, which
/// sets all of them: whatever the order on the command line, an option comes before a preset and a preset
/// before the defaults.
void declare_options(CLI::App& command, Settings& settings, OptionUser user);

/// The settings as a job carries them, by option name, and back.
nlohmann::json to_json(Settings const& settings);
Settings settings_from_json(nlohmann::json const& fields);

/// Throws a Failure about @p subject unless all numbers are in the ranges of their options. For settings that
/// came from elsewhere than the command line.
void check_ranges(Settings const& settings, std::string const& subject);

/// A finite number in @p minimum..@p maximum, or CLI::ValidationError with a sentence about @p option.
double parse_number(std::string const& option, std::string const& text, double minimum, double maximum);

} // namespace umbrix_cli
