// SPDX-License-Identifier: MIT
/// @file
/// The ray walk at one texel. Needs no double: one addition of floats, comparisons, integer steps.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

/// The texel that position @p index of an axis of @p size texels wraps to: the period is size - 1.
FN Index wrapped_position(Index index, int size)
{
    Index const period = size - 1;
    if (index > period) {
        return (index - 1) % period + 1;
    }
    if (index < 0) {
        Index const rest = index % period;
        return rest < 0 ? rest + period : rest;
    }
    return index;
}

/// Whether the ray whose steps are @p begin to @p end - 1 of the tables gets away from texel (@p x, @p y). A
/// position one past the last row or column is still on a map that does not wrap.
FN int ray_gets_away(GLOBAL float const* RESTRICT heights, GLOBAL int const* RESTRICT offsets,
                     GLOBAL float const* RESTRICT climbs, int begin, int end, int rows, int cols,
                     int rows_wrap, int columns_wrap, int x, int y, float start, float ceiling)
{
    for (int step = begin; step < end; ++step) {
        Index const row = y + (Index)offsets[2 * step + 1];
        Index const col = x + (Index)offsets[2 * step];
        if ((rows_wrap == 0 && (row > rows || row < 0)) || (columns_wrap == 0 && (col > cols || col < 0))) {
            return 1;
        }
        float const ray_height = climbs[step] + start;
        if (heights[wrapped_position(row, rows) * cols + wrapped_position(col, cols)] >= ray_height) {
            return 0;
        }
        if (!(ceiling > ray_height)) {
            return 1;
        }
    }
    return 1;
}

/// Counts the open rays of texels @p first to @p first + @p count - 1 into channel @p channel of @p open. The
/// rays are @p first_ray to @p first_ray + @p rays - 1 of the tables. With @p starts the count starts at 0.
/// @param ends Ray r has the steps ends[r] to ends[r + 1] - 1.
KERNEL count_open_rays(ITEM GLOBAL float const* RESTRICT heights, GLOBAL int* RESTRICT open,
                       GLOBAL int const* RESTRICT offsets, GLOBAL float const* RESTRICT climbs,
                       GLOBAL int const* RESTRICT ends, int rows, int cols, int rows_wrap, int columns_wrap,
                       float top, float reach, int channel, int starts, int first_ray, int rays, Index first,
                       Index count)
{
    Index const i = GID0;
    if (i >= count) {
        return;
    }
    Index const texel = first + i;
    int const y = (int)(texel / cols);
    int const x = (int)(texel - (Index)y * cols);
    float const start = heights[texel];
    float const from_reach = start + reach;
    float const ceiling = top > from_reach ? from_reach : top;
    int escaped = 0;
    if (start == top) {
        escaped = rays;
    } else {
        for (int ray = first_ray; ray < first_ray + rays; ++ray) {
            escaped += ray_gets_away(heights, offsets, climbs, ends[ray], ends[ray + 1], rows, cols,
                                     rows_wrap, columns_wrap, x, y, start, ceiling);
        }
    }
    open[3 * texel + channel] = starts != 0 ? escaped : open[3 * texel + channel] + escaped;
}

/// Counts become shares: entry n of the table is n rays out of all.
KERNEL counts_to_shares(ITEM GLOBAL int const* open, GLOBAL float const* shares, GLOBAL float* result,
                        Index count)
{
    Index const i = GID0;
    if (i < count) {
        result[i] = shares[open[i]];
    }
}

END_KERNELS
