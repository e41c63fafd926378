// SPDX-License-Identifier: MIT
#pragma once

#include "common/relief.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace occlusion_before {

using umbrixlib::detail::Relief;

/// Heights in 8 bits, for a map that has at most 256 heights, equally spaced but for rounding, as those of an
/// 8-bit picture are. A height h is the number of its level, 0 the lowest; a climb z is floor(z * scale).
///
/// In levels, h(q) >= h(p) + z means level(q) - level(p) >= z * scale, but for the rounding of the heights
/// and of the float sum. So where z * scale is further than these from a whole number, a step blocks the ray
/// exactly if level(q) - climb > level(p). Nothing is left in doubt. A map's lowest level and what never
/// blocks, both 0, need not be told apart: the lowest level blocks no ray that climbs.
class ByteLattice {
public:
    using Level = std::uint8_t;

    /// Whether rays may be left in doubt, to be settled in floats.
    static constexpr bool kSettles = false;
    static constexpr Level kNever = 0; ///< Level of what never blocks: outside the map, or not a number.
    /// Own level of texels that are open to every ray: no level is above.
    static constexpr Level kAlwaysOpen = 255;

    /// Nothing if the heights of @p relief, which are finite (NaN aside) and not all equal, are no such
    /// levels.
    static std::optional<ByteLattice> of(Relief const& relief);

    Level height(float h) const
    {
        double const above = (static_cast<double>(h) - origin_) * scale_;
        return above >= 0.0 ? static_cast<Level>(above + 0.5) : kNever;
    }
    /// A climb that is beyond every height of the map comes out as some level above `most_climb()`.
    int climb(float z) const { return static_cast<int>(std::min(static_cast<double>(z) * scale_, 65536.0)); }
    /// Whether a step with climb @p z may be compared in levels: it is so far from a whole number of them
    /// that rounding decides nothing.
    bool certain(float z) const
    {
        double const levels = static_cast<double>(z) * scale_;
        if (levels >= top_ + 0.5) {
            return true; // above all
        }
        double const above = levels - static_cast<double>(static_cast<int>(levels));
        return above > doubt_ && above < 1.0 - doubt_;
    }

    /// Level of the map's top.
    int top() const { return top_; }
    /// After a climb above this no step can block a ray.
    int most_climb() const { return top_ - 1; }
    double scale() const { return scale_; }

    /// The bits of RayStep::rise for a rise of @p levels. Comparisons saturate.
    static std::uint32_t repeated(int levels)
    {
        return static_cast<std::uint32_t>(std::min(levels, 255)) * 0x01010101U;
    }

private:
    /// @param error How far heights are at most from their levels, in levels.
    ByteLattice(Relief const& relief, int top, double error);

    /// The lattice with the fewest levels that has each of @p heights, some of the map's, on a level; none if
    /// that takes too many.
    static std::optional<ByteLattice> spaced(Relief const& relief, std::vector<double> const& heights);
    /// The largest distance of a height of the map from its level, in levels. @p heights are some of the
    /// map's.
    double largest_error(Relief const& relief, std::vector<double> const& heights) const;

    double origin_;
    double scale_;
    double doubt_;
    int top_;
};

} // namespace occlusion_before
