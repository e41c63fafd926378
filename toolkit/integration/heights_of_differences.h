// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/picture_view.h"
#include "foundation/run_control.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace umbrixlib::toolkit {

/// What a height map's central differences are, or should be: for each texel the height of its next neighbour
/// less that of the one before. `width * height` numbers each, row by row.
struct CentralDifferences {
    int width = 0;
    int height = 0;
    std::vector<float> along_rows;
    std::vector<float> across_rows;
};

/// The heights whose central differences come nearest to @p differences, by least squares. At a border that
/// does not repeat a slope goes on as it is, as where normals are made with such a border: its difference
/// spans one texel twice, and counts a quarter.
///
/// The central difference does not see the mean of the heights and, where a side repeats and has an even
/// number of texels, stripes across it that are a texel wide, and with two such sides the chessboard. None of
/// these is in the result, so its mean is 0.
///
/// @param differences Finite numbers; their memory is used, so that 8 bytes a texel are all that is needed.
/// @param control     Watches the run, and may stop it; null for none.
/// @return `width * height` heights; empty if the run was stopped.
///
/// The same to the bit with any number of threads. Errors: std::bad_alloc.
std::optional<std::vector<float>>
heights_of_differences(CentralDifferences differences, Borders const& borders, RunControl* control = nullptr);

} // namespace umbrixlib::toolkit
