// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/narrowed.h"

namespace umbrixlib::toolkit {

Picture narrowed_normals(float3 const* normals, int width, int height)
{
    Picture result = make_picture(width, height, 3);
    result.kind = PictureKind::kNormals;
    normals_to_bytes(normals, static_cast<std::ptrdiff_t>(result.texels()), result.bytes.data());
    return result;
}

Picture narrowed_heights(float const* heights, int width, int height)
{
    Picture greys = make_picture(width, height, 1);
    greys.kind = PictureKind::kHeights;
    heights_to_bytes(heights, static_cast<std::ptrdiff_t>(greys.texels()), greys.bytes.data());
    return in_colour(greys, false);
}

} // namespace umbrixlib::toolkit
