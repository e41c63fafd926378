// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "foundation/rounding.h"
#include "occlusion_walk.h"

#include <algorithm>

using namespace velloric;

void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a, ray* rays_b,
                          ray* rays_c, int rays, float /*h_scale*/, float radius, bool tile, bool h_tile,
                          bool v_tile, int* progress)
{
    using umbrixlib::detail::narrow;
    using umbrixlib::detail::to_int;
    using umbrixlib::detail::wide;
    if (height < 1 || width < 1) {
        return;
    }
    Relief relief{};
    relief.heights = heights;
    relief.rows = height;
    relief.cols = width;
    relief.rows_wrap = tile && v_tile;
    relief.columns_wrap = tile && h_tile;
    relief.reach = radius;
    relief.ray_length = to_int(wide(static_cast<float>(width)) * wide(radius) + 0.5);
    long long const texels = static_cast<long long>(height) * width;
    if (height == 1 || width == 1 || rays < 1 || relief.ray_length < 1) {
        std::fill_n(occlusion, texels, float3{1.0f, 1.0f, 1.0f});
    } else {
        survey(relief);
        auto const share = [&](ray const* bundle, int y, int x) {
            int open = 0;
            for (int i = 0; i < rays; ++i) {
                open += ray_escapes(relief, bundle[i], y, x) ? 1 : 0;
            }
            return narrow(static_cast<double>(open) / static_cast<double>(rays));
        };
#pragma omp parallel for schedule(dynamic)
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                occlusion[static_cast<long long>(y) * width + x] = {share(rays_c, y, x), share(rays_b, y, x),
                                                                    share(rays_a, y, x)};
            }
        }
    }
    if (progress != nullptr) {
        *progress = 1000;
    }
}
