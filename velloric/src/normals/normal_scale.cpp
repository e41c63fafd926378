// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "normals/slope_scale_row.h"

#include <algorithm>
#include <cstddef>

void NormalScale(float3* normals, int height, int width, float scale)
{
    if (height < 1 || width < 1) {
        return;
    }
    constexpr std::size_t kBlock = 4096; // texels that a thread takes at once
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
#pragma omp parallel for schedule(static)
    for (std::size_t at = 0; at < count; at += kBlock) {
        velloric::scale_slopes(normals + at, std::min(kBlock, count - at), scale);
    }
}
