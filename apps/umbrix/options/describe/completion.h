// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace umbrix_cli {

/// A script that teaches a shell to complete the command line of @p tool: commands, options, the words that
/// an option takes, and file names elsewhere.
std::string bash_completion(CLI::App const& tool);
std::string zsh_completion(CLI::App const& tool);

} // namespace umbrix_cli
