// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The rays of the occlusion stage. Both companions are built with this file, so that they walk the same set.

#include "common/ray.h"

namespace umbrixlib::detail {

/// Room for the rays of the three bands.
struct RayBands {
    ray* a; ///< Azimuth 120.
    ray* b; ///< Azimuth 240.
    ray* c; ///< Azimuth 0.
};

/// Fills @p rays records of each band, as `GenerateRays` describes.
/// @param width Of the map, above 0, as @p rays.
void even_rays(int width, RayBands const& bands, int rays, float theta_limit, float alpha_limit);

} // namespace umbrixlib::detail
