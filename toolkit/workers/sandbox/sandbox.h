// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"

namespace umbrixlib::toolkit {

/// Opens the files that @p job names, then gives up every right that rights_of() does not leave: before a
/// byte of them is read. A Failure if a file or the kernel does not let it; on a kernel that takes no rights,
/// nothing is given up.
void enter_sandbox(Job const& job);

} // namespace umbrixlib::toolkit
