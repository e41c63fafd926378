// SPDX-License-Identifier: MIT
#include "stages/ray_tables.h"

#include "common/ray_steps.h"
#include "common/relief.h"
#include "common/rounding.h"

#include <climits>
#include <new>

namespace coralith {
namespace {

/// Whether a step @p offset texels along an axis has left the map from every texel of it.
bool outside_from_everywhere(int offset, int size, bool wraps)
{
    return !wraps && (offset > size || offset <= -size);
}

void add_ray(Relief const& relief, ray const& step, RayTable& table)
{
    umbrixlib::detail::RaySteps const steps(step, relief);
    for (long long number = 1; number <= relief.ray_length; ++number) {
        int const j = static_cast<int>(number);
        int const rows = steps.rows(j);
        int const columns = steps.columns(j);
        if (rows > relief.ray_length || rows < -relief.ray_length || columns == INT_MIN ||
            outside_from_everywhere(rows, relief.rows, relief.rows_wrap) ||
            outside_from_everywhere(columns, relief.cols, relief.columns_wrap)) {
            break;
        }
        float const climb = steps.climb(j);
        table.offsets.push_back(columns);
        table.offsets.push_back(rows);
        table.climbs.push_back(climb);
        // Sums round in order, so a ray that has climbed to the top from the lowest texel, or to the reach,
        // has done so from all.
        if (climb + relief.lowest >= relief.top || climb >= relief.reach) {
            break;
        }
    }
    if (table.steps() > INT_MAX) {
        throw std::bad_alloc();
    }
    table.ends.push_back(static_cast<std::int32_t>(table.steps()));
}

} // namespace

RayTable tabulate(Relief const& relief, ray const* rays, int first, int end, std::size_t most_steps)
{
    RayTable table;
    for (int i = first; i < end && (i == first || table.steps() < most_steps); ++i) {
        add_ray(relief, rays[i], table);
    }
    if (table.steps() == 0) { // a buffer has at least one element
        table.offsets.assign(2, 0);
        table.climbs.assign(1, 0.0f);
    }
    return table;
}

} // namespace coralith
