// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"

namespace umbrixlib::toolkit {

/// What a worker may use until it ends. Each is at most what the user allows the process already.
struct Limits {
    double memory;      ///< Bytes of address space; infinite: no limit.
    double file;        ///< Bytes of each file that is written.
    double cpu_seconds; ///< Of all threads together.
};

/// @param processors That the worker may use.
/// @param memory     Bytes of the machine, swap included.
Limits limits_of(Job const& job, std::size_t processors, double memory);

/// Sets them for this process, and that it leaves no core file.
void set_limits(Limits const& limits);

} // namespace umbrixlib::toolkit
