// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"
#include "toolkit/settings/settings.h"

namespace umbrixlib::toolkit {

// What results tell of how they were made. The same picture with the same settings tells the same: no time,
// no path.

/// @param maker The command: "map", "stack".
Attributes attributes_of_map(char const* maker, Settings const& settings);

/// Tells how bytes were made, too, if not as the library makes them.
Attributes attributes_of_normals(char const* maker, NormalY green, SavedAs const& as);

Attributes attributes_of_heights(char const* maker);

/// @param radius Of the ball that is white, in image widths. Whole numbers have flat ground in their middle.
Attributes attributes_of_curvature(char const* maker, Settings const& settings, double radius,
                                   SavedAs const& as);

/// Of what is made of horizons. @param kind "bent normals" or "occlusion".
Attributes attributes_of_sky(char const* maker, char const* kind, Settings const& settings);

/// Of a picture whose channels come from others.
Attributes attributes_of_packed(char const* maker);

/// Of a picture in a light.
Attributes attributes_of_light(char const* maker);

/// Tells in @p attributes of normals, bent or not, how their components are to be read.
void tell_normals(Attributes& attributes, NormalY green, SavedAs const& as);

/// Tells in @p attributes of normals how bytes were made of them.
void tell_rounding(Attributes& attributes, SavedAs const& as);

/// Where green points in a normal map that tells it; empty if it does not.
std::optional<NormalY> green_of(Attributes const& attributes);

/// What "coding" says of normals in samples of @p type.
char const* coding_of_normals(SampleType type);

/// The mode that a map tells; empty if it tells none.
std::optional<Modes> mode_of(Attributes const& attributes);

/// "a normal map" and the like if a picture tells that it is no Umbrix map; empty otherwise.
std::string kind_beside_map(Attributes const& attributes);

} // namespace umbrixlib::toolkit
