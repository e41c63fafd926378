// SPDX-License-Identifier: MIT
#include "layers/normal_bytes_internal.h"

#include <cstddef>

namespace umbrixlib::detail {

void normals_to_bitmap(float3 const* normals, layer_size size, unsigned char* bitmap)
{
#pragma omp parallel for schedule(static)
    for (int y = 0; y < size.height; ++y) {
        float3 const* const row = normals + static_cast<std::ptrdiff_t>(size.height - 1 - y) * size.width;
        unsigned char* texel = bitmap + static_cast<std::ptrdiff_t>(y) * size.width * 4;
        for (int x = 0; x < size.width; ++x, texel += 4) {
            texel[0] = normal_byte(row[x].z);
            texel[1] = normal_byte(row[x].y);
            texel[2] = normal_byte(row[x].x);
        }
    }
}

} // namespace umbrixlib::detail
