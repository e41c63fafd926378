// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/graphics_settings.h"
#include "toolkit/settings/settings.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace umbrix_cli {

/// Adds --gpu [N] and --match-cpu to @p command, which then writes @p graphics. Returns --gpu.
CLI::Option* declare_graphics(CLI::App& command, Graphics& graphics);

/// Throws a UsageError if the settings leave nothing to match a map of the processor with.
void check_graphics_usage(Graphics const& graphics, Settings const& settings);

/// The words of a command line, with the number that may follow --gpu tied to it, or 0 if none does: an
/// option whose value may be missing would take the name of a picture for it.
std::vector<std::string> with_device_numbers(std::vector<std::string> const& words);

} // namespace umbrix_cli
