// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace velloric {

/// Texels that `filter_row` handles at once, at most: it reads the rows of the window and writes the result
/// as if the width were the next multiple of this.
inline constexpr std::size_t kBilateralBlock = 64;

/// A row of texels with all that its windows reach, and the weights.
struct BilateralWindow {
    float const* texels;  ///< `radius` texels to the left of the row's first and `radius` rows before it.
    std::size_t stride;   ///< Floats from row to row.
    std::size_t radius;   ///< The window has 2 * radius + 1 rows and columns.
    float const* spatial; ///< radius + 1 rows, by |dy|, of 2 * radius + 1 weights, by dx.
    float const* range;   ///< 256 weights by difference.
    /// As of `is_gaussian_range`. If it is, instruction sets with fused multiply-add do not read `range`.
    bool range_is_gaussian;
};

/// Whether @p range is what `GenerateExp(128, range)` leaves in a table of zeros, so that `filter_row` may
/// make its weights instead of fetching them.
bool is_gaussian_range(float const* range);

/// Filters @p width texels of one row into @p result. A texel whose weights do not sum up to more than 0
/// keeps its value.
void filter_row(BilateralWindow const& window, float* result, std::size_t width);

} // namespace velloric
