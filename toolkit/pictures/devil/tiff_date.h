// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace umbrixlib::toolkit {

/// Overwrites the time of writing in a TIFF file that DevIL made with the first second of 1970, so that the
/// same picture gives the same bytes on every day. False if the file cannot be read and written; a file
/// without a date stays as it is.
bool fix_tiff_date(std::filesystem::path const& file);

} // namespace umbrixlib::toolkit
