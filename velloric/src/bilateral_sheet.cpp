// SPDX-License-Identifier: MIT
#include "bilateral_sheet.h"

#include "vector_targets.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bilateral_sheet.cpp"
#include <hwy/foreach_target.h>

#include "bilateral_weights-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {

#if HWY_NATIVE_FMA
/// Range weights of the pairs of texels of a few rows, so that both texels of a pair can use them. Pair
/// (k, dx) at a texel is that with the texel k rows down and dx columns right; k is 0 to the radius, and with
/// 0 only dx from 0 on is kept. A row's weights stay until the row k below it is done.
class PairWeights {
public:
    PairWeights(std::size_t radius, std::size_t columns)
        : radius_(radius), columns_((columns + 2 * radius + kLanes - 1) / kLanes * kLanes + 2 * kLanes),
          weights_(arrays(radius) * columns_)
    {
    }

    /// Rows of weights that are kept.
    static std::size_t arrays(std::size_t radius)
    {
        return (radius + 1) * (radius + 2) / 2 * (2 * radius + 1);
    }

    /// The weights of pairs (@p down, @p right) in row @p row, from `radius` columns before the first on.
    float* at(std::size_t row, std::size_t down, std::ptrdiff_t right)
    {
        std::size_t const slot = down * (down + 1) / 2 + row % (down + 1);
        auto const pair = static_cast<std::size_t>(right + static_cast<std::ptrdiff_t>(radius_));
        return weights_.data() + (slot * (2 * radius_ + 1) + pair) * columns_;
    }

private:
    std::size_t radius_;
    std::size_t columns_;
    std::vector<float> weights_;
};

/// Makes the weights of the pairs that texels of one row have with texels below.
/// @param texels  `radius` columns before the first that is filtered.
/// @param nearest Fewest rows down that are of use.
HWY_INLINE void weigh_pairs(PairWeights& pairs, float const* texels, std::size_t stride, std::size_t row,
                            std::size_t radius, std::size_t columns, std::size_t nearest)
{
    constexpr Floats d;
    GaussianWeights const range_weights(nullptr);
    auto const reach = static_cast<std::ptrdiff_t>(radius);
    for (std::size_t down = nearest; down <= radius; ++down) {
        for (std::ptrdiff_t right = down == 0 ? 0 : -reach; right <= reach; ++right) {
            float const* const others = texels + down * stride + right;
            float* const weights = pairs.at(row, down, right);
            for (std::size_t x = 0; x < columns + 2 * radius; x += kLanes) {
                hn::StoreU(range_weights(hn::Sub(hn::LoadU(d, others + x), hn::LoadU(d, texels + x))), d,
                           weights + x);
            }
        }
    }
}

/// Filters one row whose pairs, and those of the rows above that reach it, are weighed. Every texel sums up
/// its taps in the order of the window's rows and columns, each operation rounded.
/// @param texels     The row's first texel.
/// @param weights_of Room for what the function needs.
template <std::size_t kVectors>
HWY_INLINE void sum_row(PairWeights& pairs, BilateralSheet const& sheet, float const* texels, std::size_t row,
                        std::vector<float const*>& weights_of, float* result, std::size_t columns)
{
    constexpr Floats d;
    std::size_t const radius = sheet.radius;
    auto const reach = static_cast<std::ptrdiff_t>(radius);
    std::size_t const window = 2 * radius + 1;
    float const* const first_tap = texels - radius * sheet.stride - radius;
    // In the order of the window: for each tap, where its weights begin.
    weights_of.clear();
    for (std::ptrdiff_t dy = -reach; dy <= reach; ++dy) {
        for (std::ptrdiff_t dx = -reach; dx <= reach; ++dx) {
            bool const is_above = dy < 0 || (dy == 0 && dx < 0);
            auto const down = static_cast<std::size_t>(is_above ? -dy : dy);
            weights_of.push_back(is_above ? pairs.at(row - down, down, -dx) + reach + dx
                                          : pairs.at(row, down, dx) + reach);
        }
    }
    for (std::size_t x = 0; x < columns; x += kVectors * kLanes) {
        Values sum[kVectors], weight_sum[kVectors];
        for (std::size_t v = 0; v < kVectors; ++v) {
            sum[v] = weight_sum[v] = hn::Zero(d);
        }
        float const* const* weights = weights_of.data();
        for (std::size_t line = 0; line < window; ++line) {
            float const* const taps = first_tap + line * sheet.stride + x;
            std::size_t const distance = line < radius ? radius - line : line - radius;
            float const* const spatial = sheet.spatial + distance * window;
            for (std::size_t column = 0; column < window; ++column) {
                float const* const range = *weights++ + x;
                for (std::size_t v = 0; v < kVectors; ++v) {
                    Values const weight = hn::Mul(spread(spatial[column]), hn::LoadU(d, range + v * kLanes));
                    sum[v] = hn::Add(sum[v], hn::Mul(weight, hn::LoadU(d, taps + column + v * kLanes)));
                    weight_sum[v] = hn::Add(weight_sum[v], weight);
                }
            }
        }
        for (std::size_t v = 0; v < kVectors; ++v) {
            auto const has_weight = hn::Gt(weight_sum[v], hn::Zero(d));
            Values const centre = hn::LoadU(d, texels + x + v * kLanes);
            hn::StoreU(hn::IfThenElse(has_weight, hn::Div(sum[v], weight_sum[v]), centre), d,
                       result + x + v * kLanes);
        }
    }
}

bool filter_sheet(BilateralSheet const& sheet)
{
    constexpr std::size_t kVectors = 4;
    constexpr std::size_t kStep = kVectors * kLanes;
    constexpr std::size_t kMostRadius = 10; // with more, fetching the weights takes longer than making them
    constexpr std::size_t kNarrowest = 128; // strip of columns
    constexpr std::size_t kWeightsAtOnce = 65536;
    static_assert(kBilateralBlock % kStep == 0 && kNarrowest % kStep == 0);
    std::size_t const radius = sheet.radius;
    if (radius > kMostRadius) {
        return false;
    }
    std::size_t const fitting = kWeightsAtOnce / PairWeights::arrays(radius) / kStep * kStep;
    std::size_t const strip =
        std::min(std::max(fitting, kNarrowest), (sheet.width + kStep - 1) / kStep * kStep);
    PairWeights pairs(radius, strip);
    std::vector<float const*> weights_of;
    for (std::size_t x = 0; x < sheet.width; x += strip) {
        std::size_t const columns = std::min(strip, (sheet.width - x + kStep - 1) / kStep * kStep);
        for (std::size_t row = 0; row < sheet.rows + radius; ++row) {
            float const* const texels = sheet.texels + row * sheet.stride + 2 * radius + x;
            std::size_t const nearest = row < radius ? radius - row : 0;
            weigh_pairs(pairs, texels - radius, sheet.stride, row, radius, columns, nearest);
            if (row >= radius) {
                float* const result = sheet.results + (row - radius) * sheet.result_stride + x;
                sum_row<kVectors>(pairs, sheet, texels, row, weights_of, result, columns);
            }
        }
    }
    return true;
}
#else
bool filter_sheet(BilateralSheet const& /*sheet*/)
{
    return false;
}
#endif

} // namespace velloric::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace velloric {

HWY_EXPORT(filter_sheet);

bool filter_sheet(BilateralSheet const& sheet)
{
    return HWY_DYNAMIC_DISPATCH(filter_sheet)(sheet);
}

} // namespace velloric
#endif
