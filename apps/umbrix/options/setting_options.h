// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/setting_table.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <string>

namespace umbrix_cli {

/// Help text of a row with its unit, range and default.
std::string describe(SettingRow const& row);

/// Adds the options of @p users, a sum of SettingUser, to @p command, which then writes @p settings, and
/// before them --preset, which sets all of them: whatever the order on the command line, an option comes
/// before a preset and a preset before the defaults.
void declare_options(CLI::App& command, Settings& settings, unsigned users);

/// The same without --preset.
void declare_rows(CLI::App& command, Settings& settings, unsigned users);

/// A finite number in @p minimum..@p maximum, or CLI::ValidationError with a sentence about @p option.
double parse_number(std::string const& option, std::string const& text, double minimum, double maximum);

} // namespace umbrix_cli
