// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/tiles.h"

#include "common/vector_targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "compare/occlusion_before/tiles-inl.h"
#include <hwy/foreach_target.h>

#include "compare/occlusion_before/tiles-inl.h"

namespace occlusion_before {

HWY_EXPORT(GroupColumns);
HWY_EXPORT(ByteGroupColumns);
HWY_EXPORT(CountBlocked);
HWY_EXPORT(CountBytesBlocked);

int group_columns()
{
    return HWY_DYNAMIC_DISPATCH(GroupColumns)();
}

int byte_group_columns()
{
    return HWY_DYNAMIC_DISPATCH(ByteGroupColumns)();
}

void count_blocked(Relief const& relief, Lattice const& lattice, LatticePlane<Lattice> const& plane,
                   RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
{
    HWY_DYNAMIC_DISPATCH(CountBlocked)(relief, lattice, plane, bundle, tile, blocked);
}

void count_blocked(Relief const& relief, ByteLattice const& lattice, LatticePlane<ByteLattice> const& plane,
                   RayBundle const& bundle, Tile const& tile, TileCounts& blocked)
{
    HWY_DYNAMIC_DISPATCH(CountBytesBlocked)(relief, lattice, plane, bundle, tile, blocked);
}

} // namespace occlusion_before
