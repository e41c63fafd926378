// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/portions.h"
#include "stages/progress.h"
#include "stages/shape.h"

namespace coralith {

struct OcclusionSettings {
    int rays;          ///< Per band.
    float alpha_limit; ///< Full width of the elevation bands, degrees.
    float theta_limit; ///< Full width of the azimuth jitter, degrees.
    float radius;      ///< Reach of the rays, as a fraction of the width.
    bool columns_wrap;
    bool rows_wrap;
};

/// The job of `GenerateRays` and `Height2DirectionalAO`: three shares of open rays a texel.
bool directional_occlusion(Backend& backend, Shape shape, OcclusionSettings const& settings,
                           PortionRule const& rule, float const* heights, float* occlusion,
                           Progress& progress);

} // namespace coralith
