// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"

#include <cmath>

/// Float forms of three library functions: computed in double, narrowed once. They stay in here, so that user
/// code that calls `fabs`, `ceil` or `exp` on a float keeps the overloads of its own headers.
namespace umbrixlib::detail {

inline float fabs(float value)
{
    return narrow(std::fabs(wide(value)));
}

inline float ceil(float value)
{
    return narrow(std::ceil(wide(value)));
}

inline float exp(float value)
{
    return narrow(std::exp(wide(value)));
}

} // namespace umbrixlib::detail
