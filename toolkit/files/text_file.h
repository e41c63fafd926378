// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace umbrixlib::toolkit {

/// Writes @p text under a temporary name beside @p target and then gives it that name. A Failure if
/// check_output_file() has one, or if the text does not fit there.
void write_text_file(std::filesystem::path const& target, std::string_view text, bool overwrite);

} // namespace umbrixlib::toolkit
