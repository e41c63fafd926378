// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/saved_picture.h"

#include <algorithm>

namespace umbrixlib::toolkit {

Picture saved_normals(float3 const* normals, int width, int height, SavedAs const& as)
{
    bool const bytes = as.as_the_library_does();
    Picture result = make_picture(width, height, 3, bytes ? SampleType::kUint8 : SampleType::kFloat);
    result.kind = PictureKind::kNormals;
    if (bytes) {
        normals_to_bytes(normals, static_cast<std::ptrdiff_t>(result.texels()), result.bytes.data());
        return result;
    }
    float* to = result.samples<float>().data();
    for (std::size_t i = 0; i < result.texels(); ++i) {
        float const values[] = {normals[i].x, normals[i].y, normals[i].z};
        to = std::copy_n(values, 3, to);
    }
    return in_samples(result, as);
}

Picture saved_heights(float const* heights, int width, int height, SavedAs const& as)
{
    bool const bytes = as.as_the_library_does();
    Picture greys = make_picture(width, height, 1, bytes ? SampleType::kUint8 : SampleType::kFloat);
    greys.kind = PictureKind::kHeights;
    auto const texels = static_cast<std::ptrdiff_t>(greys.texels());
    if (bytes) {
        heights_to_bytes(heights, texels, greys.bytes.data());
        return in_colour(greys, false);
    }
    float* const stretched = greys.samples<float>().data();
    std::copy_n(heights, texels, stretched);
    stretch_heights(stretched, texels);
    return in_samples(greys, as);
}

Picture saved_map(float4 const* map, int width, int height, int channels, SavedAs const& as)
{
    Picture result = make_picture(width, height, channels, SampleType::kFloat);
    result.kind = PictureKind::kLight;
    float* to = result.samples<float>().data();
    for (std::size_t i = 0; i < result.texels(); ++i) {
        float const values[] = {map[i].x, map[i].y, map[i].z, map[i].w};
        to = std::copy_n(values, channels, to);
    }
    return in_samples(result, as);
}

} // namespace umbrixlib::toolkit
