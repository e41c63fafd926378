// SPDX-License-Identifier: MIT
#include "bilateral/row.h"

#include "boundary/texture_kernels.h"
#include "common/exponential.h"
#include "common/vector_targets.h"

#include <cstddef>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bilateral/row.cpp"
#include <hwy/foreach_target.h>

#include "bilateral/weights-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace {

/// Filters texels @p x to @p x + kVectors * kLanes - 1 of the row. Every texel sums up its taps in the order
/// of the window's rows and columns, each operation rounded.
template <class RangeWeights, std::size_t kVectors>
HWY_INLINE void filter_block(BilateralWindow const& window, float* result, std::size_t x)
{
    constexpr Floats d;
    RangeWeights const range_weights(window.range);
    std::size_t const columns = 2 * window.radius + 1;
    Values centre[kVectors], sum[kVectors], weight_sum[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        centre[v] = hn::LoadU(d, window.texels + window.radius * (window.stride + 1) + x + v * kLanes);
        sum[v] = weight_sum[v] = hn::Zero(d);
    }
    for (std::size_t row = 0; row < columns; ++row) {
        float const* const taps = window.texels + row * window.stride + x;
        std::size_t const distance = row < window.radius ? window.radius - row : row - window.radius;
        float const* const spatial = window.spatial + distance * columns;
        for (std::size_t column = 0; column < columns; ++column) {
            for (std::size_t v = 0; v < kVectors; ++v) {
                Values const tap = hn::LoadU(d, taps + column + v * kLanes);
                Values const weight =
                    hn::Mul(spread(spatial[column]), range_weights(hn::Sub(tap, centre[v])));
                sum[v] = hn::Add(sum[v], hn::Mul(weight, tap));
                weight_sum[v] = hn::Add(weight_sum[v], weight);
            }
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        auto const has_weight = hn::Gt(weight_sum[v], hn::Zero(d));
        hn::StoreU(hn::IfThenElse(has_weight, hn::Div(sum[v], weight_sum[v]), centre[v]), d,
                   result + x + v * kLanes);
    }
}

template <class RangeWeights>
HWY_INLINE void filter_blocks(BilateralWindow const& window, float* result, std::size_t width)
{
    constexpr std::size_t kVectors = 2;
    static_assert(kBilateralBlock % (kVectors * kLanes) == 0);
    for (std::size_t x = 0; x < width; x += kVectors * kLanes) {
        filter_block<RangeWeights, kVectors>(window, result, x);
    }
}

void filter_row(BilateralWindow const& window, float* result, std::size_t width)
{
#if HWY_NATIVE_FMA
    if (window.range_is_gaussian) {
        filter_blocks<GaussianWeights>(window, result, width);
        return;
    }
#endif
    filter_blocks<TableWeights>(window, result, width);
}

} // namespace
} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace velloric {

using umbrixlib::detail::kRangeSigma;

HWY_EXPORT(filter_row);

bool is_gaussian_range(float const* range)
{
    constexpr std::size_t kEntries = 256;
    float known[kEntries] = {};
    GenerateExp(kRangeSigma, known);
    return std::memcmp(range, known, sizeof known) == 0;
}

void filter_row(BilateralWindow const& window, float* result, std::size_t width)
{
    HWY_DYNAMIC_DISPATCH(filter_row)(window, result, width);
}

} // namespace velloric
#endif
