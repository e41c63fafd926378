// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"
#include "toolkit/workers/service.h"

namespace umbrixlib::toolkit {

/// Leaves this process and all its threads the system calls of @p rights for as long as they live, and for
/// many jobs the one by which it is handed more files, from the standard input and nowhere else. What is
/// refused fails with EPERM, and nobody gets more rights by starting a program. A Failure if the kernel does
/// not do it.
void filter_system_calls(Rights rights, Service service = Service::kOneJob);

} // namespace umbrixlib::toolkit
