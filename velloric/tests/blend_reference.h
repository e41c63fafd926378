// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The blends as they are defined.

#include "boundary/texture_kernels.h"

namespace velloric::reference {

/// One value. The opacity is within 0..100.
inline float blended(BlendType type, float opacity, float first, float second)
{
    double const a = static_cast<double>(first);
    double const b = static_cast<double>(second);
    double const share = static_cast<double>(static_cast<float>(static_cast<double>(opacity) / 100.0));
    double const overlay = a <= 0.5 ? 2.0 * a * b : 1.0 - 2.0 * (1.0 - a) * (1.0 - b);
    double const target = type == BlendType_Overlay ? overlay : b;
    return static_cast<float>(target * share + a * (1.0 - share));
}

} // namespace velloric::reference
