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
using SettingsField = std::variant<bool Settings::*, int Settings::*, float Settings::*,
                                   std::optional<float> Settings::*, Modes Settings::*>;

/// The commands that have an option.
enum OptionUser : unsigned { kForMap = 1, kForNormal = 2, kForRelight = 4 };

/// One option of a run. The table of them yields the parsing, the help and the job that a worker is sent.
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

/// Adds the options of @p user to @p command, which then writes @p settings.
void declare_options(CLI::App& command, Settings& settings, OptionUser user);

/// The settings as a job carries them, by option name, and back.
nlohmann::json to_json(Settings const& settings);
Settings settings_from_json(nlohmann::json const& fields);

/// A finite number in @p minimum..@p maximum, or CLI::ValidationError with a sentence about @p option.
double parse_number(std::string const& option, std::string const& text, double minimum, double maximum);

} // namespace umbrix_cli
