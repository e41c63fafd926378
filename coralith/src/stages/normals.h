// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/shape.h"

namespace coralith {

struct NormalSettings {
    float n_scale;  ///< Factor of every height.
    float gaussian; ///< Sigma of the blur; runs above 0.
    float L_Detail; ///< Radius of the bilateral filter; runs above 1.
};

/// The job of `HeightToNormal` on a buffer, with a depth and edges of 0.
bool height_to_normal(Backend& backend, Shape shape, NormalSettings const& settings, float const* heights,
                      float* normals);

} // namespace coralith
