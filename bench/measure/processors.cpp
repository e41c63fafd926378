// SPDX-License-Identifier: MIT
#include "processors.h"

#include <cstdio>
#include <cstdlib>
#include <sched.h>
#include <unistd.h>

namespace umbrixlib::bench {

int keep_to_processors(int count, char** words)
{
    cpu_set_t usable;
    CPU_ZERO(&usable);
    sched_getaffinity(0, sizeof usable, &usable);
    int const available = CPU_COUNT(&usable);
    if (available <= count) {
        return available;
    }
    for (int processor = 0, surplus = available - count; surplus > 0; ++processor) {
        if (CPU_ISSET(processor, &usable)) {
            CPU_CLR(processor, &usable);
            --surplus;
        }
    }
    sched_setaffinity(0, sizeof usable, &usable);
    execv("/proc/self/exe", words);
    std::perror("cannot start again on fewer processors");
    std::exit(1);
}

} // namespace umbrixlib::bench
