// SPDX-License-Identifier: MIT
#pragma once

#include "measure/occlusion_cases.h"
#include "umbrix_test_options.h"

namespace umbrixlib::bench {

/// A whole run from a height map: normals, their light, and the occlusion of @p set; everything else off.
inline umbrix_options file_options(OcclusionSet const& set, int side)
{
    umbrix_options options = umbrixlib::test::neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.height_map = options.generate_normal = true;
    options.rays = set.rays;
    options.radius = set.radius;
    options.h_scale = set.h_scale;
    options.n_scale = 0.5f * set.h_scale * static_cast<float>(side);
    options.tile = options.h_tile = options.v_tile = true;
    return options;
}

} // namespace umbrixlib::bench
