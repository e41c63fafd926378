// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "depth/curve.h"

#include <cstddef>

void ChangeDepth(float* heights, int height, int width, float depth, float n_scale)
{
    if (height < 1 || width < 1 || n_scale == 0.0f) {
        return;
    }
    velloric::DepthCurve const curve(depth, n_scale);
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
#pragma omp parallel for schedule(static)
    for (std::size_t i = 0; i < count; ++i) {
        heights[i] = curve(heights[i]);
    }
}
