// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "normals/unit_vector.h"

#include <cmath>
#include <cstddef>

namespace {

using umbrixlib::detail::wide;

/// Factor on the slope of a texel with the Laplacian @p curvature.
double slope_factor(double curvature, double convex_strength, double concave_strength)
{
    double const strength = curvature < 0.0 ? convex_strength : concave_strength;
    double const size = std::fabs(curvature);
    return 1.0 + strength * (size / (1.0 + size));
}

} // namespace

void NormalEdges(float3* normals, float* heights, int height, int width, float edge_a, float edge_b)
{
    if (height < 1 || width < 1) {
        return;
    }
    auto const rows = static_cast<std::size_t>(height);
    auto const columns = static_cast<std::size_t>(width);
#pragma omp parallel for schedule(static)
    for (std::size_t y = 0; y < rows; ++y) {
        float const* const row = heights + y * columns;
        float const* const below = heights + (y == 0 ? rows - 1 : y - 1) * columns;
        float const* const above = heights + (y == rows - 1 ? 0 : y + 1) * columns;
        for (std::size_t x = 0; x < columns; ++x) {
            std::size_t const left = x == 0 ? columns - 1 : x - 1;
            std::size_t const right = x == columns - 1 ? 0 : x + 1;
            double const curvature =
                wide(above[x]) + wide(below[x]) + wide(row[left]) + wide(row[right]) - 4.0 * wide(row[x]);
            double const factor = slope_factor(curvature, wide(edge_a), wide(edge_b));
            float3& normal = normals[y * columns + x];
            normal = velloric::unit_vector(wide(normal.x) * factor, wide(normal.y) * factor, wide(normal.z));
        }
    }
}
