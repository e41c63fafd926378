// SPDX-License-Identifier: MIT
#pragma once

#include "common/ray_directions.h"

namespace umbrixlib::detail {

/// Draws jittered directions of one ray in the three bands. Two draws of the platform's generator, a third
/// one if the elevation lies outside the lower band.
ThreeBands jittered_directions(Elevations const& upper, Elevations const& lower, float theta_limit);

} // namespace umbrixlib::detail
