// SPDX-License-Identifier: MIT
#pragma once

#include "options/common_options.h"

#include <CLI/App.hpp>
#include <string>

namespace umbrix_cli {

/// Adds --albedo to @p command. @p effect: what becomes of the result.
void declare_albedo(CLI::App& command, std::string& albedo, std::string const& effect);

/// Checks that @p albedo, if it is named, is there and is not the output.
/// @param suffix For the name of an output that was not named.
void check_albedo(CommonOptions const& options, std::string const& suffix, std::string const& albedo);

} // namespace umbrix_cli
