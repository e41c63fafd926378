// SPDX-License-Identifier: MIT
#include "toolkit/settings/settings.h"

#include "toolkit/settings/defaults.h"
#include "umbrix/height_map_options.h"

#include <gtest/gtest.h>
#include <tuple>

namespace umbrixlib::toolkit {
namespace {

auto vector(float3 const& v)
{
    return std::tuple(v.x, v.y, v.z);
}

auto fields(umbrix_options const& o)
{
    return std::tuple(o.calc_type, o.multi_thread, o.quiet, o.preserve, o.no_normal, o.rays, o.radius,
                      o.h_scale, o.alpha_limit, o.theta_limit, o.contrast, o.h_contrast, o.brightness,
                      o.h_brightness, o.smooth, o.h_smooth, o.b_radius, o.max, o.h_max, o.min, o.h_min,
                      o.tile, o.h_tile, o.v_tile, o.blend_height, o.UmbrixMode, o.height_map,
                      o.generate_normal, o.normal_flag_1, o.n_scale, o.gaussian, o.L_Detail, o.normal_flag_2,
                      o.mode, o.recurse, o.cancel, vector(o.basis_a), vector(o.basis_b), vector(o.basis_c),
                      o.normal_flag_3, o.keep_buffers, o.ao_map, o.normal_map, o.height_copy);
}

TEST(Settings, DefaultsAreTheOptionsThatTheLibraryOffersForHeightMaps)
{
    EXPECT_EQ(fields(options_for(kDefaults, Kind::kHeightMap, 512)),
              fields(height_map_options(kDefaults.relief, 512)));
}

} // namespace
} // namespace umbrixlib::toolkit
