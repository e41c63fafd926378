// SPDX-License-Identifier: MIT
#pragma once

#include "common/rounding.h"
#include "common/vector_types.h"

#include <array>
#include <cstddef>

/// @file
/// Steps on one texel that the stages of all roads share.

namespace umbrixlib::detail {

/// Every byte as 0..1.
inline constexpr auto kFromByte = [] {
    std::array<float, 256> values{};
    for (std::size_t byte = 0; byte < values.size(); ++byte) {
        values[byte] = narrow(static_cast<double>(byte) / 255.0);
    }
    return values;
}();

/// A byte as 0..1.
inline float from_byte(unsigned char byte)
{
    return kFromByte[byte];
}

/// The mean of three bytes as 0..1. Rounded to float the product is the quotient by 3, whatever the bytes
/// are; it takes a quarter of the time.
inline float mean_of_bytes(unsigned char a, unsigned char b, unsigned char c)
{
    return narrow((wide(from_byte(a)) + wide(from_byte(b)) + wide(from_byte(c))) * (1.0 / 3.0));
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
