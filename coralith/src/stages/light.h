// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/shape.h"

namespace coralith {

/// The job of `Normal2Umbrix`; @p mode is a `Modes` value, and any other works as `Modes_Projection`.
bool light_normals(Backend& backend, Shape shape, int mode, float const* normals, float* light);

} // namespace coralith
