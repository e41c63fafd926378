// SPDX-License-Identifier: MIT
#pragma once

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

/// How much each channel of an Umbrix map counts in a light.
enum class WeightRule {
    kFitted, ///< As kExact for a light whose part along the plane is 1.25 z^0.3 times as long, z being its
             ///< height: nearest to shadows that were traced on eight reliefs. docs/maps.md has the figures.
    kExact,  ///< What gives open ground the light that Lambert's law gives it: for any slope where a channel
             ///< goes with the projection on its direction, for low ones in the other modes. Channels that
             ///< face away from the light count below 0.
    kClamped ///< Its dot products with the directions, those below 0 as 0.
};

/// How a map is turned into a picture.
struct Relighting {
    Modes mode;      ///< Of the map: sets what flat ground has in its channels.
    double exposure; ///< Brightness of flat ground that nothing hides, 0 to 1.
    WeightRule weights = WeightRule::kFitted;
    double ambient = 0; ///< What light from all around adds to the brightness of such ground.

    bool operator==(Relighting const&) const = default;
};

/// Of the red, green and blue channel.
using ChannelWeights = std::array<double, 3>;

/// Weights whose sum over the channels of flat ground is the exposure. A light lower than 6 degrees counts as
/// one at 6 degrees, but for WeightRule::kClamped.
ChannelWeights channel_weights(Light light, Relighting const& look);

/// The weight of each channel with which their sum over flat ground is Relighting::ambient.
double ambient_weight(Relighting const& look);

} // namespace umbrixlib::toolkit
