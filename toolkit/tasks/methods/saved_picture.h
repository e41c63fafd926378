// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/saving.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

// Pictures of the library's floats in the samples that are saved: the last step before they are written.
// Bytes are those of the library's own files, unless something else is asked for.

/// Normals, one for each texel.
Picture saved_normals(float3 const* normals, int width, int height, SavedAs const& as = {});

/// Heights, one for each texel, stretched from 0, the lowest one, to 1, the highest one. In three equal
/// channels where they are the library's bytes, else in one.
Picture saved_heights(float const* heights, int width, int height, SavedAs const& as = {});

/// A map of three channels or, with alpha, four.
Picture saved_map(float4 const* map, int width, int height, int channels, SavedAs const& as);

} // namespace umbrixlib::toolkit
