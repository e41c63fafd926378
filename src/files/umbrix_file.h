// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "umbrix/umbrix_options.h"

#include <string>

inline namespace umbrix_v0 {

class NLayers;

/// Turns one image file into one Umbrix map file on the CPU: heights, optional bilateral filter,
/// `PreProcess`, normals, light from the three basis directions, occlusion, `PostProcess`, bytes, file.
///
/// @param input    Any image that DevIL reads, with 3 or 4 bytes per pixel. A height map (`height_map`: the
///                 mean of the colours is the height) or a normal map with the height in its alpha. With one
///                 byte per pixel it counts as black; any other depth sets how far apart texels lie in the
///                 bytes, of which DevIL still delivers three or four a texel.
/// @param output   Replaced if it exists; the format follows from the extension. If ".vtf" is anywhere in the
///                 name, the rows are reversed, which assumes a square image.
/// @param options  Every field set by the caller. A run writes `blend_height`, `image_width`, `image_height`,
///                 `ao_map` and, with `keep_buffers`, `normal_map` and `height_copy`; the caller then frees
///                 the three with array delete. With `preserve` and without `keep_buffers`, `height_copy`
///                 must point at one float per texel, or be null.
/// @param layers   Descriptions of the layers; empty or null for a run on the image alone.
/// @param stack    The stack over @p layers. Null counts as an empty one, which goes with the run. If it has
///                 another number of layers than @p layers, it is cleared and filled with height layers from
///                 the files of @p layers; the layers stay in it after the run.
/// @param status   Name of the stage, for a polling front end. Plain stores; not null.
/// @param progress Progress of the stage, 0 to 1000. Plain stores; not null.
/// @return True, also for an input that could not be read: the image that DevIL has bound is used, and failed
///         writes are not noticed. Check files before and after.
///
/// With layers, `generate_normal` takes the normals from `NLayers::BlendLayers(float3*)`, and if the first
/// layer's size differs from the image's, the map takes the layer's size and `blend_height` becomes true.
/// With `blend_height` the heights come from `NLayers::BlendHeightMap(float*&)`, stretched to 0..1, and no
/// pixel of the image is read; a stack smaller than the map leaves zeros behind its last texel. Without
/// layers `blend_height` becomes false.
///
/// Contract: a stack that is filled during the run loads its files into the bound image, and the pixels are
/// fetched behind that; those of @p input are expected. A run on pixels and layers shows the last layer's
/// picture. Test: UmbrixFileLayers.PixelsAreThoseOfTheLastLayerLoaded
///
/// Threads: one parallel region of the default team, whose size must be at least that of
/// `omp_get_num_procs`: a smaller team leaves texels out, and what a larger one has beyond it is idle. Turns
/// nested parallelism on for the process. Calls must not overlap. One height buffer and three ray arrays stay
/// allocated for the next run.
UMBRIX_API bool UmbrixFile(std::string input, std::string output, umbrix_options& options,
                           LinkedList<n_layer>* layers, NLayers* stack, std::string* status, int* progress);

} // namespace umbrix_v0
