// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// From floats to the bytes that the file functions store. A caller with float results gets their pictures to
/// the bit.
///
/// Arrays have the stated number of texels in any order; below 1 of them nothing happens. Threads: parallel
/// loops inside; no state.

#include "common/export.h"
#include "common/vector_types.h"

#include <cstddef>

namespace umbrixlib {

/// Bytes of a map as `UmbrixFile` stores them: limited to 0..1, NaN to 0, times 255, truncated.
///
/// @param channels 3 for the colours, 4 with alpha.
/// @param bytes    @p texels * @p channels bytes.
UMBRIX_API void map_to_bytes(float4 const* map, std::ptrdiff_t texels, int channels, unsigned char* bytes);
/// The same of light or open shares by themselves, three bytes a texel.
UMBRIX_API void map_to_bytes(float3 const* map, std::ptrdiff_t texels, unsigned char* bytes);

/// Bytes of normals as `HeightToNormal` and `NLayers::SaveResult` store them, three a texel: -1..1 as 0..255,
/// truncated. What lies outside wraps around; NaN is 0.
UMBRIX_API void normals_to_bytes(float3 const* normals, std::ptrdiff_t texels, unsigned char* bytes);

/// Bytes of heights as `NLayers::SaveHeight` stores them, here one a texel: stretched from 0, the lowest one,
/// to 255, the highest one, and truncated. Heights all alike are 0.
UMBRIX_API void heights_to_bytes(float const* heights, std::ptrdiff_t texels, unsigned char* bytes);

/// Stretches heights in place as `heights_to_bytes` does, to 0..1. Heights all alike become 0.
UMBRIX_API void stretch_heights(float* heights, std::ptrdiff_t texels);

} // namespace umbrixlib
