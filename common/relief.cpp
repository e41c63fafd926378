// SPDX-License-Identifier: MIT
#include "common/relief.h"

#include "common/ray_steps.h"

#include <cmath>
#include <limits>

namespace umbrixlib::detail {

void survey(Relief& relief)
{
    float top = 0.0f;
    float lowest = std::numeric_limits<float>::infinity();
    float magnitude = 0.0f;
    long long const texels = static_cast<long long>(relief.rows) * relief.cols;
    for (long long i = 0; i < texels; ++i) {
        float const h = relief.heights[i];
        top = h > top ? h : top;
        lowest = h < lowest ? h : lowest;
        magnitude = std::fabs(h) > magnitude ? std::fabs(h) : magnitude;
    }
    relief.top = top;
    relief.lowest = lowest;
    relief.magnitude = magnitude;
}

Relief relief_over(float const* heights, int rows, int cols, bool rows_wrap, bool columns_wrap, float radius)
{
    Relief relief{};
    relief.heights = heights;
    relief.rows = rows;
    relief.cols = cols;
    relief.rows_wrap = rows_wrap;
    relief.columns_wrap = columns_wrap;
    relief.reach = radius;
    relief.ray_length = ray_length(cols, radius);
    survey(relief);
    return relief;
}

} // namespace umbrixlib::detail
