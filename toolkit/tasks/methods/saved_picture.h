// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"
#include "toolkit/pictures/saving.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

// Pictures of the library's floats in the samples that are saved: the last step before they are written.
// Bytes are those of the library's own files, unless something else is asked for.

/// Normals, one for each texel, with green up. @p green Of the picture.
Picture saved_normals(float3 const* normals, int width, int height, SavedAs const& as = {},
                      NormalY green = NormalY::kUp);

/// Heights, one for each texel, stretched from 0, the lowest one, to 1, the highest one. In three equal
/// channels where they are the library's bytes, else in one.
Picture saved_heights(float const* heights, int width, int height, SavedAs const& as = {});

/// A map of three channels or, with alpha, four.
Picture saved_map(float4 const* map, int width, int height, int channels, SavedAs const& as);

/// A result in floats that was one of these before, as its kind and its attributes tell, in other samples:
/// what the functions above would have made at once.
Picture saved_result(Picture const& floats, SavedAs const& as);

} // namespace umbrixlib::toolkit
