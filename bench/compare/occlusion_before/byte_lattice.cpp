// SPDX-License-Identifier: MIT
#include "compare/occlusion_before/byte_lattice.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace occlusion_before {
namespace {

constexpr int kMostTop = 255;
constexpr long long kSample = 2048;      ///< Texels that are looked at first.
constexpr int kTexelsForThreads = 65536; ///< A smaller map is checked faster by one thread.
constexpr double kMostDoubt = 0x1p-10;   ///< Of a level. With more, too many steps would be in doubt.

/// The different heights of a map, as long as they are few.
class FewHeights {
public:
    /// False if there are too many.
    bool add(float h)
    {
        auto const bits = std::bit_cast<std::uint32_t>(h);
        std::size_t at = bits * 0x9e3779b1U >> 22;
        while (used_[at] && slots_[at] != bits) {
            at = (at + 1) % slots_.size();
        }
        if (!used_[at]) {
            used_[at] = true;
            slots_[at] = bits;
            heights_.push_back(static_cast<double>(h));
        }
        return heights_.size() <= kMostTop + 2; // both zeros
    }

    std::vector<double> const& heights() const { return heights_; }

private:
    std::array<std::uint32_t, 1024> slots_;
    std::array<bool, 1024> used_{};
    std::vector<double> heights_;
};

/// How far the heights are at most from levels spaced equally; in levels, or 1 if they are none.
double error_of_levels(std::span<double const> heights, double lowest, double scale)
{
    double error = 0.0;
    for (double const h : heights) {
        double const levels = (h - lowest) * scale;
        error = std::max(error, std::fabs(levels - std::floor(levels + 0.5)));
        if (error > kMostDoubt) {
            return 1.0;
        }
    }
    return error;
}

} // namespace

ByteLattice::ByteLattice(Relief const& relief, int top, double error)
    : origin_(static_cast<double>(relief.lowest)),
      scale_(top / (static_cast<double>(relief.top) - static_cast<double>(relief.lowest))), top_(top)
{
    // A sum of a height and a climb below the range is rounded by at most half of its last place; two heights
    // are off their levels. The sixteenth more covers the roundings in double.
    double const range = static_cast<double>(relief.top) - origin_;
    double const rounding = 0x1p-24 * (static_cast<double>(relief.magnitude) + range);
    doubt_ = (rounding * scale_ + 2.0 * error) * 1.0625;
}

std::optional<ByteLattice> ByteLattice::spaced(Relief const& relief, std::vector<double> const& heights)
{
    double const lowest = static_cast<double>(relief.lowest);
    double const range = static_cast<double>(relief.top) - lowest;
    for (int top = 1; top <= kMostTop; ++top) {
        ByteLattice const lattice(relief, top, error_of_levels(heights, lowest, top / range));
        if (lattice.doubt_ <= kMostDoubt) {
            return lattice;
        }
    }
    return std::nullopt;
}

double ByteLattice::largest_error(Relief const& relief, std::vector<double> const& heights) const
{
    std::array<float, kMostTop + 1> of_level;
    of_level.fill(std::numeric_limits<float>::quiet_NaN());
    for (double const h : heights) {
        of_level[height(static_cast<float>(h))] = static_cast<float>(h);
    }
    double error = error_of_levels(heights, origin_, scale_);
    auto const scale = static_cast<float>(scale_);
    bool const many = relief.rows > kTexelsForThreads / relief.cols;
#pragma omp parallel for schedule(static) reduction(max : error) if (many)
    for (int row = 0; row < relief.rows; ++row) {
        float const* const in_row = relief.row(row);
        for (int column = 0; column < relief.cols; ++column) {
            float const h = in_row[column];
            float const guess = (h - relief.lowest) * scale + 0.5f;
            auto const level = static_cast<std::size_t>(guess < kMostTop + 1 ? static_cast<int>(guess) : 0);
            if (!(h == of_level[level] || std::isnan(h))) {
                error = std::max(error, error_of_levels(std::array{static_cast<double>(h)}, origin_, scale_));
            }
        }
    }
    return error;
}

std::optional<ByteLattice> ByteLattice::of(Relief const& relief)
{
    // Most maps show in a few thousand texels what they are.
    long long const texels = static_cast<long long>(relief.rows) * relief.cols;
    for (long long stride = std::max(texels / kSample, 1LL); stride > 0; stride = stride > 1 ? 1 : 0) {
        FewHeights few;
        few.add(relief.lowest);
        few.add(relief.top); // not a height of the map if all are below zero
        for (long long i = 0; i < texels; i += stride) {
            if (!std::isnan(relief.heights[i]) && !few.add(relief.heights[i])) {
                return std::nullopt;
            }
        }
        if (std::optional<ByteLattice> const sample = spaced(relief, few.heights())) {
            ByteLattice const whole(relief, sample->top_, sample->largest_error(relief, few.heights()));
            if (whole.doubt_ <= kMostDoubt) {
                return whole;
            }
        }
    }
    return std::nullopt;
}

} // namespace occlusion_before
