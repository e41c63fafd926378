// SPDX-License-Identifier: MIT
#include "common/even_rays.h"

#include "common/basis.h"
#include "common/rounding.h"
#include "common/sine_cosine.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::detail {
namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kUpperElevation = 35.264339447021484; ///< Of bases A and B, degrees.
constexpr double kLowerElevation = 25.23944091796875;  ///< Of basis C.
constexpr double kBasisCLengthSquared = 1.8333333730697632;

/// A range of elevations in degrees, clamped to the quarter circle above the horizon.
struct Elevations {
    float lowest;
    float highest;

    Elevations(double middle, double half)
        : lowest(std::max(narrow(middle - half), 0.0f)), highest(std::min(narrow(half + middle), 90.0f))
    {
    }
    /// The elevation at @p share, 0 to 1, of the range.
    float at(double share) const { return narrow(share * (wide(highest) - wide(lowest)) + wide(lowest)); }
    bool holds(float elevation) const { return !(elevation < lowest || elevation > highest); }
};

/// Point @p index of an additive recurrence that fills the unit cube evenly: multiples of the powers of 1 /
/// g, modulo 1, where g is the root of g^4 = g + 1. Its second and third dimension, the more even pair, go to
/// the two angles that every ray takes. Source: M. Roberts, The Unreasonable Effectiveness of Quasirandom
/// Sequences, 2018.
struct EvenPoint {
    double elevation;
    double jitter;
    double lower_elevation;

    explicit EvenPoint(int index)
        : elevation(share(index, 0.67104360670378920)), jitter(share(index, 0.54970047790197026)),
          lower_elevation(share(index, 0.81917251339616443))
    {
    }

private:
    static double share(int index, double stride)
    {
        double const position = 0.5 + index * stride;
        return position - std::floor(position);
    }
};

float to_radians(float degrees)
{
    return narrow(wide(degrees) * kPi / 180.0);
}

/// The step along a direction that advances one texel in x.
class StepMaker {
public:
    explicit StepMaker(int width) : one_texel_(narrow(1.0 / wide(static_cast<float>(width)))) {}
    ray operator()(float3 direction) const
    {
        float const step = direction.x > 0.0f ? one_texel_ : -one_texel_;
        return {step, narrow(wide(direction.y) * wide(step) / wide(direction.x)),
                narrow(wide(direction.z) * wide(step) / wide(direction.x))};
    }

private:
    float one_texel_;
};

/// The direction at @p azimuth and an elevation given by its cosine and sine.
float3 direction_at(float azimuth, float elevation_cosine, float elevation_sine)
{
    SineCosine const turn = sine_cosine(wide(to_radians(azimuth)));
    return {narrow(turn.cosine * wide(elevation_cosine)), narrow(turn.sine * wide(elevation_cosine)),
            elevation_sine};
}

/// The direction of band C: azimuth and elevation as given, as long as its basis vector. The length cancels
/// in the step but for rounding.
float3 direction_like_basis_c(float azimuth, float elevation)
{
    SineCosine const rise = sine_cosine(wide(to_radians(elevation)));
    SineCosine const turn = sine_cosine(wide(to_radians(azimuth)));
    double const length = wide(narrow(std::sqrt(kBasisCLengthSquared)));
    double const flat = wide(narrow(rise.cosine)) * length;
    return {narrow(flat * turn.cosine), narrow(flat * turn.sine), narrow(wide(narrow(rise.sine)) * length)};
}

} // namespace

void even_rays(int width, RayBands const& bands, int rays, float theta_limit, float alpha_limit)
{
    StepMaker const step_along(width);
    bands.a[0] = step_along(kBasisA);
    bands.b[0] = step_along(kBasisB);
    bands.c[0] = step_along(kBasisC);

    double const half = wide(alpha_limit) * 0.5;
    Elevations const upper(kUpperElevation, half);
    Elevations const lower(kLowerElevation, half);
    for (int i = 1; i < rays; ++i) {
        EvenPoint const point(i);
        float elevation = upper.at(point.elevation);
        float const jitter = narrow(point.jitter * wide(theta_limit) + wide(theta_limit) * -0.5);

        SineCosine const rise = sine_cosine(wide(to_radians(elevation)));
        float const cosine = narrow(rise.cosine);
        float const sine = narrow(rise.sine);
        bands.a[i] = step_along(direction_at(narrow(wide(jitter) + 120.0), cosine, sine));
        bands.b[i] = step_along(direction_at(narrow(wide(jitter) + 240.0), cosine, sine));

        if (!lower.holds(elevation)) {
            elevation = lower.at(point.lower_elevation);
        }
        bands.c[i] = step_along(direction_like_basis_c(jitter, elevation));
    }
}

} // namespace umbrixlib::detail
