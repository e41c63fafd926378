// SPDX-License-Identifier: MIT
#pragma once

#include "picture.h"

#include <filesystem>

namespace umbrix_cli {

/// Writes @p picture as an uncompressed TGA. False if the file could not be written to its end. DevIL's
/// writer leaves two bytes of the header to chance, so the same picture would not give the same file.
bool write_tga(std::filesystem::path const& file, Picture const& picture);

/// Smallest size in bytes that an uncompressed TGA of this shape has.
std::uintmax_t tga_size(int width, int height, int channels);

} // namespace umbrix_cli
