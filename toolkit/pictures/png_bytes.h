// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/compression.h"
#include "toolkit/pictures/picture.h"

#include <cstdint>
#include <vector>

namespace umbrixlib::toolkit {

/// The PNG file of @p picture, of 8 or 16 bits.
std::vector<std::uint8_t> png_bytes(Picture const& picture, Compression compression);

/// An animated PNG (PNG, third edition) that goes on for ever. Programs that know none show the first frame,
/// whose attributes the file has.
/// @param frames          At least one; all of one size, of the same channels and of 8 or 16 bits.
/// @param seconds_a_frame To the millisecond, 0.001 to 65.
std::vector<std::uint8_t> animated_png_bytes(std::vector<Picture> const& frames, double seconds_a_frame,
                                             Compression compression);

} // namespace umbrixlib::toolkit
