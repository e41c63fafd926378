// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/gpu_library.h"
#include "common/export.h"
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "umbrix/umbrix_options.h"

#include <string>

inline namespace umbrix_v0 {

class NLayers;

/// Turns one image file into one Umbrix map file as `UmbrixFile` does, with the heavy stages on a graphics
/// processor. What `UmbrixFile` says of its arguments holds here, but for these points.
///
/// @param gpu      The device, and how the occlusion stage shares it with the desktop.
/// @param options  `height_copy` is allocated by every run and left to the caller, who frees it with array
///                 delete. `h_scale` and `tile` are not read: heights are taken at face value, in image
///                 widths, and `h_tile` and `v_tile` count by themselves. With `keep_buffers`, `normal_map`
///                 holds the flat normal where no normals were made.
/// @return True, also for an input that could not be read and for an output that could not be written.
///
/// Contract: heights are 1 minus the mean of the colours, or 1 minus the alpha; the heights of `UmbrixFile`
/// are expected. What is a peak there is a pit here. Heights of a normal map without alpha, and those of
/// layers, are not inverted. Test: UmbrixFileGpuRun.HeightsAreInverted
///
/// Contract: `h_scale` reaches neither the heights nor the graphics library; a scaled relief is expected.
/// Test: UmbrixFileGpuRun.HeightsAreTakenAtFaceValue
///
/// Contract: a one-byte image is read and written as three bytes a texel at a distance of one byte, so
/// neighbouring texels share bytes; a grey picture is expected. Test:
/// UmbrixFileGpuCalls.AOneByteImageIsThreeBytesAtADistanceOfOne
///
/// Contract: `height_copy` is written behind the bilateral filter, and is 1 everywhere without `preserve`;
/// heights as they were read are expected. Test: UmbrixFileGpuCalls.HeightsAreKeptBehindTheFilter
///
/// The rows of a ".vtf" picture come out right for every shape.
///
/// Threads: parallel loops of the default team, whatever its size. The graphics library is called between
/// them, on the calling thread. Calls must not overlap. One height buffer stays allocated for the next run.
UMBRIX_API bool UmbrixFile_GPU(GPU_opt gpu, std::string input, std::string output, umbrix_options& options,
                               LinkedList<n_layer>* layers, NLayers* stack, std::string* status,
                               int* progress);

} // namespace umbrix_v0
