// SPDX-License-Identifier: MIT
#include "depth/curve.h"

#include "common/rounding.h"

#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace velloric {
namespace {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

// 2 / ln 2 and ln 2.
constexpr DoubleDouble kTwoOverLn2 = {0x1.71547652b82fep1, 0x1.777d0ffda0d24p-55};
constexpr DoubleDouble kLn2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};

/// Two to a power beyond these bounds, times a finite scale, is infinite or 0 as a float.
constexpr double kGreatestPower = 400.0;

/// A number as fraction * 2^power with a fraction from sqrt(1/2) to sqrt(2).
struct Parts {
    double fraction;
    int power;
};

Parts parts_of(double normal)
{
    constexpr std::uint64_t kRootOfHalf = 0x3fe6a09e667f3bcdU;
    auto const bits = std::bit_cast<std::uint64_t>(normal);
    auto const power = static_cast<std::int64_t>(bits - kRootOfHalf) >> 52;
    return {std::bit_cast<double>(bits - (static_cast<std::uint64_t>(power) << 52U)),
            static_cast<int>(power)};
}

/// 2^@p power, for powers of normal numbers.
double two_to(double power)
{
    return std::bit_cast<double>(static_cast<std::uint64_t>(static_cast<std::int64_t>(power) + 1023) << 52U);
}

// Both forms below use these series:
//   log2(m) = 2 / ln 2 * (s + s^3 / 3 + s^5 / 5 + ...) with s = (m - 1) / (m + 1), |s| < 0.172
//   2^f     = 1 + x + x^2 / 2! + x^3 / 3! + ...        with x = f ln 2,            |x| < 0.347

/// 1 / 19, 1 / 17, ..., 1 / 3, 1.
constexpr auto kLog2Series = [] {
    std::array<double, 10> series{};
    for (std::size_t i = 0; i < series.size(); ++i) {
        series[i] = 1.0 / static_cast<double>(19 - 2 * i);
    }
    return series;
}();

/// 1 / 13!, 1 / 12!, ..., 1 / 2!, 1, 1.
constexpr auto kExp2Series = [] {
    std::array<double, 14> series{};
    double factorial = 1.0;
    for (std::size_t n = 0; n < series.size(); ++n) {
        factorial *= n == 0 ? 1.0 : static_cast<double>(n);
        series[series.size() - 1 - n] = 1.0 / factorial;
    }
    return series;
}();

/// The polynomial with these coefficients, that of the highest power first. Odd and even powers are summed
/// side by side, because each step of a sum waits for the one before.
template <std::size_t Count>
double polynomial(std::array<double, Count> const& coefficients, double x)
{
    static_assert(Count % 2 == 0);
    double const square = x * x;
    double odd = coefficients[0];
    double even = coefficients[1];
    for (std::size_t i = 2; i < Count; i += 2) {
        odd = odd * square + coefficients[i];
        even = even * square + coefficients[i + 1];
    }
    return odd * x + even;
}

/// The base 2 logarithm of a positive normal number, to about 1e-15 of itself.
double log2_fast(double value)
{
    Parts const parts = parts_of(value);
    double const s = (parts.fraction - 1.0) / (parts.fraction + 1.0);
    return polynomial(kLog2Series, s * s) * s * kTwoOverLn2.high + static_cast<double>(parts.power);
}

/// 2^@p power to about 1e-15 of itself, for powers within +-kGreatestPower.
double exp2_fast(double power)
{
    // Adding it rounds to a whole number. `floor` is a call on old processors.
    constexpr double kToWhole = 0x1.8p52;
    double const whole = (power + kToWhole) - kToWhole;
    return polynomial(kExp2Series, (power - whole) * kLn2.high) * two_to(whole);
}

/// The same as log2_fast in about 100 bits.
DoubleDouble log2_slow(DoubleDouble value)
{
    Parts const parts = parts_of(value.high);
    double const down = two_to(-static_cast<double>(parts.power));
    DoubleDouble const fraction = {value.high * down, value.low * down};
    DoubleDouble const one = {1.0, 0.0};
    DoubleDouble const s = (fraction - one) / (fraction + one);
    DoubleDouble const s2 = s * s;
    DoubleDouble sum = {0.0, 0.0};
    for (int n = 43; n >= 1; n -= 2) {
        sum = sum * s2 + one / DoubleDouble{static_cast<double>(n), 0.0};
    }
    return kTwoOverLn2 * (s * sum) + DoubleDouble{static_cast<double>(parts.power), 0.0};
}

/// 2^@p power in about 100 bits, for powers within +-1000.
DoubleDouble exp2_slow(DoubleDouble power)
{
    double const whole = std::floor(power.high + 0.5);
    DoubleDouble const x = (power - DoubleDouble{whole, 0.0}) * kLn2;
    DoubleDouble const one = {1.0, 0.0};
    DoubleDouble sum = one;
    for (int n = 27; n >= 1; --n) {
        sum = sum * x / DoubleDouble{static_cast<double>(n), 0.0} + one;
    }
    double const up = two_to(whole);
    return {sum.high * up, sum.low * up};
}

/// 2^@p depth; 0 or infinity where no double holds it.
DoubleDouble two_to_depth(double depth)
{
    if (depth < -1000.0) {
        return {0.0, 0.0};
    }
    if (depth > 1000.0) {
        return {std::numeric_limits<double>::infinity(), 0.0};
    }
    return std::isnan(depth) ? DoubleDouble{depth, 0.0} : exp2_slow({depth, 0.0});
}

/// The float nearest to a positive number. A sum is rounded in one step by making its last bit odd before, as
/// far as it is not exact.
float nearest_float(DoubleDouble value)
{
    constexpr double kSurelyOff = 0x1p-85;
    auto bits = std::bit_cast<std::uint64_t>(value.high);
    if (std::fabs(value.low) > kSurelyOff * value.high && (bits & 1U) == 0) {
        bits += value.low > 0.0 ? 1 : ~std::uint64_t{0};
    }
    return narrow(std::bit_cast<double>(bits));
}

} // namespace

DepthCurve::DepthCurve(float depth, float scale)
    : scale_(std::fabs(wide(scale))), exponent_(two_to_depth(wide(depth)))
{
}

float DepthCurve::operator()(float height) const
{
    double const ratio = std::fabs(wide(height)) / scale_;
    bool const curved = ratio > 0.0 && ratio <= std::numeric_limits<double>::max() && ratio != 1.0;
    double const power = curved ? exponent_.high * log2_fast(ratio) : kGreatestPower;
    if (!(std::fabs(power) < kGreatestPower)) {
        return at_the_limits(height, ratio);
    }
    double const value = scale_ * exp2_fast(power);
    double const doubt = 0x1p-49 * (4.0 + std::fabs(power) + exponent_.high) * value;
    float const least = narrow(value - doubt);
    float const most = narrow(value + doubt);
    return least == most ? std::copysign(least, height) : slow(height);
}

/// The same in about 90 bits.
float DepthCurve::slow(float height) const
{
    DoubleDouble const ratio = DoubleDouble{std::fabs(wide(height)), 0.0} / DoubleDouble{scale_, 0.0};
    DoubleDouble const value = DoubleDouble{scale_, 0.0} * exp2_slow(exponent_ * log2_slow(ratio));
    return std::copysign(nearest_float(value), height);
}

/// The result for a height of 0 or of the scale, and where the power of the ratio is no float.
float DepthCurve::at_the_limits(float height, double ratio) const
{
    if (ratio == 0.0 || ratio == 1.0) {
        return height;
    }
    if (std::isnan(ratio) || std::isnan(exponent_.high)) {
        return std::numeric_limits<float>::quiet_NaN();
    }
    if (exponent_.high == 0.0) {
        return std::copysign(narrow(scale_), height);
    }
    return std::copysign(ratio < 1.0 ? 0.0f : std::numeric_limits<float>::infinity(), height);
}

} // namespace velloric
