// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"
#include "toolkit/settings/settings.h"

namespace umbrixlib::toolkit {

// What results tell of how they were made. The same picture with the same settings tells the same: no time,
// no path.

/// @param maker The command: "map", "stack".
Attributes attributes_of_map(char const* maker, Settings const& settings);

/// @param type Of the samples that are saved: in floats the normals are -1 to 1.
Attributes attributes_of_normals(char const* maker, NormalY green, SampleType type);

Attributes attributes_of_heights(char const* maker);

/// Of a picture in a light.
Attributes attributes_of_light(char const* maker);

/// What "coding" says of normals in samples of @p type.
char const* coding_of_normals(SampleType type);

/// The mode that a map tells; empty if it tells none.
std::optional<Modes> mode_of(Attributes const& attributes);

/// "a normal map" and the like if a picture tells that it is no Umbrix map; empty otherwise.
std::string kind_beside_map(Attributes const& attributes);

} // namespace umbrixlib::toolkit
