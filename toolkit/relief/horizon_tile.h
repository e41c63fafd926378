// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/relief/horizon_walk.h"
#include "toolkit/relief/padded_heights.h"

#include <array>

namespace umbrixlib::toolkit {

/// A group of columns of some rows of a picture.
struct HorizonTile {
    static constexpr int kMostRows = 16;
    static constexpr std::size_t kTexels = static_cast<std::size_t>(kMostRows) * kGroupColumns;

    int x;
    int y;
    int columns;                         ///< Up to kGroupColumns.
    int rows;                            ///< Up to kMostRows.
    std::array<float, kMostRows> lowest; ///< Of each row's heights.
};

/// A number for each texel of a tile; rows are as long as a group.
using TileNumbers = std::array<float, HorizonTile::kTexels>;

/// The tangents of the horizon's elevation that @p walk finds around the texels of @p tile; not below 0. What
/// stands in places outside the tile is no tangent, but its sums are numbers.
///
/// A place on the walk counts as high as its two texels make it, in floats: the tangent is the largest of
/// (first_share * first + second_share * second - own) * by_distance, whatever the instruction set.
void find_horizons(PaddedHeights const& heights, HorizonWalk const& walk, HorizonTile const& tile,
                   TileNumbers& tangents);

/// What directions see of the sky, added up.
struct SkySums {
    TileNumbers open; ///< Share of the cosine-weighted sky.
    TileNumbers x;    ///< Of the mean free direction, and `y` and `z`.
    TileNumbers y;
    TileNumbers z;
};

/// Adds what lies above the horizon in the direction of @p walk. With s and c, sine and cosine of the
/// horizon's elevation, the integrals over the elevations above it, weighted with the cosine to z and for a
/// full circle: c^2 of the sky is open, and the free directions add up to c^3 sideways and 1 - s^3 upwards.
void add_sky(TileNumbers const& tangents, HorizonWalk const& walk, SkySums& sums);

/// The sines of @p tangents.
void make_sines(TileNumbers& tangents);

} // namespace umbrixlib::toolkit
