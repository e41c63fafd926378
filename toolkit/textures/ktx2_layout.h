// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/textures/texture.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace umbrixlib::toolkit {

/// How a texture lies in a KTX2 file: what stands before the levels, and where each of them begins, the
/// largest first in this list. In the file the smallest is first, and zeros fill what is between.
struct Ktx2Layout {
    std::vector<std::uint8_t> start;
    std::vector<std::size_t> levels;
};

/// The layout of a file without supercompression, of linear data without primaries: header, index of the
/// levels, data format descriptor, and the keys KTXorientation and KTXwriter. Source: Khronos, KTX File
/// Format 2.0 and Data Format 1.3.
Ktx2Layout ktx2_layout(Texture const& texture);

} // namespace umbrixlib::toolkit
