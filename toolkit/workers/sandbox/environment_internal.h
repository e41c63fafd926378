// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"

#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// The environment of a worker with @p rights that may use @p processors: the variables of @p all (a null at
/// the end) that it has use for. Nothing else of the user's reaches one that does not keep all rights. Of
/// OpenMP's, those that could make a team smaller are left out: the library shares texels out by the number
/// of processors, and OpenMP reads them only when a program starts. Unless the user
/// wants it otherwise, threads that wait sleep, as those that spin take the processors from the workers
/// beside, and malloc() asks for large pages.
std::vector<std::string> worker_environment(char const* const* all, Rights rights, std::size_t processors);

} // namespace umbrixlib::toolkit
