// SPDX-License-Identifier: MIT
#pragma once

#include <climits>

namespace occlusion_before {

/// Brings the first steps of a ray's blocks back onto the map, along one axis. The blocks come in order, so
/// each is at most a few periods further than the one before.
class AxisShift {
public:
    static constexpr int kGone = INT_MIN; ///< All texels of the group have left the map.

    /// @param size  Texels of the axis.
    /// @param group Texels of the group along the axis.
    AxisShift(int size, bool wraps, int group)
        : wraps_(wraps), period_(size - 1), last_(wraps ? size - 1 : size), group_(group)
    {
    }

    /// The position on the plane that stands for @p position, that of the group's first texel.
    ///
    /// A ray that goes up the axis ends between 1 and the period, one that goes down with its last texel
    /// between 0 and the period less 1: on these sides of the map the plane repeats it just as the walk does,
    /// which takes the last texel for 0 on the way up and the first for the period on the way down.
    int onto_map(int position)
    {
        int shifted = position + shift_;
        if (shifted > last_) {
            if (!wraps_) {
                return kGone;
            }
            do {
                shifted -= period_;
            } while (shifted > last_);
            shift_ = shifted - position;
        } else if (shifted + group_ <= 0) {
            if (!wraps_) {
                return kGone;
            }
            do {
                shifted += period_;
            } while (shifted + group_ <= 0);
            shift_ = shifted - position;
        }
        return shifted;
    }

private:
    bool wraps_;
    int period_;
    int last_;
    int group_;
    int shift_ = 0;
};

} // namespace occlusion_before
