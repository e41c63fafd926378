// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"

namespace umbrixlib::toolkit {

/// Leaves this process and all its threads the system calls of @p rights for as long as they live. What is
/// refused fails with EPERM, and nobody gets more rights by starting a program. A Failure if the kernel does
/// not do it.
void filter_system_calls(Rights rights);

} // namespace umbrixlib::toolkit
