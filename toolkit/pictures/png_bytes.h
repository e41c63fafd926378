// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/pictures/picture.h"

#include <cstdint>
#include <vector>

namespace umbrixlib::toolkit {

/// The PNG file of @p picture, of 8 or 16 bits.
std::vector<std::uint8_t> png_bytes(Picture const& picture, Compression compression);

} // namespace umbrixlib::toolkit
