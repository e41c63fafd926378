// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/relief.h"
#include "common/rounding.h"

namespace umbrixlib::detail {

/// Steps that a ray takes at most on a map of @p width texels. @param radius Reach, as a fraction of the
/// width.
inline int ray_length(int width, float radius)
{
    return to_int(wide(static_cast<float>(width)) * wide(radius) + 0.5);
}

/// Texels passed after @p step steps along an axis of @p size texels. Half a texel is added away from zero,
/// so truncation gives the nearest texel.
/// @param share Of the axis, that one step passes.
inline float texels_passed(int step, float share, int size)
{
    double const texels = wide(static_cast<float>(step)) * wide(share) * wide(static_cast<float>(size));
    return narrow(texels + (share > 0.0f ? 0.5 : -0.5));
}

/// Height gained after @p step steps of @p rise each.
inline float height_gained(int step, float rise)
{
    return narrow(wide(static_cast<float>(step)) * wide(rise));
}

/// The steps of one ray, worked out one at a time. Step 1 is the first.
class RaySteps {
public:
    RaySteps(ray const& step, Relief const& relief) : step_(step), rows_(relief.rows), cols_(relief.cols) {}

    /// Columns passed after @p step steps, to the nearest texel; INT_MIN if that is not a number of texels.
    int columns(int step) const { return to_int(wide(texels_passed(step, step_.x, cols_))); }
    /// Rows passed, likewise.
    int rows(int step) const { return to_int(wide(texels_passed(step, step_.y, rows_))); }
    /// Height gained.
    float climb(int step) const { return height_gained(step, step_.z); }

private:
    ray step_;
    int rows_;
    int cols_;
};

} // namespace umbrixlib::detail
