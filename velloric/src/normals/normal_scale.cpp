// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/blocks.h"
#include "normals/slope_scale_row.h"

#include <cstddef>

void NormalScale(float3* normals, int height, int width, float scale)
{
    if (height < 1 || width < 1) {
        return;
    }
    umbrixlib::detail::for_blocks(
        static_cast<std::ptrdiff_t>(height) * width,
        [&](std::ptrdiff_t at, std::size_t count) { velloric::scale_slopes(normals + at, count, scale); });
}
