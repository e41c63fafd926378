// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Whether @p file is called like a picture that can be read, by its extension in any letter case. Of the
/// formats that DevIL knows, those without an extension of their own, icons and containers are left out.
bool is_called_like_a_picture(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
