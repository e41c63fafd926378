// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// What the operators are measured on: four of the example textures, as an 8-bit picture gives them.

#include "common/vector_types.h"

#include <array>
#include <string>
#include <vector>

namespace umbrixlib::bench {

constexpr std::array<char const*, 4> kMaps = {"terrain", "bricks", "cobbles", "noise"};

/// All of them, or the first @p quick_maps with "--quick".
std::vector<char const*> maps_of(int count, char** words, int quick_maps = 1);

/// Heights from 0 to @p scale. Each map is made once.
std::vector<float> heights_of(std::string const& map, int side, float scale = 1.0f);

/// The same as pixels: further channels are the map moved up by a quarter each.
template <typename Pixel>
std::vector<Pixel> pixels_of(std::string const& map, int side);

/// Writes a grey-in-colour TGA of @p side, the map repeated if @p map_side is less.
void write_picture(std::string const& file, std::string const& map, int map_side, int side);

} // namespace umbrixlib::bench
