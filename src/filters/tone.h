// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// In-place operators on images whose components are nominally in 0..1.
///
/// Buffers are the caller's: @p height rows of @p width pixels, row-major, no padding. Height comes first
/// here, unlike in the Gaussian family; but for `smooth`, and `brighten` on `float`, only their product
/// matters, and with a product below 1 nothing happens. Only where nothing happens may a buffer be null.
/// Alpha is the fourth component of a `float4`: `brighten`, `change_contrast`, `limit_color` and `smooth`
/// leave it as it is, `posterize` does not.
///
/// The forms with a thread number do one thread's share on the calling thread: pixels @p thread,
/// @p thread + @p threads and so on, one thread's pixels between those of the others. All shares together
/// make the plain form, bit for bit. With @p thread below 0 or @p threads below 1 nothing happens.
///
/// Errors: none reported, nothing checked. NaN passes through every clamp.
/// Threads: the forms without a thread number share the image out to OpenMP threads inside the call. The
/// shares of one image may run at the same time. No state survives a call. Rounding: each operator forms a
/// component's value in double and rounds it once, where it is stored.

#include "common/export.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Adds @p amount, limited to -1..1, and limits the result to 0..1.
///
/// @param pixels On `float` at least @p height of them, also with a @p width of 0.
///
/// Contract: on `float` only the first @p height elements change and @p width is not read; the whole image is
/// expected. So the height-side brightness of a run reaches the first column's worth of heights alone.
/// Test: Brighten.OnFloatsReachesTheFirstHeightElementsOnly
UMBRIX_API void brighten(float* pixels, int height, int width, float amount);
/// @overload
UMBRIX_API void brighten(float3* pixels, int height, int width, float amount);
/// @overload
UMBRIX_API void brighten(float4* pixels, int height, int width, float amount);

/// One thread's share of the same.
UMBRIX_API void brighten(float* pixels, int height, int width, float amount, int thread, int threads);
/// @overload
UMBRIX_API void brighten(float3* pixels, int height, int width, float amount, int thread, int threads);
/// @overload
UMBRIX_API void brighten(float4* pixels, int height, int width, float amount, int thread, int threads);

/// Scales the distance from 0.5 by 1 + @p amount, the amount limited to -1..1, and limits the result to 0..1:
/// a positive amount pushes away from mid-grey, -1 makes everything mid-grey.
UMBRIX_API void change_contrast(float* pixels, int height, int width, float amount);
/// @overload
UMBRIX_API void change_contrast(float3* pixels, int height, int width, float amount);
/// @overload
UMBRIX_API void change_contrast(float4* pixels, int height, int width, float amount);

/// One thread's share of the same.
UMBRIX_API void change_contrast(float* pixels, int height, int width, float amount, int thread, int threads);
/// @overload
UMBRIX_API void change_contrast(float3* pixels, int height, int width, float amount, int thread, int threads);
/// @overload
UMBRIX_API void change_contrast(float4* pixels, int height, int width, float amount, int thread, int threads);

/// Maps 0..1 linearly to @p low..@p high, which are in steps of 1/255 and limited to 0..255. The result is
/// not limited; @p low above @p high inverts.
UMBRIX_API void limit_color(float* pixels, int height, int width, int low, int high);
/// @overload
UMBRIX_API void limit_color(float3* pixels, int height, int width, int low, int high);
/// @overload
UMBRIX_API void limit_color(float4* pixels, int height, int width, int low, int high);

/// One thread's share of the same.
UMBRIX_API void limit_color(float* pixels, int height, int width, int low, int high, int thread, int threads);
/// @overload
UMBRIX_API void limit_color(float3* pixels, int height, int width, int low, int high, int thread,
                            int threads);
/// @overload
UMBRIX_API void limit_color(float4* pixels, int height, int width, int low, int high, int thread,
                            int threads);

/// Snaps every component to the nearest multiple of @p step / 255, alpha included.
///
/// Contract: `float3` and `float4` images change with a @p step above 0, `float` images only above 1; one
/// threshold is expected. Test: Posterize.AStepOfOneChangesPixelsAndLeavesFloatsAlone
///
/// Contract: on `float` the number of steps is divided by 255 without the multiplication by @p step, so a
/// step of 2 halves every value; a result on the scale of the input is expected. Test:
/// Posterize.FloatsAreNotScaledBackByTheStep
///
/// @param step   Width of a step in units of 1/255.
/// @param unused_1 Not read, as @p unused_2.
UMBRIX_API void posterize(float* pixels, float step, int height, int width, int unused_1, int unused_2);
/// @overload
UMBRIX_API void posterize(float3* pixels, float step, int height, int width, int unused_1, int unused_2);
/// @overload
UMBRIX_API void posterize(float4* pixels, float step, int height, int width, int unused_1, int unused_2);

/// Runs a 3 x 3 box filter @p passes times, none if that is 0 or less. The image wraps at its edges; a side
/// of 1 wraps onto itself.
///
/// Contract: the image repeats every width - 1 and height - 1 pixels, so that the last row and column count
/// as repeats of the first; a period of the whole side is expected. Test: Smooth.WrapsOneShortOfTheSide
///
/// Contract: after an odd number of passes @p pixels is released with array delete, and the result stays in a
/// buffer that no one gets; the result in @p pixels is expected. Call it with an even number, on a buffer
/// from array new. Test: Smooth.AnOddNumberOfPassesReleasesTheCallersBuffer
///
/// Rounding: the nine pixels are added row by row in float; the quotient by 9 is rounded once.
UMBRIX_API void smooth(float* pixels, int height, int width, int passes);
/// @overload
UMBRIX_API void smooth(float3* pixels, int height, int width, int passes);
/// @overload
UMBRIX_API void smooth(float4* pixels, int height, int width, int passes);

} // namespace umbrix_v0
