// SPDX-License-Identifier: MIT
#include "bilateral/sheet.h"

#include "common/vector_targets.h"

#include <algorithm>
#include <cstddef>
#include <hwy/aligned_allocator.h>
#include <new>
#include <vector>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bilateral/sheet.cpp"
#include <hwy/foreach_target.h>

#include "bilateral/weights-inl.h"

HWY_BEFORE_NAMESPACE();
namespace velloric::HWY_NAMESPACE {
namespace {

#if HWY_NATIVE_FMA
/// A sheet on its way through the filter. Two rows that are `down` apart meet once: the weights of their
/// pairs of texels are made for the upper one and kept for the lower one, which takes them a little behind.
///
/// Texel row y sums up tap row dy at time 2 * y + dy. So each goes through its taps from the first to the
/// last, and rows y and y + k meet at 2 * y + k, for both of them.
class MeetingRows {
public:
    explicit MeetingRows(BilateralSheet const& sheet)
        : sheet_(sheet), reach_(static_cast<std::ptrdiff_t>(sheet.radius)),
          columns_(static_cast<std::ptrdiff_t>((sheet.width + kBilateralBlock - 1) / kBilateralBlock *
                                               kBilateralBlock)),
          margin_((reach_ + kLine - 1) / kLine * kLine),
          pair_stride_(columns_ + 2 * margin_ + kLine), // an odd number of lines: no two share a cache set
          pairs_(hwy::AllocateAligned<float>(static_cast<std::size_t>((2 * reach_ + 1) * pair_stride_))),
          weight_sums_(sheet.rows * static_cast<std::size_t>(columns_))
    {
        if (pairs_ == nullptr) {
            throw std::bad_alloc();
        }
    }

    void filter()
    {
        auto const rows = static_cast<std::ptrdiff_t>(sheet_.rows);
        for (std::ptrdiff_t row = 0; row < rows; ++row) {
            std::fill_n(sums(row), columns_, 0.0f);
        }
        for (std::ptrdiff_t time = -reach_; time <= 2 * (rows - 1) + reach_; ++time) {
            for (std::ptrdiff_t down = (time + reach_) % 2 == 0 ? reach_ % 2 : 1 - reach_ % 2; down <= reach_;
                 down += 2) {
                std::ptrdiff_t const upper = (time - down) / 2; // even, so exact
                std::ptrdiff_t const lower = upper + down;
                bool const has_upper = upper >= 0 && upper < rows;
                bool const has_lower = down != 0 && lower >= 0 && lower < rows;
                if (has_upper && has_lower) {
                    meet<true, true>(upper, down);
                } else if (has_upper) {
                    meet<true, false>(upper, down);
                } else if (has_lower) {
                    meet<false, true>(upper, down);
                }
            }
        }
        for (std::ptrdiff_t row = 0; row < rows; ++row) {
            finish(row);
        }
    }

private:
    static constexpr std::ptrdiff_t kLine = 16; ///< Floats of a cache line.

    float const* texels(std::ptrdiff_t row) const
    {
        return sheet_.texels + (row + reach_) * static_cast<std::ptrdiff_t>(sheet_.stride) + 2 * reach_;
    }
    float* sums(std::ptrdiff_t row) const
    {
        return sheet_.results + row * static_cast<std::ptrdiff_t>(sheet_.result_stride);
    }
    float* weight_sums(std::ptrdiff_t row) { return weight_sums_.data() + row * columns_; }

    /// Range weights of the upper texels, from the first of the row on, with those @p right columns right.
    float* pairs(std::ptrdiff_t right) const
    {
        return pairs_.get() + (right + reach_) * pair_stride_ + margin_;
    }

    /// Adds the taps that row @p upper and the row @p down below it have in each other, for both or one of
    /// them.
    template <bool kUpper, bool kLower>
    HWY_INLINE void meet(std::ptrdiff_t upper, std::ptrdiff_t down)
    {
        constexpr std::ptrdiff_t kStep = kBilateralBlock;
        if (kLower) {
            weigh(upper, down, -reach_, 0);
        }
        std::ptrdiff_t behind = 0;
        for (std::ptrdiff_t x = 0; x < columns_; x += kStep) {
            if (kUpper) {
                for (std::ptrdiff_t v = 0; v < kStep; v += kUpperVectors * kLanes) {
                    add_upper<kLower>(upper, down, x + v);
                }
            } else {
                weigh(upper, down, x, x + kStep);
            }
            if (kLower) {
                if (x + kStep == columns_) {
                    weigh(upper, down, columns_, columns_ + reach_);
                }
                bool const is_last = x + kStep == columns_;
                for (; behind < columns_ && (is_last || behind + kStep + reach_ <= x + kStep);
                     behind += kLowerVectors * kLanes) {
                    add_lower(upper, down, behind);
                }
            }
        }
    }

    /// Makes the weights of upper texels @p begin to @p end - 1, and of a few more.
    HWY_INLINE void weigh(std::ptrdiff_t upper, std::ptrdiff_t down, std::ptrdiff_t begin, std::ptrdiff_t end)
    {
        constexpr Floats d;
        GaussianWeights const range_weights(nullptr);
        float const* const own = texels(upper);
        float const* const taps = texels(upper + down);
        for (std::ptrdiff_t x = begin; x < end; x += kLanes) {
            Values const centre = hn::LoadU(d, own + x);
            for (std::ptrdiff_t right = -reach_; right <= reach_; ++right) {
                hn::StoreU(range_weights(hn::Sub(hn::LoadU(d, taps + x + right), centre)), d,
                           pairs(right) + x);
            }
        }
    }

    template <bool kKeep>
    HWY_INLINE void add_upper(std::ptrdiff_t upper, std::ptrdiff_t down, std::ptrdiff_t x)
    {
        constexpr Floats d;
        GaussianWeights const range_weights(nullptr);
        float* const sum_at = sums(upper) + x;
        float* const weight_sum_at = weight_sums(upper) + x;
        float const* const taps = texels(upper + down) + x - reach_;
        float const* const spatial = sheet_.spatial + down * (2 * reach_ + 1);
        float* kept = pairs(-reach_) + x;
        Values centre[kUpperVectors], sum[kUpperVectors], weight_sum[kUpperVectors];
        HWY_UNROLL(4)
        for (std::size_t v = 0; v < kUpperVectors; ++v) {
            centre[v] = hn::LoadU(d, texels(upper) + x + v * kLanes);
            sum[v] = hn::LoadU(d, sum_at + v * kLanes);
            weight_sum[v] = hn::LoadU(d, weight_sum_at + v * kLanes);
        }
        for (std::ptrdiff_t column = 0; column <= 2 * reach_; ++column) {
            Values const distance = spread(spatial[column]);
            HWY_UNROLL(4)
            for (std::size_t v = 0; v < kUpperVectors; ++v) {
                Values const tap = hn::LoadU(d, taps + column + v * kLanes);
                Values const range = range_weights(hn::Sub(tap, centre[v]));
                if (kKeep) {
                    hn::StoreU(range, d, kept + v * kLanes);
                }
                Values const weight = hn::Mul(distance, range);
                sum[v] = hn::Add(sum[v], hn::Mul(weight, tap));
                weight_sum[v] = hn::Add(weight_sum[v], weight);
            }
            kept += pair_stride_;
        }
        HWY_UNROLL(4)
        for (std::size_t v = 0; v < kUpperVectors; ++v) {
            hn::StoreU(sum[v], d, sum_at + v * kLanes);
            hn::StoreU(weight_sum[v], d, weight_sum_at + v * kLanes);
        }
    }

    HWY_INLINE void add_lower(std::ptrdiff_t upper, std::ptrdiff_t down, std::ptrdiff_t x)
    {
        constexpr Floats d;
        float* const sum_at = sums(upper + down) + x;
        float* const weight_sum_at = weight_sums(upper + down) + x;
        float const* const taps = texels(upper) + x - reach_;
        float const* const spatial = sheet_.spatial + down * (2 * reach_ + 1);
        float const* kept = pairs(reach_) + x - reach_; // the leftmost tap has this texel to its right
        Values sum[kLowerVectors], weight_sum[kLowerVectors];
        HWY_UNROLL(4)
        for (std::size_t v = 0; v < kLowerVectors; ++v) {
            sum[v] = hn::LoadU(d, sum_at + v * kLanes);
            weight_sum[v] = hn::LoadU(d, weight_sum_at + v * kLanes);
        }
        for (std::ptrdiff_t column = 0; column <= 2 * reach_; ++column) {
            Values const distance = spread(spatial[column]);
            HWY_UNROLL(4)
            for (std::size_t v = 0; v < kLowerVectors; ++v) {
                Values const weight = hn::Mul(distance, hn::LoadU(d, kept + v * kLanes));
                sum[v] = hn::Add(sum[v], hn::Mul(weight, hn::LoadU(d, taps + column + v * kLanes)));
                weight_sum[v] = hn::Add(weight_sum[v], weight);
            }
            kept += 1 - pair_stride_;
        }
        HWY_UNROLL(4)
        for (std::size_t v = 0; v < kLowerVectors; ++v) {
            hn::StoreU(sum[v], d, sum_at + v * kLanes);
            hn::StoreU(weight_sum[v], d, weight_sum_at + v * kLanes);
        }
    }

    void finish(std::ptrdiff_t row)
    {
        constexpr Floats d;
        float* const result = sums(row);
        float const* const centres = texels(row);
        for (std::ptrdiff_t x = 0; x < columns_; x += kLanes) {
            Values const weight_sum = hn::LoadU(d, weight_sums(row) + x);
            auto const has_weight = hn::Gt(weight_sum, hn::Zero(d));
            hn::StoreU(hn::IfThenElse(has_weight, hn::Div(hn::LoadU(d, result + x), weight_sum),
                                      hn::LoadU(d, centres + x)),
                       d, result + x);
        }
    }

    static constexpr std::size_t kUpperVectors = 2; ///< Registers of texels side by side.
    static constexpr std::size_t kLowerVectors = 4;
    static_assert(kBilateralBlock % (kUpperVectors * kLanes) == 0);
    static_assert(kBilateralBlock % (kLowerVectors * kLanes) == 0);

    BilateralSheet const& sheet_;
    std::ptrdiff_t const reach_;
    std::ptrdiff_t const columns_; ///< Texels of a row, rounded up.
    std::ptrdiff_t const margin_;
    std::ptrdiff_t const pair_stride_;
    hwy::AlignedFreeUniquePtr<float[]> const pairs_;
    std::vector<float> weight_sums_; ///< `results` hold the other sums meanwhile.
};

bool filter_sheet(BilateralSheet const& sheet)
{
    if (sheet.width < 2 * sheet.radius) {
        return false; // most weights would belong to the texels beyond the borders
    }
    MeetingRows(sheet).filter();
    return true;
}
#else
bool filter_sheet(BilateralSheet const& /*sheet*/)
{
    return false;
}
#endif

} // namespace
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
