// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/even_rays.h"

void GenerateRays(int height, int width, ray*& rays_a, ray*& rays_b, ray*& rays_c, int rays,
                  float theta_limit, float alpha_limit)
{
    if (height < 1 || width < 1 || rays < 1) {
        return;
    }
    umbrixlib::detail::even_rays(width, {rays_a, rays_b, rays_c}, rays, theta_limit, alpha_limit);
}
