// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace umbrix_cli {

/// Adds the work list that a command is about, its first argument.
inline void declare_list(CLI::App& command, std::string& file, std::string const& description = "Work list")
{
    command.add_option("FILE", file, description)->required()->type_name("");
}

} // namespace umbrix_cli
