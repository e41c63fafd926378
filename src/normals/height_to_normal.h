// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "common/vector_types.h"

#include <string>

inline namespace umbrix_v0 {

/// Turns a height image into a tangent-space normal map, file to file. Colours are kept as three equal
/// heights: blur (if @p gaussian > 0), then `Height2Normal` with @p n_scale; bytes are (v + 1) * 255 / 2,
/// truncated.
///
/// @param source        Any image that DevIL reads, of any depth; alpha is dropped. No name may be null.
/// @param destination   Replaced if it exists; the format follows from the extension.
/// @param n_scale       Strength of the normals: a height difference of 1 over two texels, as a slope.
/// @param gaussian      Sigma of the blur, texels; 0 or less means none.
/// @param normal_flag_1 Accepted and not read, as @p mode, @p normal_flag_2 and @p normal_flag_3 are.
/// @param L_Detail      Radius of the bilateral filter, texels; at most 1 means none, below -1 must not be.
/// @param progress_text Set to "Generating Normal". Plain stores, for a polling front end; not null.
/// @param progress      Set to 0; not null.
/// @return True. An unreadable source is not noticed: the image that DevIL has bound is used. Check files
/// first.
///
/// Threads: parallel loops inside; calls must not overlap, as DevIL's bound image is process-wide.
///
/// Contract: the bilateral filter runs, and its result is dropped. A filtered image is expected; the one in
/// the file comes from the unfiltered heights. Test: HeightToNormalFile.TheBilateralResultIsDropped
UMBRIX_API bool HeightToNormal(char const* source, char const* destination, float n_scale, float gaussian,
                               bool normal_flag_1, int mode, float L_Detail, bool normal_flag_2,
                               bool normal_flag_3, std::string* progress_text, int* progress);

/// Turns a height buffer into normals: bilateral filter (if @p L_Detail > 1), times @p n_scale, blur (if
/// @p gaussian > 0), `ChangeDepth` (if @p depth is not 0), `Height2Normal`, `NormalEdges` (if both strengths
/// are above 0).
///
/// @param source        height * width floats, left alone.
/// @param destination   height * width unit vectors, the caller's.
/// @param height        At least 0, as @p width. With a side of 0 both buffers may be null.
/// @param width         In texels.
/// @param n_scale       Factor for every height.
/// @param gaussian      Sigma of the blur, texels; 0 or less means none.
/// @param depth         First value for `ChangeDepth`.
/// @param normal_flag_1 Accepted and not read, as @p mode, @p normal_flag_2 and @p normal_flag_3 are.
/// @param L_Detail      Radius of the bilateral filter, texels; at most 1 means none, below -1 must not be.
/// @param edge_a        Strength on convex edges.
/// @param edge_b        Strength on concave edges.
/// @param progress_text Set to "Generating Normal". Plain stores, for a polling front end; not null.
/// @param progress      Set to 0; not null.
/// @return True.
UMBRIX_API bool HeightToNormal(float* source, float3* destination, int height, int width, float n_scale,
                               float gaussian, float depth, bool normal_flag_1, int mode, float L_Detail,
                               bool normal_flag_2, float edge_a, float edge_b, bool normal_flag_3,
                               std::string* progress_text, int* progress);

} // namespace umbrix_v0
