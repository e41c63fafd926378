// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "common/rounding.h"

#include <climits>
#include <cstddef>
#include <cstdint>

namespace umbrixlib::detail {

namespace {

constexpr int kLeft = -1;

/// Where a ray stands on an axis of @p side texels, or `kLeft` if it has left the map.
int place(int start, int offset, int side, bool wraps)
{
    if (offset == INT_MIN) {
        return kLeft;
    }
    std::int64_t const position = std::int64_t{start} + offset;
    if (!wraps && (position > side || position < 0)) {
        return kLeft;
    }
    if (position >= 0 && position < side) {
        return static_cast<int>(position);
    }
    std::int64_t const period = std::int64_t{side} - 1;
    if (period < 1) {
        return kLeft;
    }
    if (position >= side) {
        return static_cast<int>((position - 1) % period + 1);
    }
    return static_cast<int>((position % period + period) % period);
}

struct Relief {
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

bool is_open(Relief const& relief, Start const& start, float3 const* entries, int ray_length)
{
    for (int step = 0; step < ray_length; ++step) {
        float3 const& entry = entries[step];
        int const dy = to_int(wide(entry.y));
        float const ray_height = narrow(wide(entry.z) + wide(start.height));
        if (dy > ray_length || dy < -ray_length) {
            return true;
        }
        int const row = place(start.y, dy, relief.rows, relief.rows_wrap);
        int const col = place(start.x, to_int(wide(entry.x)), relief.cols, relief.cols_wrap);
        if (row == kLeft || col == kLeft) {
            return true;
        }
        auto const texel = static_cast<std::ptrdiff_t>(row) * relief.cols + col;
        if (wide(relief.heights[texel]) * wide(relief.scale) >= wide(ray_height)) {
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
    Relief const relief{heights, rows, cols, scale, tile && v_tile, tile && h_tile};
    Start const start{y, x, height, top > ceiling_from_reach ? ceiling_from_reach : top};
    int open = 0;
    for (int ray = 0; ray < ray_count; ++ray) {
        open += is_open(relief, start, table[ray], ray_length) ? 1 : 0;
    }
    return narrow(static_cast<double>(open) / static_cast<double>(ray_count));
}

} // namespace umbrix_v0
