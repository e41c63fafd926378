// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"

namespace umbrixlib::toolkit {

/// Opens the files that @p job names, then gives up all but @p rights, before a byte of them is read. A
/// Failure if that cannot be done; a kernel that can take no rights leaves all, and limits alone hold.
void enter_sandbox(Job const& job, Rights rights);

} // namespace umbrixlib::toolkit
