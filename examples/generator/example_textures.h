// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Height maps that we make ourselves. They repeat in both directions and have the same bits on every
/// machine.

#include <span>
#include <string_view>
#include <vector>

namespace umbrixlib::examples {

struct Texture {
    std::string_view name;
    double relief; ///< Height from the lowest to the highest place, in widths of the tile.
};

/// All textures: cobbles, bricks, cloth, dunes, terrain, noise.
std::span<Texture const> textures();

/// The texture of that name. Throws std::invalid_argument if there is none.
Texture const& texture(std::string_view name);

/// Heights from 0 to 1, both reached: @p side rows of @p side texels, row 0 at the bottom. Throws
/// std::invalid_argument for a name that is none of the textures' and for a side below 1.
std::vector<float> heights(std::string_view name, int side);

} // namespace umbrixlib::examples
