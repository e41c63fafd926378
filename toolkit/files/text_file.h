// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace umbrixlib::toolkit {

/// Throws a Failure unless a text can go to @p target: its folder is there, and nothing is in the way but a
/// plain file that @p overwrite allows to be replaced.
void check_text_output(std::filesystem::path const& target, bool overwrite);

/// Writes @p text under a temporary name beside @p target and then gives it that name. A Failure as above, or
/// if it does not fit there.
void write_text_file(std::filesystem::path const& target, std::string_view text, bool overwrite);

} // namespace umbrixlib::toolkit
