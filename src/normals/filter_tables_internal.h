// SPDX-License-Identifier: MIT
#pragma once

#include "common/float_functions.h"
#include "common/rounding.h"

#include <algorithm>
#include <cstddef>

namespace umbrixlib::detail {

/// Sigma of the bilateral filter's range table, at every call.
inline constexpr float kRangeSigma = 128.0f;
/// Differences of values are told apart in this many steps.
inline constexpr std::size_t kRangeTableSize = 256;

/// Number of floats in the spatial table of a bilateral filter: one for each distance from 0 to the radius
/// rounded up. A radius below 0, or not a number, needs the one for distance 0.
inline std::size_t spatial_table_size(float radius)
{
    return static_cast<std::size_t>(std::max(0, to_int(wide(detail::ceil(radius))))) + 1;
}

} // namespace umbrixlib::detail
