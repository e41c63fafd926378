// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The texture kernels of the companion library Velloric, imported by name.
///
/// Common to all of them. Buffers are row-major arrays without row padding, owned by the caller; no kernel
/// keeps a pointer after it returns. The size comes as height, then width. Nothing is returned, nothing is
/// reported, nothing is validated. Forms without `thread` and `threads` may run parallel loops of their own;
/// forms with them do one thread's share and must be called once for each `thread` from 0 to `threads` - 1,
/// at the same time or one after the other, with a barrier before the result is read. A call with any other
/// `thread` does nothing. A size below 1 does nothing; only then may a buffer be null. Buffers must not
/// overlap but where a kernel says so. Results do not depend on the number of threads nor on the processor's
/// instruction set.

#include "common/export.h"
#include "common/modes.h"
#include "common/ray.h"
#include "common/vector_types.h"

inline namespace umbrix_v0 {

/// Kind of blend of `Blend`.
enum BlendType : int {
    BlendType_Blend = 0,   ///< Cross-fade.
    BlendType_Overlay = 1, ///< The overlay mode of image editors, `first` below.
};

} // namespace umbrix_v0

/// Fills @p table with the weights of a bilateral filter: entry i is exp(-i * i / (2 * s * s)) with
/// s = @p sigma / 3, for i from 0 to the integer part of ceil(@p sigma). The radius thus spans three standard
/// deviations. A @p sigma that is not above 0, or not a number, writes the single weight 1.
/// @param table Room for the integer part of ceil(@p sigma), plus 1, floats.
VELLORIC_API void GenerateExp(float sigma, float* table);
/// One thread's share of the same table: entries `thread`, `thread + threads`, ...
VELLORIC_API void GenerateExp(float sigma, float* table, int thread, int threads);

/// Edge-preserving smoothing: each texel becomes the mean of the window of +-ceil(@p radius) texels around
/// it, weighted by spatial[|dx|] * spatial[|dy|] * range[min(255, nearest integer of |difference| * 255)].
/// Borders wrap around, as a texture tiles.
/// @param source      height * width elements, read only.
/// @param destination Same shape, every element written; must not be @p source.
/// @param spatial     The integer part of ceil(@p radius), plus 1, weights by distance.
/// @param range       256 weights by difference of values, on a scale of 255 steps.
/// Method: C. Tomasi and R. Manduchi, Bilateral Filtering for Gray and Color Images, ICCV 1998.
VELLORIC_API void BilateralFilter(float* source, float* destination, int height, int width, float radius,
                                  float* spatial, float* range);
/// The same for three channels, each filtered by itself.
VELLORIC_API void BilateralFilter(float3* source, float3* destination, int height, int width, float radius,
                                  float* spatial, float* range);
/// One thread's share of the float form.
VELLORIC_API void BilateralFilter(float* source, float* destination, int height, int width, float radius,
                                  float* spatial, float* range, int thread, int threads);

/// Bends the relief in place: with u = h / @p n_scale, h becomes n_scale * sign(u) * |u|^(2^depth), rounded
/// once, to the nearest float. A positive @p depth deepens the relief between the peaks, a negative one fills
/// it. An @p n_scale of 0 leaves the heights alone; a height that is not a number stays one.
/// @param heights Heights already multiplied by @p n_scale.
VELLORIC_API void ChangeDepth(float* heights, int height, int width, float depth, float n_scale);

/// Unit normals of a height map by the central difference of `GetNormal` on the four neighbours; neighbours
/// wrap around, rows go up with y. A flat neighbourhood gives (0, 0, 1).
/// @param heights Taken at face value.
VELLORIC_API void Height2Normal(float* heights, float3* normals, int height, int width);
/// The same in place: the mean of the three channels times @p n_scale is the height.
VELLORIC_API void Height2Normal(float3* image, int height, int width, float n_scale);

/// Stresses edges in place. With c the Laplacian of @p heights (neighbours wrap around) and k = |c| / (1 +
/// |c|), the slope of a normal is scaled by 1 + @p edge_a * k on convex texels (c below 0) and by 1 + @p
/// edge_b * k on concave ones (c above 0). Unit vectors out.
VELLORIC_API void NormalEdges(float3* normals, float* heights, int height, int width, float edge_a,
                              float edge_b);

/// Multiplies x and y of each normal by @p scale and brings it to unit length again.
VELLORIC_API void NormalScale(float3* normals, int height, int width, float scale);

/// Cross-fade of two normal maps: @p first weighs @p opacity / 100, clamped to 0..1, and @p second the rest.
/// Nothing is normalised. @p result may be either input.
VELLORIC_API void BlendNormal(float opacity, float3* first, float3* second, float3* result, int height,
                              int width);

/// Blends @p second over @p first: 0 gives @p first, 100 the full effect. The opacity is clamped.
/// @param result May be either input.
VELLORIC_API void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result,
                        int height, int width);
/// One thread's share: texels `thread`, `thread + threads`, ...
VELLORIC_API void Blend(BlendType type, float opacity, float3* first, float3* second, float3* result,
                        int height, int width, int thread, int threads);

/// Replaces each normal of this thread's share (texels `thread`, `thread + threads`, ...) by its light from
/// the three basis directions, as @p mode says. Mode 0 equals `normal2umbrix` bit for bit.
VELLORIC_API void Normal2Umbrix(float3* image, int height, int width, Modes mode, int thread, int threads);

/// Makes the three bundles of rays, the step vectors that `height2umbrix` describes. Ray 0 of a bundle is its
/// basis direction; the others spread over the elevation and azimuth limits by a fixed low-discrepancy
/// sequence, so the same arguments give the same rays on every run, machine and thread count.
/// @param rays_a      Band at azimuth 120. Room for 2 * @p rays records each; the first @p rays are written.
/// @param rays_b      Band at azimuth 240.
/// @param rays_c      Band at azimuth 0.
/// @param theta_limit Full width of the azimuth jitter, degrees.
/// @param alpha_limit Full width of the elevation bands, degrees.
VELLORIC_API void GenerateRays(int height, int width, ray*& rays_a, ray*& rays_b, ray*& rays_c, int rays,
                               float theta_limit, float alpha_limit);

/// For every texel and band the share of rays that get away from the relief: exactly what `trace_rays` gives
/// with tables built from the same step vectors, a scale of 1 and the maximum of @p heights (at least 0).
/// @param occlusion  height * width results: x from @p rays_c, y from @p rays_b, z from @p rays_a.
/// @param heights    Already scaled, in image widths; negative values are ordinary, NaN never blocks.
/// @param rays       Rays per band. With none, or with a side of one texel, every share is 1.
/// @param h_scale    Accepted and not read: the heights come scaled.
/// @param radius     Reach of the rays, as a fraction of the width.
/// @param tile       Enables @p h_tile (columns wrap) and @p v_tile (rows wrap).
/// @param progress   Goes from 0 to 1000, never back; may be null. Any thread may store INT_MIN in it,
///                   atomically, before the call or during it: the kernel leaves that value, returns within
///                   the time of some tiles, and the contents of @p occlusion are undefined.
/// Threads: uses all processors; call it from one thread at a time.
VELLORIC_API void Height2DirectionalAO(float3* occlusion, float* heights, int height, int width, ray* rays_a,
                                       ray* rays_b, ray* rays_c, int rays, float h_scale, float radius,
                                       bool tile, bool h_tile, bool v_tile, int* progress);
