// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace umbrixlib::examples {

/// Heights from 0 to 1 as grey bytes, in the order of @p heights.
std::vector<std::uint8_t> height_bytes(std::vector<float> const& heights);

/// Normals of @p side rows of @p side heights as red, green, blue bytes with the height in alpha; bytes 0 to
/// 255 stand for -1 to 1. The heights span @p relief widths of the tile, the slope is the difference of the
/// two neighbours halved, and neighbours wrap around. With row 0 at the bottom green points up: a height that
/// rises to the right gives less red than 128, one that rises to the top of the picture less green.
std::vector<std::uint8_t> normal_bytes(std::vector<float> const& heights, int side, double relief);

} // namespace umbrixlib::examples
