// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The two pixel types that every buffer of the system is made of.

inline namespace umbrix_v0 {

/// Three 32-bit floats in a row: a vector's x, y, z or a pixel's red, green, blue. A buffer of W by H texels
/// is W * H such triples, row-major, with nothing between them.
struct float3 {
    float x; ///< Or red.
    float y; ///< Or green.
    float z; ///< Or blue.
};

/// Four 32-bit floats in a row; the fourth is alpha where the type holds a pixel.
struct float4 {
    float x; ///< Or red.
    float y; ///< Or green.
    float z; ///< Or blue.
    float w; ///< Or alpha.
};

static_assert(sizeof(float3) == 12 && sizeof(float4) == 16, "pixel buffers have no padding");

} // namespace umbrix_v0
