// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/walk.h"

namespace occlusion_before {

using umbrixlib::detail::kOffTheMap;
using umbrixlib::detail::place_on_axis;
using umbrixlib::detail::RaySteps;

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

float ceiling_over(Relief const& relief, float start)
{
    float const from_reach = narrow(wide(start) + wide(relief.reach));
    return relief.top > from_reach ? from_reach : relief.top;
}

bool ray_escapes(Relief const& relief, ray const& step, int y, int x)
{
    float const start = relief.height_at(y, x);
    if (start == relief.top) {
        return true;
    }
    float const ceiling = ceiling_over(relief, start);
    RaySteps const steps(step, relief);
    for (int j = 1;; ++j) {
        int const rows = steps.rows(j);
        if (rows > relief.ray_length || rows < -relief.ray_length) {
            return true;
        }
        int const row = place_on_axis(y, rows, relief.rows, relief.rows_wrap);
        int const column = place_on_axis(x, steps.columns(j), relief.cols, relief.columns_wrap);
        if (row == kOffTheMap || column == kOffTheMap) {
            return true;
        }
        float const ray_height = narrow(wide(steps.climb(j)) + wide(start));
        if (relief.height_at(row, column) >= ray_height) {
            return false;
        }
        if (!(ceiling > ray_height) || j == relief.ray_length) {
            return true;
        }
    }
}

} // namespace occlusion_before
