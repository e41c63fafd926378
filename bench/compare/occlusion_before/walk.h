// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/ray_steps.h"
#include "common/relief.h"

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// Whether a ray from texel (@p x, @p y) gets away from the relief: the walk as it is defined, step by step.
/// Takes any ray, also one that sinks, stands still or has values that are not numbers.
bool ray_escapes(Relief const& relief, ray const& step, int y, int x);

/// The height at which a ray from height @p start has climbed over everything that it may meet.
float ceiling_over(Relief const& relief, float start);

} // namespace occlusion_before
