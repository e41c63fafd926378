// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Operators that combine two images, or one image with white, in place in the first.
///
/// Buffers are the caller's, @p height * @p width pixels without row padding. Two images must not overlap,
/// except for being the same one. @p percent is an opacity, 0 to 100.
///
/// Errors: none reported. With a product of the sizes below 1 nothing happens, in the forms that call a
/// kernel with either size below 1; only then may an image be null. A NaN @p percent spreads to every pixel.
/// Threads: parallel loops inside; no state survives a call.
/// Rounding: each element is computed in double and rounded to float once.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Cross-fade of heights: first = second * t + first * (1 - t), with t = @p percent / 100, limited to 0..1.
UMBRIX_API void blend(float* first, float* second, float percent, int height, int width);
/// The same. Contract: the last two numbers look like a thread's share and are not read; the whole image is
/// blended. Front ends call either form. Test: Blend.TheLongFormsBlendTheWholeImage
UMBRIX_API void blend(float* first, float* second, float percent, int height, int width, int unread_a,
                      int unread_b);

/// Cross-fade of colours by the kernel `Blend`.
///
/// Contract: @p percent is handed on as it is; the limit of 0..100 that the other shapes have is expected.
/// The kernel decides what an opacity outside does. Test: BlendCalls.ColoursHandTheOpacityOnAsItIs
UMBRIX_API void blend(float3* first, float3* second, float percent, int height, int width);
/// The same; the last two numbers are not read.
UMBRIX_API void blend(float3* first, float3* second, float percent, int height, int width, int unread_a,
                      int unread_b);

/// Cross-fade from white (at 0) to @p image (at 100): each component becomes c * t + (1 - t), with
/// t = @p percent / 100, limited to 0..1.
UMBRIX_API void blend(float3* image, float percent, int height, int width);
/// The same; the last two numbers are not read.
UMBRIX_API void blend(float3* image, float percent, int height, int width, int unread_a, int unread_b);

/// Overlay of @p second on @p first by the kernel `Blend`; @p percent is handed on as it is.
UMBRIX_API void overlay(float3* first, float3* second, float percent, int height, int width);
/// One thread's share of it: pixels `thread`, `thread + threads`, ... @p thread is from 0 on, @p threads at
/// least 1.
UMBRIX_API void overlay(float3* first, float3* second, float percent, int height, int width, int thread,
                        int threads);

/// a * b. Not clamped.
UMBRIX_API float multiply(float a, float b);
/// 1 - (1 - a) * (1 - b). Not clamped.
UMBRIX_API float screen(float a, float b);

} // namespace umbrix_v0
