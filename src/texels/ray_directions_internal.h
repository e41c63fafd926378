// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/umbrix_options.h"

namespace umbrixlib::detail {

/// A band of elevations, degrees.
struct ElevationBand {
    float low;
    float high;
};

/// The band of full width @p alpha_limit around @p centre, cut off at 0 and 90 degrees.
ElevationBand elevation_band(double centre, float alpha_limit);

inline constexpr double kUpperElevation = 35.264339447021484; ///< Of `basis_a` and `basis_b`.
inline constexpr double kLowerElevation = 25.23944091796875;  ///< Of `basis_c`.

/// One vector for each of the three bands.
struct ThreeBands {
    float3 a; ///< Azimuth 120.
    float3 b; ///< Azimuth 240.
    float3 c; ///< Azimuth 0.
};

/// The step vector of direction @p d: one texel in x, @p inv_width being 1 / width, and y and z by the slope.
float3 step_vector(float3 d, float inv_width);

/// Draws jittered directions of one ray in the three bands. Two draws of the platform's generator, a third
/// one if the elevation lies outside the lower band.
ThreeBands jittered_directions(ElevationBand upper, ElevationBand lower, float theta_limit);

} // namespace umbrixlib::detail
