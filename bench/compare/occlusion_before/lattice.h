// SPDX-License-Identifier: MIT
#pragma once

#include "common/relief.h"

#include <algorithm>
#include <cstdint>

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// Heights in 15 bits: a height h is floor((h - lowest) * scale) + kLowest, a climb z is floor(z * scale).
/// Sixteen comparisons of a ray with the relief then cost two instructions, and are exact but for a narrow
/// band.
///
/// With D = height(q) - height(p) - climb in whole levels, the true (h(q) - h(p) - z) * scale lies strictly
/// between D - 2 and D + 1, since each of the three floors loses less than 1. The rounding of the float sum
/// z + h(p), which the walk compares with, is below half a level by the choice of the scale. So D >= 3 proves
/// that the step blocks the ray, D <= -2 that it does not, and the largest D over the steps decides for the
/// ray. Only what lies between is settled in floats.
class Lattice {
public:
    using Level = std::int16_t;

    static constexpr bool kSettles = true; ///< Rays may be left in doubt, to be settled in floats.
    static constexpr int kNever = 0;       ///< Level of what never blocks: outside the map, or not a number.
    static constexpr int kLowest = 8;      ///< Level of the lowest height.
    static constexpr int kSurely = 3;      ///< D from here on: blocked.
    static constexpr int kSurelyNot = -2;  ///< D up to here: not blocked.
    /// Own level of texels that are open to every ray; above all others.
    static constexpr int kAlwaysOpen = 32700;

    /// @p relief has finite heights (NaN aside) and is not flat.
    explicit Lattice(Relief const& relief) : origin_(static_cast<double>(relief.lowest))
    {
        constexpr double kLevels = 32300.0;
        // 2^20: three magnitudes add with an error below 2^-22 of one.
        constexpr double kRoundingBound = 1048576.0;
        double const range = static_cast<double>(relief.top) - origin_;
        scale_ = std::min(kLevels / range, kRoundingBound / static_cast<double>(relief.magnitude));
        top_ = height(relief.top);
    }

    Level height(float h) const
    {
        double const above = (static_cast<double>(h) - origin_) * scale_;
        return static_cast<Level>(above >= 0.0 ? static_cast<int>(above) + kLowest : kNever);
    }
    /// A climb that is beyond every height of the map comes out as some level above `most_climb()`.
    int climb(float z) const { return static_cast<int>(std::min(static_cast<double>(z) * scale_, 65536.0)); }

    /// Level of the map's top.
    int top() const { return top_; }
    /// After a climb above this no step can block a ray, or be in doubt.
    int most_climb() const { return top_ + 4; }
    double scale() const { return scale_; }
    /// Whether a step with climb @p z may be compared in levels.
    static bool certain(float /*z*/) { return true; } // what is in doubt comes out of the comparison

    /// The bits of RayStep::rise for a rise of @p levels.
    static std::uint32_t repeated(int levels) { return static_cast<std::uint32_t>(levels) * 0x10001U; }

private:
    double origin_;
    double scale_;
    int top_;
};

} // namespace occlusion_before
