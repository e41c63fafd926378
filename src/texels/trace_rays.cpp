// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "common/relief.h"
#include "common/rounding.h"

#include <cstddef>

namespace umbrixlib::detail {

namespace {

struct Map {
    float const* heights;
    int rows;
    int cols;
    float scale;
    bool rows_wrap;
    bool cols_wrap;
};

struct Start {
    int y;
    int x;
    float height;  ///< Scaled.
    float ceiling; ///< A ray at or above it is open.
};

bool is_open(Map const& map, Start const& start, float3 const* entries, int ray_length)
{
    for (int step = 0; step < ray_length; ++step) {
        float3 const& entry = entries[step];
        int const dy = to_int(wide(entry.y));
        float const ray_height = narrow(wide(entry.z) + wide(start.height));
        if (dy > ray_length || dy < -ray_length) {
            return true;
        }
        int const row = place_on_axis(start.y, dy, map.rows, map.rows_wrap);
        int const col = place_on_axis(start.x, to_int(wide(entry.x)), map.cols, map.cols_wrap);
        if (row == kOffTheMap || col == kOffTheMap) {
            return true;
        }
        auto const texel = static_cast<std::ptrdiff_t>(row) * map.cols + col;
        if (wide(map.heights[texel]) * wide(map.scale) >= wide(ray_height)) {
            return false;
        }
        if (!(start.ceiling > ray_height)) {
            return true;
        }
    }
    return true;
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

float trace_rays(float* heights, int rows, int cols, int y, int x, int ray_count, float scale,
                 float max_height, float reach, float3** table, int ray_length, bool tile, bool h_tile,
                 bool v_tile)
{
    float const height = narrow(wide(heights[static_cast<std::ptrdiff_t>(y) * cols + x]) * wide(scale));
    float const top = narrow(wide(max_height) * wide(scale));
    float const ceiling_from_reach = narrow(wide(height) + wide(reach));
    if (height == top) {
        return 1.0f;
    }
    Map const map{heights, rows, cols, scale, tile && v_tile, tile && h_tile};
    Start const start{y, x, height, top > ceiling_from_reach ? ceiling_from_reach : top};
    int open = 0;
    for (int ray = 0; ray < ray_count; ++ray) {
        open += is_open(map, start, table[ray], ray_length) ? 1 : 0;
    }
    return narrow(static_cast<double>(open) / static_cast<double>(ray_count));
}

} // namespace umbrix_v0
