// SPDX-License-Identifier: MIT
#pragma once

#include "filters/narrowing_internal.h"
#include "layers/nlayers.h"

namespace umbrixlib::detail {

/// Blue, green, red and a byte that is left alone; the last row of the image first.
void normals_to_bitmap(float3 const* normals, layer_size size, unsigned char* bitmap);

} // namespace umbrixlib::detail
