// SPDX-License-Identifier: MIT
/// @file
/// The tone operators on one float: contrast, limits, brightness, each rounding to float before the next.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

enum ToneSteps { kChangesContrast = 1, kLimits = 2, kBrightens = 4 };

/// Above 1 becomes 1, then below 0 becomes 0; NaN stays.
FN float clamped(float value)
{
    float const capped = value > 1.0f ? 1.0f : value;
    return capped < 0.0f ? 0.0f : capped;
}

/// @p steps is a sum of `ToneSteps`. With @p keeps_alpha every fourth float stays as it is. Only the first
/// @p brightened floats are brightened.
KERNEL change_tone(ITEM GLOBAL float* values, Index count, Index brightened, int keeps_alpha, int steps,
                   float contrast, float low, float high, float brightness)
{
    Index const i = GID0;
    if (i >= count || (keeps_alpha != 0 && i % 4 == 3)) {
        return;
    }
    float value = values[i];
    if ((steps & kChangesContrast) != 0) {
        float const distance = value - 0.5f;
        value = clamped((float)((double)value + (double)distance * (double)contrast));
    }
    if ((steps & kLimits) != 0) {
        value = (float)((1.0 - (double)value) * (double)low + (double)value * (double)high);
    }
    if ((steps & kBrightens) != 0 && i < brightened) {
        value = clamped(value + brightness);
    }
    values[i] = value;
}

END_KERNELS
