// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "stages/stage.h"

namespace coralith {

enum class SelfTest { kPassed, kFailed, kDiffers };

/// Runs @p stage on a small map on @p device and on @p host and compares the bits. kFailed: an operation of
/// the device did not go well, and it says why.
SelfTest self_test(Backend& device, Backend& host, Stage stage);

} // namespace coralith
