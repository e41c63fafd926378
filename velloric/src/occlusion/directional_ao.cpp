// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/relief.h"
#include "occlusion/map.h"

#include <algorithm>

void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a, ray* rays_b,
                          ray* rays_c, int rays, float /*h_scale*/, float radius, bool tile, bool h_tile,
                          bool v_tile, int* progress)
{
    if (height < 1 || width < 1) {
        return;
    }
    velloric::Progress report(progress);
    auto const relief =
        umbrixlib::detail::relief_over(heights, height, width, tile && v_tile, tile && h_tile, radius);
    if (height == 1 || width == 1 || rays < 1 || relief.ray_length < 1) {
        std::fill_n(occlusion, static_cast<long long>(height) * width, float3{1.0f, 1.0f, 1.0f});
    } else {
        velloric::map_occlusion(relief, {rays_c, rays_b, rays_a}, rays, occlusion, report);
    }
    report.finish();
}
