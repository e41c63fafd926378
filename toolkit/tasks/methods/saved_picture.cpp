// SPDX-License-Identifier: MIT
#include "toolkit/tasks/methods/saved_picture.h"

#include "toolkit/base/all_threads.h"
#include "toolkit/tasks/methods/self_description.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

/// Turns green over in normals that the library encoded: as it cuts (v + 1) * 255 / 2 off to a whole number,
/// the code of -v is 254 less that of v, and flat ground stays 127.
void turn_green_bytes(Picture& bytes)
{
    for (std::size_t i = 0; i < bytes.texels(); ++i) {
        std::uint8_t& green = bytes.texel(i)[1];
        green = static_cast<std::uint8_t>(std::max(254 - green, 0));
    }
}

/// Normals of a picture of three channels of floats, with green up.
std::vector<float3> vectors_of(Picture const& normals, NormalY green)
{
    float const up = green == NormalY::kDown ? -1.0f : 1.0f;
    auto const samples = normals.samples<float>();
    std::vector<float3> vectors(normals.texels());
    for (std::size_t i = 0; i < vectors.size(); ++i) {
        vectors[i] = {samples[3 * i], up * samples[3 * i + 1], samples[3 * i + 2]};
    }
    return vectors;
}

Picture map_bytes_of(Picture const& map)
{
    Picture result = make_alike(map, map.channels, SampleType::kUint8);
    auto const texels = static_cast<std::ptrdiff_t>(map.texels());
    if (map.channels == 4) {
        map_to_bytes(reinterpret_cast<float4 const*>(map.bytes.data()), texels, 4, result.bytes.data());
    } else {
        map_to_bytes(reinterpret_cast<float3 const*>(map.bytes.data()), texels, result.bytes.data());
    }
    return result;
}

} // namespace

Picture saved_normals(float3 const* normals, int width, int height, SavedAs const& as, NormalY green)
{
    bool const bytes = as.as_the_library_does();
    Picture result = make_picture(width, height, 3, bytes ? SampleType::kUint8 : SampleType::kFloat);
    result.kind = PictureKind::kNormals;
    if (bytes) {
        normals_to_bytes(normals, static_cast<std::ptrdiff_t>(result.texels()), result.bytes.data());
        if (green == NormalY::kDown) {
            turn_green_bytes(result);
        }
        return result;
    }
    float const up = green == NormalY::kDown ? -1.0f : 1.0f;
    float* const to = result.samples<float>().data();
    for_pieces(result.texels(), [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            float const values[] = {normals[i].x, up * normals[i].y, normals[i].z};
            std::copy_n(values, 3, to + 3 * i);
        }
    });
    return in_samples(std::move(result), as);
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
    return in_samples(std::move(greys), as);
}

Picture saved_map(float4 const* map, int width, int height, int channels, SavedAs const& as)
{
    Picture result = make_picture(width, height, channels, SampleType::kFloat);
    result.kind = PictureKind::kLight;
    float* const to = result.samples<float>().data();
    for_pieces(result.texels(), [&](std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            float const values[] = {map[i].x, map[i].y, map[i].z, map[i].w};
            std::copy_n(values, channels, to + i * static_cast<std::size_t>(channels));
        }
    });
    return in_samples(std::move(result), as);
}

Picture saved_result(Picture const& floats, SavedAs const& as)
{
    bool const bytes = as.as_the_library_does();
    Picture result;
    if (bytes && floats.kind == PictureKind::kNormals && floats.channels == 3) {
        NormalY const green = green_of(floats.attributes).value_or(NormalY::kUp);
        result = saved_normals(vectors_of(floats, green).data(), floats.width, floats.height, as, green);
    } else if (bytes && floats.kind == PictureKind::kLight && floats.channels >= 3) {
        result = map_bytes_of(floats);
    } else {
        result = in_samples(floats, as);
    }
    result.attributes = floats.attributes;
    if (floats.kind == PictureKind::kNormals && !value_of(result.attributes, "coding").empty()) {
        set_value(result.attributes, "coding", coding_of_normals(as.depth));
        tell_rounding(result.attributes, as);
    }
    return result;
}

} // namespace umbrixlib::toolkit
