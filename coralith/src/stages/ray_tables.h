// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray.h"
#include "common/relief.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace coralith {

using umbrixlib::detail::Relief;

/// The steps of some rays, worked out once: no step beyond a list's end can block its ray at any texel.
struct RayTable {
    std::vector<std::int32_t> offsets; ///< Columns, then rows, for each step.
    std::vector<float> climbs;         ///< Height gained, for each step.
    std::vector<std::int32_t> ends{0}; ///< Ray r has the steps ends[r] to ends[r + 1] - 1.

    int rays() const { return static_cast<int>(ends.size()) - 1; }
    std::size_t steps() const { return climbs.size(); }
};

/// The table of rays @p first and following, until it has @p most_steps or @p end is reached: at least one
/// ray.
RayTable tabulate(Relief const& relief, ray const* rays, int first, int end, std::size_t most_steps);

} // namespace coralith
