// SPDX-License-Identifier: MIT
#pragma once

#include <climits>

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

/// The map of @p heights with its extremes, and the limits of walks whose rays reach @p radius, a fraction of
/// the width.
Relief relief_over(float const* heights, int rows, int cols, bool rows_wrap, bool columns_wrap, float radius);

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

inline constexpr int kOffTheMap = -1;

/// Where a ray stands on an axis of @p size texels, or kOffTheMap. An offset of INT_MIN is no number of
/// texels.
///
/// Contract: a position one past the last row or column is still on a map that does not wrap, and means row
/// or column 1; leaving the map is expected. Test: DirectionalAO.OnePastTheEdgeIsTheSecondTexel
inline int place_on_axis(int start, int offset, int size, bool wraps)
{
    long long const position = static_cast<long long>(start) + offset;
    if (offset == INT_MIN || (!wraps && (position > size || position < 0))) {
        return kOffTheMap;
    }
    if (position >= 0 && position < size) {
        return static_cast<int>(position);
    }
    return size < 2 ? kOffTheMap : wrapped(position, size);
}

} // namespace umbrixlib::detail
