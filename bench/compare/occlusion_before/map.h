// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/relief.h"
#include "common/vector_types.h"
#include "compare/occlusion_before/progress.h"

#include <array>

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// The share of open rays at every texel, for three bands of @p rays rays each.
/// @param bands     In the order of the channels of @p occlusion.
/// @param occlusion One result a texel.
void map_occlusion(Relief const& relief, std::array<ray const*, 3> const& bands, int rays, float3* occlusion,
                   Progress& progress);

} // namespace occlusion_before
