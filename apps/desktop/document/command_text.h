// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"

#include <string>
#include <string_view>
#include <vector>

namespace umbrix_desktop {

/// The line for a POSIX shell that makes the map of @p state: `umbrix map` with the source and the options
/// that differ from the defaults.
std::string command_of(State const& state);

/// The state that such a line asks for: its source and its settings; what the line does not mention of these
/// has its default, and all else is that of @p before. Names of files stay as they are. Options that leave
/// the map as it is, as --output and --overwrite, are passed over.
///
/// A Failure about a word that is no option, or has a wrong value, or asks for what a document has not got.
State state_of_command(std::string_view line, State const& before);

/// The words of @p line as a POSIX shell has them. A Failure if a quote is not closed, or if it has what is
/// more than words to a shell: variables, patterns, pipes.
std::vector<std::string> shell_words(std::string_view line);

/// @p word so that a POSIX shell reads it as it is.
std::string shell_quoted(std::string_view word);

} // namespace umbrix_desktop
