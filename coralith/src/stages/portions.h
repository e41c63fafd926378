// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"

#include <algorithm>

namespace coralith {

/// How the occlusion stage is cut into dispatches.
struct PortionRule {
    double target_milliseconds; ///< Measured time that a dispatch should take.
    int rays = 0;               ///< If above 0: so many rays of all texels instead.

    /// @param at_once   As large as any display stands; else short enough for the desktop to stay responsive.
    /// @param ao_value  Rays of a dispatch, if above 0 and not @p at_once.
    static PortionRule of(bool at_once, int ao_value)
    {
        // Display watchdogs end a dispatch after two seconds; nobody can ask them.
        return at_once ? PortionRule{1000.0} : PortionRule{50.0, ao_value > 0 ? ao_value : 0};
    }
};

/// The size of the next dispatch, in units of one texel and one ray, from the time that the last one took.
class Portions {
public:
    Portions(double target_milliseconds, Index ray_length)
        : target_(target_milliseconds), units_(std::max<Index>((Index{1} << 26) / ray_length, kLeast))
    {
    }

    Index units() const { return units_; }

    void took(Index units, double milliseconds)
    {
        double const factor = milliseconds > 0.0 ? std::clamp(target_ / milliseconds, 0.25, 2.0) : 2.0;
        double const next = std::min(static_cast<double>(units) * factor, 1e18);
        units_ = std::max(static_cast<Index>(next), kLeast);
    }

private:
    static constexpr Index kLeast = 64;

    double target_;
    Index units_;
};

} // namespace coralith
