// SPDX-License-Identifier: MIT
#include "idleness.h"

#include "clocks.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace umbrixlib::bench {

namespace {

struct Ticks {
    double busy = 0.0;
    double total = 0.0;
};

/// Of all processors since the start of the machine, in seconds.
Ticks processor_times()
{
    std::ifstream stat("/proc/stat");
    std::string name;
    stat >> name;
    Ticks times;
    double const second = static_cast<double>(sysconf(_SC_CLK_TCK));
    // user, nice, system, idle, waiting for a device, interrupts, soft interrupts, taken by the hypervisor
    for (int column = 0; column < 8; ++column) {
        double ticks = 0.0;
        stat >> ticks;
        bool const idle = column == 3 || column == 4;
        times.busy += idle ? 0.0 : ticks / second;
        times.total += ticks / second;
    }
    return times;
}

/// Of this process and those that it started and waited for.
double own_seconds()
{
    rusage children{};
    getrusage(RUSAGE_CHILDREN, &children);
    auto const seconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return cpu_seconds() + seconds(children.ru_utime) + seconds(children.ru_stime);
}

} // namespace

OthersWatch::OthersWatch()
{
    Ticks const now = processor_times();
    busy_ = now.busy;
    total_ = now.total;
    own_ = own_seconds();
}

double OthersWatch::share() const
{
    Ticks const now = processor_times();
    double const others = now.busy - busy_ - (own_seconds() - own_);
    return std::max(0.0, others / std::max(now.total - total_, 1e-9));
}

} // namespace umbrixlib::bench
