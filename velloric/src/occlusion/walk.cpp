// SPDX-License-Identifier: MIT
#include "occlusion/walk.h"

#include <climits>

namespace velloric {

using umbrixlib::detail::RaySteps;
using umbrixlib::detail::wrapped;

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
        // Contract: a position one past the last row or column is still on a map that does not wrap, and
        // means row or column 1; leaving the map is expected. Test:
        // DirectionalAO.OnePastTheEdgeIsTheSecondTexel
        long long const row = static_cast<long long>(y) + rows;
        if (!relief.rows_wrap && (row > relief.rows || row < 0)) {
            return true;
        }
        int const columns = steps.columns(j);
        long long const column = static_cast<long long>(x) + columns;
        if (columns == INT_MIN || (!relief.columns_wrap && (column > relief.cols || column < 0))) {
            return true;
        }
        float const ray_height = narrow(wide(steps.climb(j)) + wide(start));
        if (relief.height_at(wrapped(row, relief.rows), wrapped(column, relief.cols)) >= ray_height) {
            return false;
        }
        if (!(ceiling > ray_height) || j == relief.ray_length) {
            return true;
        }
    }
}

} // namespace velloric
