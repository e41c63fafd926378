// SPDX-License-Identifier: MIT
/// @file
/// The bilateral filter at one texel. The map wraps; taps are added in float row by row.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

/// Entry of the range table for two values @p difference apart; NaN has the last.
FN int range_entry(float difference)
{
    double const signed_steps = (double)difference * 255.0; // exact
    double const steps = signed_steps < 0.0 ? -signed_steps : signed_steps;
    return steps < 255.0 ? (int)(steps + 0.5) : 255;
}

FN int wrapped_into(int index, int size)
{
    int const rest = index % size;
    return rest < 0 ? rest + size : rest;
}

/// Texels @p first to @p first + @p count - 1 of @p destination.
KERNEL filter_bilateral(ITEM GLOBAL float const* source, GLOBAL float* destination,
                        GLOBAL float const* spatial, GLOBAL float const* range, int rows, int cols,
                        int radius, Index first, Index count)
{
    Index const i = GID0;
    if (i >= count) {
        return;
    }
    Index const texel = first + i;
    int const y = (int)(texel / cols);
    int const x = (int)(texel - (Index)y * cols);
    float const centre = source[texel];
    float sum = 0.0f;
    float weight_sum = 0.0f;
    int row = wrapped_into(y - radius % rows, rows);
    int const first_col = wrapped_into(x - radius % cols, cols);
    for (int dy = -radius; dy <= radius; ++dy) {
        float const row_weight = spatial[dy < 0 ? -dy : dy];
        int col = first_col;
        for (int dx = -radius; dx <= radius; ++dx) {
            float const tap = source[(Index)row * cols + col];
            float const weight = spatial[dx < 0 ? -dx : dx] * row_weight * range[range_entry(tap - centre)];
            sum = sum + weight * tap;
            weight_sum = weight_sum + weight;
            col = col + 1 == cols ? 0 : col + 1;
        }
        row = row + 1 == rows ? 0 : row + 1;
    }
    // A quotient of floats rounds in float as it does by way of double.
    destination[texel] = weight_sum > 0.0f ? (float)((double)sum / (double)weight_sum) : centre;
}

END_KERNELS
