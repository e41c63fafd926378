// SPDX-License-Identifier: MIT
#pragma once

#include "device/device.h"

#include <vector>

namespace coralith {

/// All devices in the order of their numbers, without the host. The environment variable CORALITH_BACKEND may
/// ask for "opencl", "cuda" or "host" alone.
Discovery discover_devices();

/// Graphics cards first, then other devices. A card that CUDA knows too is taken as the CUDA device, in its
/// place; cards that only CUDA knows follow the other cards.
std::vector<Device> merged(std::vector<Device> opencl, std::vector<Device> cuda);

} // namespace coralith
