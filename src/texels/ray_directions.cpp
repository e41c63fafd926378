// SPDX-License-Identifier: MIT
#include "texels/ray_directions_internal.h"

#include "boundary/platform.h"
#include "common/rounding.h"
#include "foundation/vector_math.h"

#include <cmath>

namespace umbrixlib::detail {

namespace {

double random_share()
{
    return wide(static_cast<float>(platform::random())) / static_cast<double>(platform::kRandomMax);
}

float cosine(float radians)
{
    return narrow(std::cos(wide(radians)));
}

float sine(float radians)
{
    return narrow(std::sin(wide(radians)));
}

float3 upper_direction(float azimuth_degrees, float elevation_radians)
{
    double const azimuth = wide(torad(azimuth_degrees));
    double const across = wide(cosine(elevation_radians));
    return {narrow(std::cos(azimuth) * across), narrow(std::sin(azimuth) * across), sine(elevation_radians)};
}

/// `basis_c` is longer than 1, and so are the directions of its band; the length cancels in the step vector
/// but for rounding.
float3 lower_direction(float azimuth_degrees, float elevation_radians)
{
    double const length = wide(narrow(std::sqrt(1.8333333730697632)));
    double const azimuth = wide(torad(azimuth_degrees));
    double const across = wide(cosine(elevation_radians)) * length;
    return {narrow(across * std::cos(azimuth)), narrow(across * std::sin(azimuth)),
            narrow(wide(sine(elevation_radians)) * length)};
}

float draw_elevation(ElevationBand band)
{
    return narrow(random_share() * (wide(band.high) - wide(band.low)) + wide(band.low));
}

} // namespace

ElevationBand elevation_band(double centre, float alpha_limit)
{
    double const half = wide(alpha_limit) * 0.5;
    float const low = narrow(centre - half);
    float const high = narrow(half + centre);
    return {low < 0.0f ? 0.0f : low, high > 90.0f ? 90.0f : high};
}

float3 step_vector(float3 d, float inv_width)
{
    float const s = d.x > 0.0f ? inv_width : -inv_width;
    return {s, narrow(wide(d.y) * wide(s) / wide(d.x)), narrow(wide(d.z) * wide(s) / wide(d.x))};
}

ThreeBands jittered_directions(ElevationBand upper, ElevationBand lower, float theta_limit)
{
    float elevation = draw_elevation(upper);
    float const jitter = narrow(random_share() * wide(theta_limit) + wide(theta_limit) * -0.5);
    float const upper_radians = torad(elevation);
    ThreeBands directions{};
    directions.a = upper_direction(narrow(wide(jitter) + 120.0), upper_radians);
    directions.b = upper_direction(narrow(wide(jitter) + 240.0), upper_radians);
    if (elevation < lower.low || elevation > lower.high) {
        elevation = draw_elevation(lower);
    }
    directions.c = lower_direction(jitter, torad(elevation));
    return directions;
}

} // namespace umbrixlib::detail
