// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/rounding.h"
#include "foundation/vector_types.h"

/// @file
/// Steps on one texel that the stages of all roads share.

namespace umbrixlib::detail {

/// A byte as 0..1.
inline float from_byte(unsigned char byte)
{
    return narrow(byte / 255.0);
}

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

/// Multiplies the colours by the open shares of the three directions.
inline void multiply_colour(float4& texel, float3 open)
{
    set_colour(texel, {product(texel.x, open.x), product(texel.y, open.y), product(texel.z, open.z)});
}

/// The colours of 0..1 as a vector of -1..1.
inline float3 decoded_normal(float4 const& texel)
{
    auto const decoded = [](float colour) { return narrow(wide(colour) * 2.0 - 1.0); };
    return {decoded(texel.x), decoded(texel.y), decoded(texel.z)};
}

/// Whether a run with this kind of work makes an occlusion map.
inline bool has_occlusion(int calc_type)
{
    return calc_type == 2 || calc_type == 5;
}

} // namespace umbrixlib::detail
