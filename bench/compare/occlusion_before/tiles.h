// SPDX-License-Identifier: MIT
#pragma once

#include "common/relief.h"
#include "compare/occlusion_before/bundle.h"
#include "compare/occlusion_before/plane.h"

#include <cstdint>

namespace occlusion_before {

using umbrixlib::detail::Relief;

constexpr int kTileRows = 64;
constexpr int kTileColumns = 128;

/// A tile of the map; at its lower and right borders only the part on the map counts.
struct Tile {
    int row;
    int column;
    int rows;
    int columns;
};

/// Blocked rays at each texel of a tile.
using TileCounts = std::uint16_t[kTileRows][kTileColumns];

/// Columns of texels that the processor's vectors compare together in 16-bit levels.
int group_columns();
/// The same in 8-bit levels.
int byte_group_columns();

/// Adds the rays of @p bundle that are blocked at each texel of @p tile to @p blocked.
void count_blocked(Relief const& relief, Lattice const& lattice, LatticePlane<Lattice> const& plane,
                   RayBundle const& bundle, Tile const& tile, TileCounts& blocked);
void count_blocked(Relief const& relief, ByteLattice const& lattice, LatticePlane<ByteLattice> const& plane,
                   RayBundle const& bundle, Tile const& tile, TileCounts& blocked);

} // namespace occlusion_before
