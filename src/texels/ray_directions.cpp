// SPDX-License-Identifier: MIT
#include "texels/ray_directions_internal.h"

#include "boundary/platform.h"
#include "common/rounding.h"

#include <cmath>

namespace umbrixlib::detail {

namespace {

double random_share()
{
    return wide(static_cast<float>(platform::random())) / static_cast<double>(platform::kRandomMax);
}

SineCosine library_sine_cosine(double radians)
{
    return {std::sin(radians), std::cos(radians)};
}

} // namespace

ThreeBands jittered_directions(Elevations const& upper, Elevations const& lower, float theta_limit)
{
    return ray_directions(upper, lower, theta_limit, random_share, library_sine_cosine);
}

} // namespace umbrixlib::detail
