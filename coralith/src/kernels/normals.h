// SPDX-License-Identifier: MIT
/// @file
/// Heights to tangent-space normals.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

KERNEL scale_heights(ITEM GLOBAL float* heights, Index count, float scale)
{
    Index const i = GID0;
    if (i < count) {
        heights[i] = heights[i] * scale;
    }
}

/// The central difference of the four neighbours, on a map that wraps. The squares are exact in double; roots
/// and quotients of floats round in float as they do by way of double.
KERNEL make_normals(ITEM GLOBAL float const* heights, GLOBAL float* normals, int rows, int cols)
{
    Index const i = GID0;
    if (i >= (Index)rows * cols) {
        return;
    }
    int const y = (int)(i / cols);
    int const x = (int)(i - (Index)y * cols);
    Index const row = (Index)y * cols;
    Index const below = (Index)(y == 0 ? rows - 1 : y - 1) * cols;
    Index const above = (Index)(y == rows - 1 ? 0 : y + 1) * cols;
    float const slope_x =
        heights[row + (x == 0 ? cols - 1 : x - 1)] - heights[row + (x == cols - 1 ? 0 : x + 1)];
    float const slope_y = heights[below + x] - heights[above + x];
    float const square = (float)((double)slope_y * (double)slope_y + (double)slope_x * (double)slope_x + 1.0);
    float const length = (float)SQRT((double)square);
    float const inverse = (float)(1.0 / (double)length);
    normals[3 * i] = inverse * slope_x;
    normals[3 * i + 1] = inverse * slope_y;
    normals[3 * i + 2] = inverse;
}

END_KERNELS
