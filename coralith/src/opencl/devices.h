// SPDX-License-Identifier: MIT
#pragma once

#include "device/device.h"

namespace coralith {

/// All OpenCL devices, in the loader's order, that can run the kernels. Breaks in some drivers if two threads
/// do it at once.
/// @param library The loader's file name.
Discovery discover_opencl(char const* library);

} // namespace coralith
