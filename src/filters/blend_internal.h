// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The blends element by element. Every operand is widened to double; the result is rounded once.

#include "common/rounding.h"

namespace umbrixlib::detail {

/// @p percent as a fraction. NaN stays.
inline float fraction_of(float percent)
{
    return narrow(wide(percent) / 100.0);
}

/// The same, @p percent limited to 0..100 first.
inline float limited_fraction_of(float percent)
{
    if (percent > 100.0f) {
        return 1.0f;
    }
    return 0.0f > percent ? 0.0f : fraction_of(percent);
}

/// From @p first at a @p fraction of 0 to @p second, which need not be rounded yet, at 1.
inline float cross_fade(double second, float first, double fraction)
{
    return narrow(second * fraction + wide(first) * (1.0 - fraction));
}

inline float product_of(float a, float b)
{
    return narrow(wide(a) * wide(b));
}

inline float screen_of(float a, float b)
{
    return narrow(1.0 - (1.0 - wide(a)) * (1.0 - wide(b)));
}

} // namespace umbrixlib::detail
