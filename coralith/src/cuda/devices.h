// SPDX-License-Identifier: MIT
#pragma once

#include "device/device.h"

#include <string>

namespace coralith {

/// The devices of the CUDA module at @p path; none, and a note why, if it cannot be opened or finds no
/// driver.
Discovery discover_cuda(std::string const& path);

/// File name of the module, which lies beside the library.
char const* cuda_module_name();

} // namespace coralith
