// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/sandbox/rights.h"
#include "toolkit/workers/service.h"

namespace umbrixlib::toolkit {

/// What a worker may use until it ends. Each is at most what the user allows the process already.
struct Limits {
    double memory;      ///< Bytes of address space; infinite: no limit.
    double file;        ///< Bytes of each file that is written.
    double cpu_seconds; ///< Of all threads together.

    bool operator==(Limits const&) const = default;
};

/// A worker that has used so much CPU time begins no other job.
inline constexpr double kCpuSecondsOfService = 60;

/// Those of a worker that does @p job, and jobs like it: each has the CPU time of a worker of its own.
/// @param processors That the worker may use.
/// @param memory     Bytes of the machine, swap included.
Limits limits_of(Job const& job, Service service, std::size_t processors, double memory);

/// Sets them for this process, and that it leaves no core file.
void set_limits(Limits const& limits);

} // namespace umbrixlib::toolkit
