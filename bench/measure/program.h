// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace umbrixlib::bench {

/// Runs the program @p words[0], looked for in PATH, with its output thrown away. Ends this program if that
/// one fails.
/// @return Largest memory of the program and of those that it started and waited for, of one at a time.
std::size_t run_program(std::vector<std::string> words);

/// Whether there is a program of this name in PATH.
bool has_program(std::string const& name);

} // namespace umbrixlib::bench
