// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Throws a Failure unless @p input is a file that can be read and has something in it.
void check_input(std::filesystem::path const& input);

} // namespace umbrixlib::toolkit
