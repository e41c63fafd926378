// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/png/png_filters.h"

#include <cstddef>

namespace umbrixlib::toolkit {

/// Bytes behind a row that unfilter_row() reads, whatever is in them.
inline constexpr std::size_t kBehindPngRow = 8;

/// Undoes filter_row() in-place.
///
/// @param row   Its filtered bytes, which become what they were.
/// @param above Those of the row above; zeros for the first row. Behind both rows there are kBehindPngRow
///              bytes more.
/// @param step  Bytes of a texel: 1, 2, 3, 4, 6 or 8.
void unfilter_row(PngFilter filter, std::span<std::uint8_t> row, std::uint8_t const* above, std::size_t step);

} // namespace umbrixlib::toolkit
