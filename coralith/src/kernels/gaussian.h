// SPDX-License-Identifier: MIT
/// @file
/// A stretch of the recursive Gaussian along one line. A line's four runs, forward and backward, each a
/// warm-up that writes nothing and the run that writes, may be cut anywhere: the state waits in memory.
///
/// Line l starts at (l / group) * group_step + l % group; its elements are position_step apart. Single floats
/// round once a step, the components of pixels at every operation.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

enum RunFlags {
    kStarts = 1,    // from zeros, not from the state in memory
    kWrites = 2,    // the run proper
    kRoundsOnce = 4 // single floats
};

FN float recursion_step(int flags, float f1, float x1, float f2, float x2, float b1, float y1, float b2,
                        float y2)
{
    if ((flags & kRoundsOnce) != 0) {
        return (float)((double)f1 * (double)x1 + (double)f2 * (double)x2 - (double)b1 * (double)y1 -
                       (double)b2 * (double)y2);
    }
    return f1 * x1 + f2 * x2 - b1 * y1 - b2 * y2;
}

/// Positions @p begin to @p end - 1 in rising order. Four floats of @p state a line: the last input, unused,
/// the last result, the one before.
KERNEL filter_forward(ITEM GLOBAL float const* input, GLOBAL float* output, GLOBAL float* state, Index lines,
                      Index group, Index group_step, Index position_step, Index begin, Index end, int flags,
                      float a0, float a1, float b1, float b2)
{
    Index const line = GID0;
    if (line >= lines) {
        return;
    }
    float x1 = 0.0f;
    float y1 = 0.0f;
    float y2 = 0.0f;
    if ((flags & kStarts) == 0) {
        x1 = state[4 * line];
        y1 = state[4 * line + 2];
        y2 = state[4 * line + 3];
    }
    Index place = line / group * group_step + line % group + begin * position_step;
    for (Index position = begin; position < end; ++position) {
        float const x = input[place];
        float const y = recursion_step(flags, a0, x, a1, x1, b1, y1, b2, y2);
        if ((flags & kWrites) != 0) {
            output[place] = y;
        }
        x1 = x;
        y2 = y1;
        y1 = y;
        place += position_step;
    }
    state[4 * line] = x1;
    state[4 * line + 2] = y1;
    state[4 * line + 3] = y2;
}

/// Positions @p end - 1 down to @p begin; the results are added to those of the forward pass. The state holds
/// the two inputs behind, then the two results behind.
KERNEL filter_backward(ITEM GLOBAL float const* input, GLOBAL float* output, GLOBAL float* state, Index lines,
                       Index group, Index group_step, Index position_step, Index begin, Index end, int flags,
                       float a2, float a3, float b1, float b2)
{
    Index const line = GID0;
    if (line >= lines) {
        return;
    }
    float x1 = 0.0f;
    float x2 = 0.0f;
    float y1 = 0.0f;
    float y2 = 0.0f;
    if ((flags & kStarts) == 0) {
        x1 = state[4 * line];
        x2 = state[4 * line + 1];
        y1 = state[4 * line + 2];
        y2 = state[4 * line + 3];
    }
    Index place = line / group * group_step + line % group + (end - 1) * position_step;
    for (Index position = end; position > begin; --position) {
        float const y = recursion_step(flags, a2, x1, a3, x2, b1, y1, b2, y2);
        x2 = x1;
        x1 = input[place];
        y2 = y1;
        y1 = y;
        if ((flags & kWrites) != 0) {
            output[place] = output[place] + y;
        }
        place -= position_step;
    }
    state[4 * line] = x1;
    state[4 * line + 1] = x2;
    state[4 * line + 2] = y1;
    state[4 * line + 3] = y2;
}

END_KERNELS
