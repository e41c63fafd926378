// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace umbrixlib::toolkit {

/// What is taken from each byte of a row before it is packed, numbered as in the file: nothing, its
/// neighbour on the left, the one above, the mean of both, or the one of three that is nearest to
/// left + above - above left.
enum class PngFilter : std::uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

constexpr PngFilter kPngFilters[] = {PngFilter::kNone, PngFilter::kSub, PngFilter::kUp, PngFilter::kAverage,
                                     PngFilter::kPaeth};

/// Filters one row.
///
/// @param row   Its bytes.
/// @param above Those of the row above; zeros for the first row.
/// @param step  Bytes of a texel.
/// @param to    Takes as many bytes as @p row has. Neither of the others.
void filter_row(PngFilter filter, std::span<std::uint8_t const> row, std::uint8_t const* above,
                std::size_t step, std::uint8_t* to);

} // namespace umbrixlib::toolkit
