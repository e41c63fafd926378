// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/export.h"
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
///                 mean of the colours is the height) or a normal map with the height in its alpha.
/// @param output   Replaced if it exists; the format follows from the extension. A name with ".vtf" anywhere
/// in
///                 it gets its rows reversed, which assumes a square image.
/// @param options  Every field set by the caller. A run writes `blend_height`, `image_width`, `image_height`,
///                 `ao_map` and, with `keep_buffers`, `normal_map` and `height_copy`; the caller then frees
///                 the three with array delete. With `preserve` and without `keep_buffers`, `height_copy`
///                 must point at one float per texel, or be null.
/// @param layers   Descriptions of the layers; empty for a run on the image alone. Never null.
/// @param stack    The stack over @p layers; not looked at while @p layers is empty.
/// @param status   Name of the stage, for a polling front end. Plain stores.
/// @param progress Progress of the stage, 0 to 1000. Plain stores.
/// @return True, also for an input that could not be read: the image that DevIL has bound is used, and failed
///         writes are not noticed. Check files before and after.
///
/// Threads: one parallel region of the default team, whose size must be that of `omp_get_num_procs`: a
/// smaller team leaves texels out. Turns nested parallelism on for the process. Calls must not overlap. One
/// height buffer and three ray arrays stay allocated for the next run.
UMBRIX_API bool UmbrixFile(std::string input, std::string output, umbrix_options& options,
                           LinkedList<n_layer>* layers, NLayers* stack, std::string* status, int* progress);

} // namespace umbrix_v0
