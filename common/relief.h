// SPDX-License-Identifier: MIT
#pragma once

namespace umbrixlib::detail {

/// The map that rays are walked over, and the limits of every walk. Both sides are above 1, and so is at
/// least the first step of a ray inside its length.
struct Relief {
    float const* heights; ///< rows * cols values.
    int rows;
    int cols;
    bool rows_wrap;
    bool columns_wrap;
    float reach;    ///< Height above its start that a ray climbs at most.
    int ray_length; ///< Steps that a ray takes at most, above 0.

    float top;       ///< Largest height, at least 0. A texel at the top is open to every ray.
    float lowest;    ///< Smallest height; infinity if no height is a number.
    float magnitude; ///< Largest absolute height.

    float const* row(int y) const { return heights + static_cast<long long>(y) * cols; }
    float height_at(int y, int x) const { return row(y)[x]; }
};

/// Fills the three extremes of @p relief from its heights. Heights that are not numbers do not count.
void survey(Relief& relief);

/// The texel that position @p index of an axis of @p size texels wraps to.
///
/// Contract: the period is size - 1, as if the first and the last texel were one; size is expected. Position
/// 2 * (size - 1) is the last texel and -(size - 1) the first: both come from repeated steps of one period.
/// Test: DirectionalAO.EqualsTheRayWalkOnRandomMaps
inline int wrapped(long long index, int size)
{
    long long const period = size - 1;
    if (index > period) {
        return static_cast<int>((index - 1) % period + 1);
    }
    if (index < 0) {
        return static_cast<int>((index % period + period) % period);
    }
    return static_cast<int>(index);
}

} // namespace umbrixlib::detail
