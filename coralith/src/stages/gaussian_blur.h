// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/shape.h"

namespace coralith {

/// The job of `gaussianFilterRGBA` in place on @p map, which holds @p components floats a texel.
bool gaussian_blur(Backend& backend, DeviceArray const& map, Shape shape, int components, float sigma);

} // namespace coralith
