// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Normals as they are defined: the central difference of `GetNormal` on the four wrapped neighbours.

#include "common/rounding.h"
#include "common/vector_types.h"

#include <cmath>
#include <cstddef>

namespace velloric::reference {

/// Operands are widened, and every value that has a name is rounded to float.
inline float3 central_difference(float ym, float yp, float xp, float xm)
{
    using umbrixlib::detail::narrow;
    using umbrixlib::detail::wide;
    float const x = narrow(wide(xm) - wide(xp));
    float const y = narrow(wide(ym) - wide(yp));
    float const square = narrow(wide(y) * wide(y) + wide(x) * wide(x) + 1.0);
    float const length = narrow(std::sqrt(wide(square)));
    float const inverse = narrow(1.0 / wide(length));
    return {narrow(wide(inverse) * wide(x)), narrow(wide(inverse) * wide(y)), inverse};
}

inline void height_to_normal(float const* heights, float3* normals, int height, int width)
{
    auto const rows = static_cast<std::size_t>(height);
    auto const columns = static_cast<std::size_t>(width);
    for (std::size_t y = 0; y < rows; ++y) {
        float const* const row = heights + y * columns;
        float const* const below = heights + (y + rows - 1) % rows * columns;
        float const* const above = heights + (y + 1) % rows * columns;
        for (std::size_t x = 0; x < columns; ++x) {
            std::size_t const left = x == 0 ? columns - 1 : x - 1;
            std::size_t const right = x + 1 == columns ? 0 : x + 1;
            normals[y * columns + x] = central_difference(below[x], above[x], row[right], row[left]);
        }
    }
}

} // namespace velloric::reference
