// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"

#include <array>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// A direction towards the light. Azimuth 0 is the right edge of the picture, 90 its top, 180 its left edge;
/// elevation 0 is level with the picture and 90 straight above it.
struct Light {
    double azimuth_degrees;
    double elevation_degrees;

    bool operator==(Light const&) const = default;
};

/// How a map is turned into a picture.
struct Relighting {
    Modes mode;      ///< Of the map: sets what flat ground has in its channels.
    double exposure; ///< Brightness of flat ground that nothing hides, 0 to 1.

    bool operator==(Relighting const&) const = default;
};

/// Weights of the red, green and blue channel for a light: its clamped dot products with the unit vectors of
/// the three directions, at azimuth 0, 240 and 120, scaled so that flat ground gives the exposure.
std::array<double, 3> channel_weights(Light light, Relighting const& look);

/// @p map, of any sample type, as it looks in that light: grey, in three equal channels of bytes, rounded to
/// the nearest, or in one channel of other samples. Floats may lie above 1.
Picture relit(Picture const& map, Light light, Relighting const& look, SavedAs const& as = {});

/// A contact sheet of @p directions pictures, the azimuth going round once from that of @p light. They run
/// row by row from the top left, each reduced by a whole number to at most @p cell texels a side.
Picture turntable(Picture const& map, Light light, Relighting const& look, int directions, int cell,
                  SavedAs const& as = {});

} // namespace umbrixlib::toolkit
