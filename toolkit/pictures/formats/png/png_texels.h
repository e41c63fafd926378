// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/pictures/source_file.h"

namespace umbrixlib::toolkit {

/// Reads the texels of a PNG file that holds samples of 8 or 16 bits as @p picture has them: no palette, no
/// interlacing. By libdeflate and on all threads, where libpng goes by zlib and on one.
///
/// @param source  Stands behind the head of the first IDAT chunk.
/// @param length  Of that chunk.
/// @param picture Takes the samples.
/// @return Whether all is sound. If not, some of @p source was read, and @p picture has anything.
bool read_png_texels(SourceFile& source, std::size_t length, Picture& picture);

} // namespace umbrixlib::toolkit
