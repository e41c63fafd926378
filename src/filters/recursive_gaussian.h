// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The blur of the pipelines: a recursive approximation of a Gaussian, in time independent of its width.
///
/// Buffers are the caller's: @p height rows of @p width pixels, row-major, no padding. Width comes first
/// here, unlike in the tone operators. All components are filtered alike, alpha too. The image wraps at all
/// four edges.
///
/// Errors: none reported, nothing checked; with a width or height of 0 or less nothing happens, and only then
/// may a buffer be null. Two buffers must not overlap in part.
/// Threads: the forms without a thread number share lines out to OpenMP threads inside the call; their number
/// never shows in a result. No state survives a call.
/// Memory: less than 1 KiB per thread and pixel of a line; std::bad_alloc leaves the output as it was.
/// Rounding: `float` forms each step of the recursion in double and rounds once; `float3` and `float4` round
/// at every operation. Method: second-order recursion, R. Deriche, Fast Algorithms for Low-Level Vision, IEEE
/// PAMI 12(1), 1990. Each line runs once without output, from a state of zeros, then the run with output
/// continues from the state that this leaves, forward and backward; the two are added.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Blurs an image: columns from @p source to @p scratch, then rows from @p scratch to @p destination.
///
/// @param source      Left alone, unless it is the destination as well.
/// @param destination Same shape. May be @p source.
/// @param scratch     Same shape, the caller's, contents lost. Must be neither of the other two.
/// @param width       In pixels.
/// @param height      In pixels.
/// @param sigma       Standard deviation in pixels; below 0.1 it counts as 0.1, nearly the identity.
///
/// Contract: a line short against sigma comes out darker, because the wrap is one run from zeros. A constant
/// image that stays constant is expected; nothing is renormalised.
/// Test: RecursiveGaussian.ShortConstantLinesComeOutDarker
UMBRIX_API void gaussianFilterRGBA(float* source, float* destination, float* scratch, int width, int height,
                                   float sigma);
/// @overload
UMBRIX_API void gaussianFilterRGBA(float3* source, float3* destination, float3* scratch, int width,
                                   int height, float sigma);
/// @overload
UMBRIX_API void gaussianFilterRGBA(float4* source, float4* destination, float4* scratch, int width,
                                   int height, float sigma);

/// Filters every column of an image, with the coefficients that `gaussianFilterRGBA` derives from sigma.
///
/// @param input         Left alone.
/// @param output        Same shape. Must not be @p input.
/// @param width         In pixels.
/// @param height        In pixels.
/// @param a0            Forward gain of the element itself.
/// @param a1            Forward gain of the element before it.
/// @param a2            Backward gain of the next element.
/// @param a3            Backward gain of the element after that.
/// @param b1            Feedback of the last result.
/// @param b2            Feedback of the result before that.
/// @param edge_forward  Not read: the run without output takes the place of a start from the edge pixel.
/// @param edge_backward Not read.
///
/// Contract: the plain name runs down the columns, the name with Y along the rows; the reverse is expected.
/// Test: RecursiveGaussian.ThePlainPassBlursColumnsAndTheYPassRows
UMBRIX_API void recursiveGaussian_rgba(float* input, float* output, int width, int height, float a0, float a1,
                                       float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward);
/// @overload
UMBRIX_API void recursiveGaussian_rgba(float3* input, float3* output, int width, int height, float a0,
                                       float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward);
/// @overload
UMBRIX_API void recursiveGaussian_rgba(float4* input, float4* output, int width, int height, float a0,
                                       float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward);

/// One thread's share of the same: columns @p thread, @p thread + @p threads, and so on, on the calling
/// thread.
///
/// @param thread  The first column; below 0 nothing happens.
/// @param threads Columns from one to the next; below 1 nothing happens.
UMBRIX_API void recursiveGaussian_rgba(float* input, float* output, int width, int height, float a0, float a1,
                                       float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward, int thread, int threads);
/// @overload
UMBRIX_API void recursiveGaussian_rgba(float3* input, float3* output, int width, int height, float a0,
                                       float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward, int thread, int threads);
/// @overload
UMBRIX_API void recursiveGaussian_rgba(float4* input, float4* output, int width, int height, float a0,
                                       float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                       float edge_backward, int thread, int threads);

/// Filters every row of an image; the rest is as in `recursiveGaussian_rgba`.
UMBRIX_API void recursiveGaussianY_rgba(float* input, float* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward);
/// @overload
UMBRIX_API void recursiveGaussianY_rgba(float3* input, float3* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward);
/// @overload
UMBRIX_API void recursiveGaussianY_rgba(float4* input, float4* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward);

/// One thread's share of the same: rows @p thread, @p thread + @p threads, and so on, on the calling thread.
UMBRIX_API void recursiveGaussianY_rgba(float* input, float* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward, int thread, int threads);
/// @overload
UMBRIX_API void recursiveGaussianY_rgba(float3* input, float3* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward, int thread, int threads);
/// @overload
UMBRIX_API void recursiveGaussianY_rgba(float4* input, float4* output, int width, int height, float a0,
                                        float a1, float a2, float a3, float b1, float b2, float edge_forward,
                                        float edge_backward, int thread, int threads);

} // namespace umbrix_v0
