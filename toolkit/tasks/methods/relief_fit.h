// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"

#include <functional>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// Slopes of normals that were made with an n-scale of 1: x / z and y / z, texel by texel. Those of any other
/// n-scale are the same times that.
struct Slopes {
    std::vector<float> x;
    std::vector<float> y;
};

Slopes slopes_of(std::span<float3 const> normals);

/// Which way heights and green point.
struct Directions {
    bool inverted = false;        ///< Dark is high.
    NormalY green = NormalY::kUp; ///< In the normals to be met; that of slopes is up.
};

/// The n-scale at which normals come nearest to others, and the mean angle that remains between them.
struct FittedScale {
    double n_scale;
    double mean_angle_degrees;
};

/// Finds the n-scale from @p least to @p most, both above 0, at which the mean angle between the normals of
/// @p slopes and the unit vectors @p wanted is smallest: by a grid of equal ratios, for which a part of a
/// large picture is enough, and from there by golden section over all texels. The same on any number of
/// threads.
/// @param thorough If not, a part of a large picture is enough for the golden section, too.
FittedScale fit_scale(Slopes const& slopes, std::span<float3 const> wanted, Directions const& directions,
                      double least, double most, bool thorough);

/// Mean angle between @p wanted and flat ground.
double flat_mean_angle_degrees(std::span<float3 const> wanted);

/// Where @p value_at is smallest among a few values from 0 to 10 and, by golden section, between the
/// neighbours of the best of these. For the sigma of a blur in texels.
double fit_sigma(std::function<double(double)> const& value_at);

} // namespace umbrixlib::toolkit
