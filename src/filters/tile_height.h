// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"

inline namespace umbrix_v0 {

/// Tilts every row of a height map alike, so that its left and right edge columns meet: column c is raised by
/// offset - c * step, where offset is half the difference of the two columns' means (right minus left) and
/// step is offset / (width / 2). Top and bottom are not looked at.
///
/// @param heights height * width floats, changed in place. Sizes below 1 change nothing; null only then.
///
/// Contract: the ramp ends one step short of minus the offset; edges that meet exactly are expected. The
/// right edge's mean comes out one step above the left edge's. Test:
/// TileHeight.TheRightEdgeEndsOneStepAboveTheLeft
UMBRIX_API void TileHeight(float* heights, int height, int width);

} // namespace umbrix_v0
