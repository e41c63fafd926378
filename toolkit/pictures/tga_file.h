// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>

namespace umbrixlib::toolkit {

/// Writes @p picture as an uncompressed TGA. False if the file could not be written to its end. DevIL's
/// writer leaves two bytes of the header to chance, so the same picture would not give the same file.
bool write_tga(std::filesystem::path const& file, Picture const& picture);

/// Smallest size in bytes that an uncompressed TGA of this shape has.
std::uintmax_t tga_size(int width, int height, int channels);

} // namespace umbrixlib::toolkit
