// SPDX-License-Identifier: MIT
#pragma once

#include "common/relief.h"
#include "compare/occlusion_before/bundle.h"
#include "compare/occlusion_before/plane.h"

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// Whether a step of @p ray blocks it at texel (@p x, @p y), whose height is a number below the top. Steps
/// that the lattice leaves in doubt are decided in floats, as the walk does.
bool is_blocked(Relief const& relief, LatticePlane<Lattice> const& plane, RayBundle const& bundle,
                ReducedRay const& ray, int y, int x);

} // namespace occlusion_before
