// SPDX-License-Identifier: MIT
#include "occlusion_tiles.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "occlusion_tiles-inl.h"
#include <hwy/foreach_target.h>

#include "occlusion_tiles-inl.h"

namespace velloric {

HWY_EXPORT(GroupColumns);
HWY_EXPORT(CountBlocked);

int group_columns()
{
    return HWY_DYNAMIC_DISPATCH(GroupColumns)();
}

void count_blocked(Relief const& relief, Lattice const& lattice, LatticePlane const& plane,
                   RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
{
    HWY_DYNAMIC_DISPATCH(CountBlocked)(relief, lattice, plane, bundle, tile, blocked);
}

} // namespace velloric
