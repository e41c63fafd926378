// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace umbrix_cli {

/// How an option is written on the command line, short name first: "-o" and "--output", or "--tile" and
/// "--no-tile".
std::vector<std::string> spellings(CLI::Option const& option);

bool takes_value(CLI::Option const& option);

/// The words that an option takes, if those are all it takes. They stand at the end of its help: "[up, down;
/// default up]".
std::vector<std::string> value_words(CLI::Option const& option);

/// The options of @p command that are shown, without its positional arguments.
std::vector<CLI::Option const*> options_of(CLI::App const& command);
std::vector<CLI::Option const*> positionals_of(CLI::App const& command);

/// The subcommands of @p command in the order of the help.
std::vector<CLI::App const*> subcommands_of(CLI::App const& command);

} // namespace umbrix_cli
