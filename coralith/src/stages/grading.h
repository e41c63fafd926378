// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/shape.h"
#include "umbrix/umbrix_options.h"

namespace coralith {

/// The fields of one side of the options.
struct Grading {
    float contrast;
    int min;
    int max;
    float brightness;
    float smooth;

    static Grading of_heights(umbrix_options const& options);
    static Grading of_map(umbrix_options const& options);
};

/// The job of `PreProcess` (one component) and of the `float4` `PostProcess` (four).
bool grade(Backend& backend, Shape shape, int components, Grading const& grading, float const* in,
           float* out);

} // namespace coralith
