// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// A separable blur with an explicit, truncated Gaussian kernel. The pipelines blur with
/// `gaussianFilterRGBA` instead.
///
/// Buffers are the caller's: @p height rows of @p width pixels, row-major, no padding. Width comes first
/// here.
///
/// Beyond the edges. A tap that leaves its row reads the edge pixel if edges are clamped. Otherwise it reads
/// the pixel in the middle of the kernel once more; nothing wraps around. Both ways keep the sum of the
/// weights.
///
/// Rounding: `float` rounds once a tap, the product included; `float3` and `float4` round the product and the
/// sum.
///
/// Errors: none reported. What cannot be allocated raises and leaves the destination as it was. With a width
/// or height below 1 nothing is written; only then may an image be null. Two images must not overlap in part.
///
/// Threads: the `float` forms share rows out to OpenMP threads, the others stay on the caller's.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Makes the weights of a Gaussian with sigma @p radius / 3, cut off where the distance exceeds @p radius, of
/// sum 1. A fractional radius leaves a 0 at either end.
///
/// @param kernel Becomes a new array, the caller's, to be released with array delete.
/// @param radius Pixels. 0 makes one weight that is not a number; at -1 and below, and where the length does
///               not fit, std::bad_array_new_length is raised.
/// @return The length, 2 * ceil(radius) + 1; the weight in the middle has index length / 2.
UMBRIX_API int makeKernel(float*& kernel, float radius);

/// Convolves every row and writes the result transposed.
///
/// @param kernel      Weights, the caller's. A weight of 0 reads no pixel.
/// @param source      @p height rows of @p width pixels.
/// @param destination @p width rows of @p height pixels. Must not be @p source.
/// @param size        Length of @p kernel, odd. Of an even one the last tap is left out.
/// @param clamp_edges Other than 0: edges are clamped.
///
/// Contract: the threads that work on one row write at a position which they share, wherever it stands; the
/// pixel's own place is expected, and only a team of one thread per row keeps it. So it is while nested
/// parallel regions are off; `UmbrixFile` switches them on for the process. Every value of a row then still
/// lands in that row's column of the destination. Test:
/// KernelGaussian.ThreadsThatShareARowWriteItInAnyOrder
UMBRIX_API void convolveAndTranspose(float* kernel, float* source, float* destination, int width, int height,
                                     int size, int clamp_edges);
/// The same for pixels of three components, which keep their places.
UMBRIX_API void convolveAndTranspose(float* kernel, float3* source, float3* destination, int width,
                                     int height, int size, int clamp_edges);
/// The same for pixels of four components, alpha filtered like the others.
UMBRIX_API void convolveAndTranspose(float* kernel, float4* source, float4* destination, int width,
                                     int height, int size, int clamp_edges);

/// Blurs rows, then columns.
///
/// @param source      Left alone, unless it is the destination as well.
/// @param destination Same shape. May be @p source.
/// @param width       In pixels.
/// @param height      In pixels.
/// @param radius      As for `makeKernel`.
/// @param clamp_edges Not read.
///
/// Contract: this form never clamps the edges; those of the other forms do as they are told. Test:
/// KernelGaussian.TheFloatFormNeverClamps
UMBRIX_API void blur(float* source, float* destination, int width, int height, float radius,
                     bool clamp_edges);
/// The same for pixels of three components, with @p clamp_edges in force.
UMBRIX_API void blur(float3* source, float3* destination, int width, int height, float radius,
                     bool clamp_edges);
/// The same for pixels of four components, with @p clamp_edges in force; alpha is blurred too.
UMBRIX_API void blur(float4* source, float4* destination, int width, int height, float radius,
                     bool clamp_edges);

} // namespace umbrix_v0
