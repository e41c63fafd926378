// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "common/vector_types.h"
#include "umbrix/umbrix_options.h"

inline namespace umbrix_v0 {

/// Light term of one texel: the dot products of a tangent-space normal with the basis vectors of @p options,
/// x with `basis_c`, y with `basis_b`, z with `basis_a`. Products and sums in double, y term, x term, z term,
/// rounded to float once. No clamp: a negative product stays negative.
/// @return True.
UMBRIX_API bool normal2umbrix(float3 normal, float3& out, umbrix_options& options);

/// Builds the ray tables of the three bands and traces them from a single position.
///
/// @param heights  rows * cols heights, row-major, and behind them one row and one element more: all up to
///                 element rows * cols + cols are read.
/// @param out      As long as @p heights; one element behind the image is written.
/// @param options  Reads `rays`, `radius`, `h_scale`, the two limits, the tile flags and the bases. Writes
///                 the six working fields, which dangle afterwards.
/// @param progress Set to 0; not null. With @p rows or @p cols below 1 both buffers are left alone.
/// @return True.
///
/// Rays are jittered by a generator that is seeded with the time, so two runs differ. Threads: parallel loops
/// inside; calls must not overlap.
///
/// Contract: traces the one texel at element rows * cols + x, x being where the search for the largest height
/// ended in its last row, and writes that element alone. An occlusion value for every texel is expected;
/// those come from `trace_rays`, and for whole images from `Height2DirectionalAO`. Test:
/// Height2Umbrix.WritesOneElementBehindTheImage
UMBRIX_API bool height2umbrix(float* heights, float3* out, int rows, int cols, umbrix_options& options,
                              int* progress);

/// The share of one bundle of rays that gets away from the relief at texel (x, y): 1 if nothing blocks the
/// light of this band, 0 if every ray is blocked, in steps of 1 / @p ray_count. A @p ray_count of 0 gives
/// NaN.
///
/// @param heights    rows * cols heights, row-major; a height that is not a number never blocks.
/// @param rows       At least 1, as @p cols.
/// @param cols       In texels.
/// @param y          Element y * cols + x of @p heights is read, wherever that lies.
/// @param x          As @p y.
/// @param scale      Factor on every height.
/// @param max_height Largest height of the map, at least 0, before @p scale.
/// @param reach      How far a ray may climb above its start before it counts as open.
/// @param table      For each ray @p ray_length entries, for steps 1, 2, ...: column offset and row offset in
///                   texels, with a half added for rounding, and the height gained.
/// @param ray_length Steps of a ray. With 0 nothing is read and every ray is open.
/// @param tile       Enables @p h_tile (columns wrap) and @p v_tile (rows wrap).
///
/// Contract: positions wrap with a period of one less than the side, so the first and the last line count as
/// one; the side itself is expected. And without tiling a position equal to the side is still inside and
/// wraps to 1. Test: TraceRays.WrapsWithAPeriodOfOneLessThanTheSide
///
/// A side of one texel has the period 0: a ray that would have to wrap there is open.
UMBRIX_API float trace_rays(float* heights, int rows, int cols, int y, int x, int ray_count, float scale,
                            float max_height, float reach, float3** table, int ray_length, bool tile,
                            bool h_tile, bool v_tile);

} // namespace umbrix_v0
