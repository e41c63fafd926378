// SPDX-License-Identifier: MIT
#include "toolkit/workers/processor_share.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

std::vector<int> usable_processors()
{
    ProcessorSet usable;
    CPU_ZERO(&usable);
    std::vector<int> numbers;
    if (sched_getaffinity(0, sizeof usable, &usable) == 0) {
        for (int number = 0; number < CPU_SETSIZE; ++number) {
            if (CPU_ISSET(number, &usable)) {
                numbers.push_back(number);
            }
        }
    }
    return numbers;
}

} // namespace

std::vector<ProcessorSet> share_processors(std::size_t parts)
{
    std::vector<int> const numbers = usable_processors();
    if (numbers.empty()) {
        return {};
    }
    std::vector<ProcessorSet> shares(parts);
    for (std::size_t part = 0; part < parts; ++part) {
        // Neighbours share caches and memory, so a part is a run of them.
        std::size_t first = part * numbers.size() / parts;
        std::size_t last = (part + 1) * numbers.size() / parts;
        if (numbers.size() < parts) {
            first = part % numbers.size();
            last = first + 1;
        }
        CPU_ZERO(&shares[part]);
        for (std::size_t i = first; i < last; ++i) {
            CPU_SET(numbers[i], &shares[part]);
        }
    }
    return shares;
}

std::optional<ProcessorSet> processors_for_threads(char const* threads)
{
    std::vector<int> const numbers = usable_processors();
    unsigned long const wished = threads == nullptr ? 0 : std::strtoul(threads, nullptr, 10);
    if (wished == 0 || wished >= numbers.size()) {
        return std::nullopt;
    }
    ProcessorSet few;
    CPU_ZERO(&few);
    std::size_t const first = static_cast<std::size_t>(getpid()) * wished;
    for (std::size_t i = 0; i < wished; ++i) {
        CPU_SET(numbers[(first + i) % numbers.size()], &few);
    }
    return few;
}

std::size_t processor_count()
{
    return std::max<std::size_t>(usable_processors().size(), 1);
}

std::size_t default_workers()
{
    constexpr double kMemoryOfOne = 2.0 * 1024 * 1024 * 1024;
    double const memory =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    auto const fitting = static_cast<std::size_t>(std::max(memory / kMemoryOfOne, 1.0));
    return std::min(processor_count(), fitting);
}

ProcessorScope::ProcessorScope(ProcessorSet const* share)
{
    if (share != nullptr && sched_getaffinity(0, sizeof before_, &before_) == 0) {
        changed_ = sched_setaffinity(0, sizeof *share, share) == 0;
    }
}

ProcessorScope::~ProcessorScope()
{
    if (changed_) {
        sched_setaffinity(0, sizeof before_, &before_);
    }
}

} // namespace umbrixlib::toolkit
