// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "common/vector_types.h"
#include "foundation/picture_view.h"

/// @file
/// Steps on one texel that the stages of all roads share.

namespace umbrixlib::detail {

/// Writes the colours and leaves the alpha.
inline void set_colour(float4& texel, float3 colour)
{
    texel.x = colour.x;
    texel.y = colour.y;
    texel.z = colour.z;
}

inline float product(float a, float b)
{
    return narrow(wide(a) * wide(b));
}

/// @p colour by the open shares of the three directions.
inline float3 product(float3 colour, float3 open)
{
    return {product(colour.x, open.x), product(colour.y, open.y), product(colour.z, open.z)};
}

/// Multiplies the colours by the open shares of the three directions.
inline void multiply_colour(float4& texel, float3 open)
{
    set_colour(texel, product(float3{texel.x, texel.y, texel.z}, open));
}

/// A colour of a picture of normals as a vector.
inline float3 decoded_normal(float3 colour, NormalCoding coding)
{
    if (coding == NormalCoding::kVectors) {
        return colour;
    }
    auto const decoded = [](float component) { return narrow(wide(component) * 2.0 - 1.0); };
    return {decoded(colour.x), decoded(colour.y), decoded(colour.z)};
}

/// Whether a run with this kind of work makes an occlusion map.
inline bool has_occlusion(int calc_type)
{
    return calc_type == 2 || calc_type == 5;
}

} // namespace umbrixlib::detail
