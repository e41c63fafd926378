// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Every widening and narrowing of the system, written out. A scalar expression is formed in double and
/// narrowed where it is stored; where the narrowing stands decides the last bit of a result.

#include <cfloat>
#include <climits>

#if defined(__FAST_MATH__)
#error "results are defined bit for bit: build without -ffast-math"
#endif

namespace umbrixlib::detail {

static_assert(FLT_EVAL_METHOD == 0, "float expressions must be evaluated in float");

/// A float as a double; exact.
constexpr double wide(float value)
{
    return static_cast<double>(value);
}

/// A double rounded to the nearest float.
constexpr float narrow(double value)
{
    return static_cast<float>(value);
}

/// @p value truncated towards zero. A value that is not a number or does not fit gives INT_MIN on every
/// platform, the "integer indefinite" value of x86.
constexpr int to_int(double value)
{
    constexpr double kBelowRange = -2147483649.0;
    constexpr double kAboveRange = 2147483648.0;
    return value > kBelowRange && value < kAboveRange ? static_cast<int>(value) : INT_MIN;
}

/// The low eight bits of @p value truncated towards zero; no clamp.
constexpr unsigned char to_byte(double value)
{
    return static_cast<unsigned char>(static_cast<unsigned>(to_int(value)) & 0xffU);
}

} // namespace umbrixlib::detail
