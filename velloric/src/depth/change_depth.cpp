// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/rounding.h"

#include <cmath>
#include <cstddef>

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

void ChangeDepth(float* heights, int height, int width, float depth, float n_scale)
{
    if (height < 1 || width < 1 || n_scale == 0.0f) {
        return;
    }
    double const scale = wide(n_scale);
    double const exponent = std::exp2(wide(depth));
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
#pragma omp parallel for schedule(static)
    for (std::size_t i = 0; i < count; ++i) {
        double const relative = wide(heights[i]) / scale;
        if (relative != 0.0) { // whose sign is 0, whatever the exponent
            heights[i] = narrow(scale * std::copysign(std::pow(std::fabs(relative), exponent), relative));
        }
    }
}
