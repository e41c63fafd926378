// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"

#include <cstddef>

namespace velloric {

/// Multiplies x and y of @p count vectors in a row by @p factor and brings each to unit length, in double,
/// rounded once; a vector without a length stays as it is.
void scale_slopes(float3* normals, std::size_t count, float factor);

} // namespace velloric
