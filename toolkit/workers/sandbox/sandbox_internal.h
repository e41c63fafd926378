// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"
#include "toolkit/workers/service.h"

namespace umbrixlib::toolkit {

/// Opens the files that @p job names, then gives up all but @p rights, before a byte of them is read. A
/// Failure if that cannot be done; a kernel that can take no rights leaves all, and limits alone hold.
/// @param service What is left besides for jobs to come: being handed their files.
void enter_sandbox(Job const& job, Rights rights, Service service = Service::kOneJob);

} // namespace umbrixlib::toolkit
