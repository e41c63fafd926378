// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "foundation/rounding.h"
#include "unit_vector.h"

#include <cstddef>

using umbrixlib::detail::wide;

void NormalScale(float3* normals, int height, int width, float scale)
{
    if (height < 1 || width < 1) {
        return;
    }
    double const factor = wide(scale);
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
#pragma omp parallel for schedule(static)
    for (std::size_t i = 0; i < count; ++i) {
        float3 const normal = normals[i];
        normals[i] = velloric::unit_vector(wide(normal.x) * factor, wide(normal.y) * factor, wide(normal.z));
    }
}
