// SPDX-License-Identifier: MIT

/// @file
/// The range weights of the bilateral filter, once per instruction set.

#if defined(VELLORIC_BILATERAL_WEIGHTS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VELLORIC_BILATERAL_WEIGHTS_INL_H
#undef VELLORIC_BILATERAL_WEIGHTS_INL_H
#else
#define VELLORIC_BILATERAL_WEIGHTS_INL_H
#endif

#include "common/exponential.h"

#include <cstddef>
#include <cstdint>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {

using umbrixlib::detail::kExpPolynomial;
using umbrixlib::detail::kLn2;
using umbrixlib::detail::kLog2OfE;

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Values = hn::Vec<Floats>;
using Integers = hn::RebindToSigned<Floats>;

constexpr std::size_t kLanes = hn::MaxLanes(Floats());

/// Adding this to a float of modest size leaves the nearest integer, ties to even, in the low bits of the
/// sum.
constexpr float kRounder = 0x1.8p23f;

HWY_INLINE Values spread(float value)
{
    return hn::Set(Floats(), value);
}

/// kRounder plus the integer nearest to the exact product of @p difference and 255.
HWY_INLINE Values rounded_steps(Values difference)
{
#if HWY_NATIVE_FMA
    return hn::MulAdd(difference, spread(255.0f), spread(kRounder));
#else
    // 256 * d is exact, so `lost` is exactly what the product lacks. It matters where the product as rounded
    // lies in the middle of two integers, and in truth on one side of it.
    Values const scaled = hn::Mul(difference, spread(256.0f));
    Values const product = hn::Sub(scaled, difference);
    Values const lost = hn::Sub(hn::Sub(scaled, product), difference);
    Values const steps = hn::Add(product, spread(kRounder));
    Values const rest = hn::Sub(product, hn::Sub(steps, spread(kRounder)));
    auto const is_above = hn::And(hn::Eq(rest, spread(0.5f)), hn::Gt(lost, spread(0.0f)));
    auto const is_below = hn::And(hn::Eq(rest, spread(-0.5f)), hn::Lt(lost, spread(0.0f)));
    Values const raised = hn::IfThenElse(is_above, hn::Add(steps, spread(1.0f)), steps);
    return hn::IfThenElse(is_below, hn::Sub(steps, spread(1.0f)), raised);
#endif
}

/// Range weights of any table, fetched one by one. A difference that is not a number has the last entry.
class TableWeights {
public:
    explicit HWY_INLINE TableWeights(float const* table) : table_(table) {}

    HWY_INLINE Values operator()(Values difference) const
    {
        Values const steps = rounded_steps(hn::Abs(difference));
        Values const last = spread(kRounder + 255.0f);
        Values const capped = hn::IfThenElse(hn::Lt(steps, last), steps, last);
        auto const indices =
            hn::Sub(hn::BitCast(Integers(), capped), hn::BitCast(Integers(), spread(kRounder)));
        HWY_ALIGN std::int32_t index[kLanes];
        HWY_ALIGN float weights[kLanes];
        hn::Store(indices, Integers(), index);
        for (std::size_t i = 0; i < kLanes; ++i) {
            weights[i] = table_[index[i]];
        }
        return hn::Load(Floats(), weights);
    }

private:
    float const* table_;
};

#if HWY_NATIVE_FMA
/// The range weights of `GenerateExp(128, ...)`, made anew: exp(-4.5 * (i / 128)^2) up to entry 128, then 0.
class GaussianWeights {
public:
    explicit HWY_INLINE GaussianWeights(float const* /*table*/) {}

    HWY_INLINE Values operator()(Values difference) const
    {
        // With u = 3 * i / 128 the exponent is -u * u / 2; u and its square are exact. Neither needs a sign:
        // the square takes it away, and nearest integers lie symmetrically.
        constexpr float kScale = 3.0f / 128.0f;
        Values const u = hn::MulSub(rounded_steps(difference), spread(kScale), spread(kRounder * kScale));
        Values const square = hn::Mul(u, u);
        Values const halvings =
            hn::NegMulAdd(square, spread(static_cast<float>(kLog2OfE / 2)), spread(kRounder));
        // -2 times the argument of the polynomial, whose coefficients take up the factor.
        Values const rest = hn::MulAdd(hn::Sub(halvings, spread(kRounder)), spread(2 * kLn2), square);
        Values sum = spread(kExpPolynomial[0] / 64);
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[1] / -32));
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[2] / 16));
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[3] / -8));
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[4] / 4));
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[5] / -2));
        sum = hn::MulAdd(sum, rest, spread(kExpPolynomial[6]));
        // The low bits of `halvings` are added to the exponent.
        auto const scaled =
            hn::Add(hn::BitCast(Integers(), sum), hn::ShiftLeft<23>(hn::BitCast(Integers(), halvings)));
        constexpr float kLastSquare = (128 * kScale) * (128 * kScale);
        return hn::IfThenElseZero(hn::Le(square, spread(kLastSquare)), hn::BitCast(Floats(), scaled));
    }
};
#endif

} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
