// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"

#include <cstddef>

namespace velloric {

/// Unit normals of one row of texels by the central difference of `GetNormal`, to the bit.
/// @param below  The row before, @p width heights.
/// @param row    The row itself with one wrapped texel on either side: width + 2 heights.
/// @param above  The row behind.
/// @param normals Overlaps none of the rows.
void normal_row(float const* below, float const* row, float const* above, float3* normals, std::size_t width);

} // namespace velloric
