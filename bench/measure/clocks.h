// SPDX-License-Identifier: MIT
#pragma once

#include <ctime>

namespace umbrixlib::bench {

inline double seconds_of(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// User and system time of all threads of the process.
inline double cpu_seconds()
{
    return seconds_of(CLOCK_PROCESS_CPUTIME_ID);
}

inline double wall_seconds()
{
    return seconds_of(CLOCK_MONOTONIC);
}

} // namespace umbrixlib::bench
