// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <umbrixlib.h>

namespace umbrixlib::toolkit {

// Pictures of 8 bits from the library's floats: the last step before they are written.

/// Normals, one for each texel, as the colours that `HeightToNormal` stores.
Picture narrowed_normals(float3 const* normals, int width, int height);

/// Heights, one for each texel, as greys of three channels from 0, the lowest one, to 255, the highest one.
Picture narrowed_heights(float const* heights, int width, int height);

} // namespace umbrixlib::toolkit
