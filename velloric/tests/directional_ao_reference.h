// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The ray walk as it is defined, in plain loops over whole step tables: what the occlusion kernel must
/// equal.

#include "boundary/texture_kernels.h"
#include "common/rounding.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <vector>

namespace velloric::reference {

using umbrixlib::detail::narrow;
using umbrixlib::detail::to_int;
using umbrixlib::detail::wide;

/// Entry j - 1 holds step j of a ray: offsets in texels with a rounding half, and the height gained.
using StepTable = std::vector<float3>;

inline int ray_length(int cols, float radius)
{
    return to_int(wide(static_cast<float>(cols)) * wide(radius) + 0.5);
}

inline StepTable step_table(ray const& step, int rows, int cols, int length)
{
    auto const half = [](float v) { return v > 0.0f ? 0.5 : -0.5; };
    StepTable table(static_cast<std::size_t>(length));
    for (int j = 1; j <= length; ++j) {
        double const f = wide(static_cast<float>(j));
        table[static_cast<std::size_t>(j - 1)] = {
            narrow(f * wide(step.x) * wide(static_cast<float>(cols)) + half(step.x)),
            narrow(f * wide(step.y) * wide(static_cast<float>(rows)) + half(step.y)),
            narrow(f * wide(step.z))};
    }
    return table;
}

/// The share of rays that get away from texel (@p x, @p y). Both sides of the map above 1 and @p length above
/// 0, without which the walk would not end or would read past its tables.
inline float trace_rays(float const* heights, int rows, int cols, int y, int x,
                        std::vector<StepTable> const& tables, float scale, float max_height, float reach,
                        int length, bool tile, bool h_tile, bool v_tile)
{
    float const h0 = narrow(wide(heights[static_cast<std::ptrdiff_t>(y) * cols + x]) * wide(scale));
    float const top = narrow(wide(max_height) * wide(scale));
    float const ceiling_from_reach = narrow(wide(h0) + wide(reach));
    if (h0 == top) {
        return 1.0f;
    }
    float const ceiling = top > ceiling_from_reach ? ceiling_from_reach : top;
    int open = 0;
    for (StepTable const& table : tables) {
        for (int j = 0;;) {
            float3 const& entry = table[static_cast<std::size_t>(j)];
            int const dy = to_int(wide(entry.y));
            float const ray_height = narrow(wide(entry.z) + wide(h0));
            if (dy > length || dy < -length) {
                ++open;
                break;
            }
            long long row = static_cast<long long>(y) + dy;
            if (!(tile && v_tile) && (row > rows || row < 0)) {
                ++open;
                break;
            }
            while (row > rows - 1) {
                row -= rows - 1;
            }
            while (row < 0) {
                row += rows - 1;
            }
            int const dx = to_int(wide(entry.x));
            long long col = static_cast<long long>(x) + dx;
            if (dx == INT_MIN || (!(tile && h_tile) && (col > cols || col < 0))) {
                ++open;
                break;
            }
            while (col > cols - 1) {
                col -= cols - 1;
            }
            while (col < 0) {
                col += cols - 1;
            }
            if (wide(heights[row * cols + col]) * wide(scale) >= wide(ray_height)) {
                break;
            }
            ++j;
            if (!(ceiling > ray_height) || j == length) {
                ++open;
                break;
            }
        }
    }
    return narrow(static_cast<double>(open) / static_cast<double>(tables.size()));
}

/// Three bundles of step tables over one map.
class Occlusion {
public:
    Occlusion(std::vector<float> const& heights, int rows, int cols, ray const* a, ray const* b, ray const* c,
              int rays, float radius, bool tile, bool h_tile, bool v_tile)
        : heights_(heights.data()), rows_(rows), cols_(cols), length_(ray_length(cols, radius)),
          reach_(radius), tile_(tile), h_tile_(h_tile), v_tile_(v_tile)
    {
        for (float const h : heights) {
            if (h > max_height_) {
                max_height_ = h;
            }
        }
        for (int i = 0; i < rays; ++i) {
            a_.push_back(step_table(a[i], rows, cols, length_));
            b_.push_back(step_table(b[i], rows, cols, length_));
            c_.push_back(step_table(c[i], rows, cols, length_));
        }
    }

    float3 at(int y, int x) const { return {share(c_, y, x), share(b_, y, x), share(a_, y, x)}; }

private:
    float share(std::vector<StepTable> const& tables, int y, int x) const
    {
        return trace_rays(heights_, rows_, cols_, y, x, tables, 1.0f, max_height_, reach_, length_, tile_,
                          h_tile_, v_tile_);
    }

    float const* heights_;
    int rows_;
    int cols_;
    int length_;
    float reach_;
    bool tile_;
    bool h_tile_;
    bool v_tile_;
    float max_height_ = 0.0f;
    std::vector<StepTable> a_;
    std::vector<StepTable> b_;
    std::vector<StepTable> c_;
};

} // namespace velloric::reference
