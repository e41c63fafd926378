// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "layers/nlayers.h"

namespace umbrixlib::detail {

/// -1..1 as 0..255, truncated. What lies outside wraps around.
inline unsigned char normal_byte(float component)
{
    return to_byte((wide(component) + 1.0) * 0.5 * 255.0);
}

/// Blue, green, red and a byte that is left alone; the last row of the image first.
void normals_to_bitmap(float3 const* normals, layer_size size, unsigned char* bitmap);

} // namespace umbrixlib::detail
