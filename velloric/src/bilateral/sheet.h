// SPDX-License-Identifier: MIT
#pragma once

#include "bilateral/row.h"

#include <cstddef>

namespace velloric {

/// Some rows of texels with all that their windows reach, wrapped, to be filtered with the usual range
/// weights (`is_gaussian_range`).
struct BilateralSheet {
    float const* texels; ///< `radius` rows before the first and 2 * `radius` columns before the first.
    /// Floats from row to row: the width rounded up to kBilateralBlock, plus 4 * `radius` + kBilateralBlock.
    std::size_t stride;
    std::size_t radius;
    float const* spatial; ///< As in BilateralWindow.
    std::size_t rows;
    std::size_t width;
    float* results;            ///< Rows of the width rounded up to kBilateralBlock.
    std::size_t result_stride; ///< Floats from row to row.
};

/// Filters a sheet as `filter_row` filters its rows, with equal bits, and makes the weight of two texels once
/// for both. False, and nothing is done, where that is no gain: if the window is wider than the sheet, or the
/// instruction set has no fused multiply-add.
bool filter_sheet(BilateralSheet const& sheet);

} // namespace velloric
