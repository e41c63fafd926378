// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/relief.h"
#include "common/rounding.h"

namespace umbrixlib::detail {

/// The steps of one ray, worked out one at a time. Step 1 is the first.
class RaySteps {
public:
    RaySteps(ray const& step, Relief const& relief) : step_(step), rows_(relief.rows), cols_(relief.cols) {}

    /// Columns passed after @p step steps, to the nearest texel; INT_MIN if that is not a number of texels.
    int columns(int step) const { return offset(step, step_.x, cols_); }
    /// Rows passed, likewise.
    int rows(int step) const { return offset(step, step_.y, rows_); }
    /// Height gained.
    float climb(int step) const { return narrow(wide(static_cast<float>(step)) * wide(step_.z)); }

private:
    static int offset(int step, float share, int size)
    {
        double const texels = wide(static_cast<float>(step)) * wide(share) * wide(static_cast<float>(size));
        return to_int(wide(narrow(texels + (share > 0.0f ? 0.5 : -0.5))));
    }

    ray step_;
    int rows_;
    int cols_;
};

} // namespace umbrixlib::detail
