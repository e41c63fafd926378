// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/rounding.h"
#include "occlusion/map.h"

#include <algorithm>

void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a, ray* rays_b,
                          ray* rays_c, int rays, float /*h_scale*/, float radius, bool tile, bool h_tile,
                          bool v_tile, int* progress)
{
    using umbrixlib::detail::to_int;
    using umbrixlib::detail::wide;
    if (height < 1 || width < 1) {
        return;
    }
    velloric::Progress report(progress);
    umbrixlib::detail::Relief relief{};
    relief.heights = heights;
    relief.rows = height;
    relief.cols = width;
    relief.rows_wrap = tile && v_tile;
    relief.columns_wrap = tile && h_tile;
    relief.reach = radius;
    relief.ray_length = to_int(wide(static_cast<float>(width)) * wide(radius) + 0.5);
    if (height == 1 || width == 1 || rays < 1 || relief.ray_length < 1) {
        std::fill_n(occlusion, static_cast<long long>(height) * width, float3{1.0f, 1.0f, 1.0f});
    } else {
        umbrixlib::detail::survey(relief);
        velloric::map_occlusion(relief, {rays_c, rays_b, rays_a}, rays, occlusion, report);
    }
    report.finish();
}
