// SPDX-License-Identifier: MIT
#include <cstdint>

/// @file
/// Highway's library, as soon as it is loaded, measures the clock of its own benchmarks: 3 ms of every start
/// of the tool and of every worker, for a number that nobody asks for. The dynamic linker takes a function of
/// the program before a library's own, so this is the one that gets called. Where it is not, the start takes
/// longer, and nothing else changes.

namespace hwy::platform {

[[gnu::visibility("default")]] std::uint64_t TimerResolution();

std::uint64_t TimerResolution()
{
    return 1;
}

} // namespace hwy::platform
