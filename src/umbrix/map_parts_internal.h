// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"
#include "common/vector_types.h"
#include "foundation/picture_samples_internal.h"

namespace umbrixlib::detail {

/// The picture that a run works on. Without samples every one of them counts as 0.
struct MapSource {
    PictureSamples samples;
    NormalCoding coding = NormalCoding::kColours;
};

/// Where a run puts the bytes of its map.
struct ByteTarget {
    unsigned char* bytes = nullptr; ///< Null for a map of floats.
    int channels = 0;               ///< From one texel to the next.
};

/// What a run leaves beside the map.
struct MapDemand {
    bool light = false;
    bool occlusion = false;
    bool normals = false;
    bool heights = false;
    bool source_heights = false;
};

/// What a run has made, of the sizes of its map; null where it was not asked for or does not come about.
struct MapParts {
    TexelArray<float4> map;
    TexelArray<float3> light;
    TexelArray<float3> occlusion;
    TexelArray<float3> normals;
    TexelArray<float> heights;
    TexelArray<float> source_heights; ///< What `height_copy` gets.
};

} // namespace umbrixlib::detail
