// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/umbrix_options.h"

namespace umbrixlib {

/// Options to begin with for the Umbrix map of a height map: light and occlusion of a texture that repeats,
/// no filters. What the command line's `map` does unless told otherwise.
///
/// @param relief Height of white above black, in widths of the picture. Photo-scanned materials have 0.01 to
///               0.08.
/// @param width  Of the picture, texels. Together with @p relief it gives `n_scale`, the strength of the
///               normals; nothing else depends on it.
/// @return Every field set. The three buffers and `cancel` are null.
inline umbrix_options height_map_options(float relief, int width)
{
    umbrix_options options = {};
    options.calc_type = calc_type_light_occlusion;
    options.multi_thread = true;
    options.quiet = true;
    options.height_map = true;
    options.generate_normal = true;

    options.h_scale = relief;
    options.n_scale = relief * static_cast<float>(width) / 2.0f;
    options.L_Detail = 1.0f;

    options.rays = 128;
    options.radius = 0.25f;
    options.alpha_limit = 120.0f;
    options.theta_limit = 120.0f;
    options.tile = true;
    options.h_tile = true;
    options.v_tile = true;

    options.max = 255;
    options.h_max = 255;

    // Three directions 120 degrees of azimuth apart, each 35 degrees above the surface; the first is longer.
    options.UmbrixMode = Modes_Projection;
    options.basis_a = {-0.40824829046f, 0.70710678119f, 0.57735026919f};
    options.basis_b = {-0.40824829046f, -0.70710678119f, 0.57735026919f};
    options.basis_c = {1.22474487139f, 0.0f, 0.57735026919f};
    return options;
}

} // namespace umbrixlib
