// SPDX-License-Identifier: MIT
#pragma once

#include "device/backend.h"
#include "opencl/api.h"

#include <memory>
#include <string>

namespace coralith {

/// A queue on @p device; null if it cannot be made, and why.
std::unique_ptr<Backend> open_opencl_backend(std::shared_ptr<OpenClApi const> api, cl_device_id device,
                                             Limits const& limits, std::string& why);

} // namespace coralith
