// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// The colour of a vector: 0.5, plus half the light from each of the axis directions +x, +y, +z, minus half
/// that from -x and -y, each light limited to 0..1. For components within -1..1 red is 0.5 + 0.5 * x, green
/// 0.5 + 0.5 * y, blue 0.5 + 0.5 * max(z, 0). An infinite component makes the channels of the
/// other axes NaN, as its dot product with those axes is.
UMBRIX_API float3 HighFidelity(float3 vector);

} // namespace umbrix_v0
