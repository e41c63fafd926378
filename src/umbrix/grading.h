// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"
#include "common/vector_types.h"
#include "umbrix/umbrix_options.h"

inline namespace umbrix_v0 {

/// Conditions a height buffer in place: `change_contrast` by `h_contrast` and `brighten` by `h_brightness`,
/// each unless the value is 0, with `limit_color` between `h_min` and `h_max` in the middle, unless these are
/// 0 and 255; then `gaussianFilterRGBA` with `h_smooth`, unless that is 0. Comparisons are exact: NaN and a
/// negative sigma count as not 0.
///
/// @param heights rows * cols floats; null only if there are none.
/// @param options Read only.
/// @return True.
///
/// Threads: opens an OpenMP team, whose thread i handles the texels whose index leaves i when divided by the
/// number of processors. Blurring needs a second buffer of the same size for the time of the call.
///
/// Contract: the number of shares is that of the processors, whatever the size of the team, so with a smaller
/// team the texels of the missing threads stay as they are; that the team shares them out is expected. Give
/// it a team as large as the machine. Test: Grading.ASmallerTeamLeavesTheOtherShares
///
/// Contract: `h_brightness` reaches the first @p rows heights only, as `brighten` on `float` does.
/// Test: Grading.HeightBrightnessReachesTheFirstRowsElementsOnly
UMBRIX_API bool PreProcess(float* heights, int rows, int cols, umbrix_options& options);

/// Grades a finished map in place: the same chain by `contrast`, `min`, `max`, `brightness` and `smooth`. The
/// tone operators leave the alpha of a `float4` as it is; the blur treats it like the other channels.
///
/// @param map     rows * cols pixels; null only if there are none.
/// @param options Read only.
/// @return True.
UMBRIX_API bool PostProcess(float3* map, int rows, int cols, umbrix_options& options);
/// @overload
UMBRIX_API bool PostProcess(float4* map, int rows, int cols, umbrix_options& options);

} // namespace umbrix_v0
