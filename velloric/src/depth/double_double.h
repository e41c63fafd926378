// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Numbers of about 104 bits: the unevaluated sum of two doubles, of which the second is at most half a unit
/// in the last place of the first. Each operation is off by a few units in bit 104. Method: T. J. Dekker, A
/// Floating-Point Technique for Extending the Available Precision, Numerische Mathematik 18, 1971.

#include <cmath>

namespace velloric {

struct DoubleDouble {
    double high;
    double low;
};

/// a + b without an error, for |a| >= |b| or a = 0.
inline DoubleDouble ordered_sum(double a, double b)
{
    double const sum = a + b;
    return {sum, b - (sum - a)};
}

/// a + b without an error.
inline DoubleDouble exact_sum(double a, double b)
{
    double const sum = a + b;
    double const from_b = sum - a;
    return {sum, (a - (sum - from_b)) + (b - from_b)};
}

/// a * b without an error.
inline DoubleDouble exact_product(double a, double b)
{
    double const product = a * b;
    return {product, std::fma(a, b, -product)};
}

inline DoubleDouble operator+(DoubleDouble a, DoubleDouble b)
{
    DoubleDouble const high = exact_sum(a.high, b.high);
    DoubleDouble const low = exact_sum(a.low, b.low);
    DoubleDouble const sum = ordered_sum(high.high, high.low + low.high);
    return ordered_sum(sum.high, sum.low + low.low);
}

inline DoubleDouble operator-(DoubleDouble a, DoubleDouble b)
{
    return a + DoubleDouble{-b.high, -b.low};
}

inline DoubleDouble operator*(DoubleDouble a, DoubleDouble b)
{
    DoubleDouble const high = exact_product(a.high, b.high);
    return ordered_sum(high.high, high.low + (a.high * b.low + a.low * b.high));
}

inline DoubleDouble operator/(DoubleDouble a, DoubleDouble b)
{
    double const first = a.high / b.high;
    DoubleDouble const rest = a - b * DoubleDouble{first, 0.0};
    double const second = rest.high / b.high;
    DoubleDouble const rest2 = rest - b * DoubleDouble{second, 0.0};
    return ordered_sum(first, second) + DoubleDouble{rest2.high / b.high, 0.0};
}

} // namespace velloric
