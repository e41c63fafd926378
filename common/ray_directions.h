// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Directions of the rays around the three basis directions, from shares of 0..1 that a caller draws.

#include "common/rounding.h"
#include "common/sine_cosine.h"
#include "common/vector_types.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::detail {

inline constexpr double kUpperElevation = 35.264339447021484; ///< Of bases A and B, degrees.
inline constexpr double kLowerElevation = 25.23944091796875;  ///< Of basis C.

/// A range of elevations in degrees, cut off at the horizon and the zenith.
struct Elevations {
    float lowest;
    float highest;

    /// The range of full width @p alpha_limit around @p middle.
    Elevations(double middle, float alpha_limit)
        : lowest(std::max(narrow(middle - wide(alpha_limit) * 0.5), 0.0f)),
          highest(std::min(narrow(wide(alpha_limit) * 0.5 + middle), 90.0f))
    {
    }
    /// The elevation at @p share, 0 to 1, of the range.
    float at(double share) const { return narrow(share * (wide(highest) - wide(lowest)) + wide(lowest)); }
    bool holds(float elevation) const { return !(elevation < lowest || elevation > highest); }
};

/// One vector for each of the three bands.
struct ThreeBands {
    float3 a; ///< Azimuth 120.
    float3 b; ///< Azimuth 240.
    float3 c; ///< Azimuth 0.
};

inline float to_radians(float degrees)
{
    return narrow(wide(degrees) * 3.141592653589793 / 180.0);
}

/// The step along @p direction that advances one texel in x, @p one_texel being 1 / width.
inline float3 step_vector(float3 direction, float one_texel)
{
    float const step = direction.x > 0.0f ? one_texel : -one_texel;
    return {step, narrow(wide(direction.y) * wide(step) / wide(direction.x)),
            narrow(wide(direction.z) * wide(step) / wide(direction.x))};
}

/// The unit vector of an azimuth and an elevation.
inline float3 unit_direction(SineCosine azimuth, SineCosine elevation)
{
    double const across = wide(narrow(elevation.cosine));
    return {narrow(azimuth.cosine * across), narrow(azimuth.sine * across), narrow(elevation.sine)};
}

/// The same as long as basis C, whose squared length is 11/6. The length cancels in the step but for
/// rounding.
inline float3 direction_like_basis_c(SineCosine azimuth, SineCosine elevation)
{
    double const length = wide(narrow(std::sqrt(1.8333333730697632)));
    double const across = wide(narrow(elevation.cosine)) * length;
    return {narrow(across * azimuth.cosine), narrow(across * azimuth.sine),
            narrow(wide(narrow(elevation.sine)) * length)};
}

/// Directions of one ray in the three bands.
/// @param theta_limit Full width of the azimuth jitter, degrees.
/// @param draw        Called for a share of 0..1: for the elevation, for the jitter, and for an elevation of
///                    its own for band C if the first lies outside the lower range.
/// @param trigonometry Gives the sine and cosine of radians.
template <typename Draw, typename Trigonometry>
ThreeBands ray_directions(Elevations const& upper, Elevations const& lower, float theta_limit, Draw&& draw,
                          Trigonometry&& trigonometry)
{
    auto const of_degrees = [&](float degrees) -> SineCosine {
        return trigonometry(wide(to_radians(degrees)));
    };
    float elevation = upper.at(draw());
    float const jitter = narrow(draw() * wide(theta_limit) + wide(theta_limit) * -0.5);
    SineCosine const rise = of_degrees(elevation);
    ThreeBands directions{};
    directions.a = unit_direction(of_degrees(narrow(wide(jitter) + 120.0)), rise);
    directions.b = unit_direction(of_degrees(narrow(wide(jitter) + 240.0)), rise);
    if (!lower.holds(elevation)) {
        elevation = lower.at(draw());
    }
    directions.c = direction_like_basis_c(of_degrees(jitter), of_degrees(elevation));
    return directions;
}

} // namespace umbrixlib::detail
