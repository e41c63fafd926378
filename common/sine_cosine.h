// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Sine and cosine in plain double arithmetic. The C library's differ in the last bit from version to version
/// and from processor to processor, and the rays must not.

#include "common/rounding.h"

#include <cmath>

namespace umbrixlib::detail {

struct SineCosine {
    double sine;
    double cosine;
};

/// Sine and cosine of an angle in radians, to about 1e-15 for angles of a few turns: the angle less the
/// nearest multiple of a right angle goes through the Taylor series.
inline SineCosine sine_cosine(double angle)
{
    // A right angle in two parts; small multiples of the first are exact.
    constexpr double kRightAngleHigh = 0x1.921fb544p0;
    constexpr double kRightAngleLow = 0x1.0b4611a626331p-34;
    constexpr double kRightAngles = 0x1.45f306dc9c883p-1; // 2 / pi

    double const turns = std::floor(angle * kRightAngles + 0.5);
    double const x = (angle - turns * kRightAngleHigh) - turns * kRightAngleLow;
    double const x2 = x * x;
    double sine = 0;
    double cosine = 0;
    for (int n = 18; n >= 2; n -= 2) { // Horner's rule on 1 - x2 / (n (n+-1)) * (...)
        sine = 1.0 - x2 / (n * (n + 1)) * (n == 18 ? 1.0 : sine);
        cosine = 1.0 - x2 / (n * (n - 1)) * (n == 18 ? 1.0 : cosine);
    }
    sine *= x;

    switch (umbrixlib::detail::to_int(turns) & 3) {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}

} // namespace umbrixlib::detail
