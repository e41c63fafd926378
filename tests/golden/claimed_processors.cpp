// SPDX-License-Identifier: MIT
/// Loaded before the C library, it makes the machine look as large as OMP_CLAIMED_PROCESSORS says, which is
/// named like the variables that a worker is handed: g++'s OpenMP asks here when it starts, and then counts
/// that many processors and makes teams of that size.
#include <cstdlib>
#include <pthread.h>
#include <sched.h>

extern "C" __attribute__((visibility("default"))) int pthread_getaffinity_np(pthread_t, std::size_t size,
                                                                             cpu_set_t* set) noexcept
{
    CPU_ZERO_S(size, set);
    for (int i = 0; i < std::atoi(std::getenv("OMP_CLAIMED_PROCESSORS")); ++i) {
        CPU_SET_S(static_cast<std::size_t>(i), size, set);
    }
    return 0;
}
