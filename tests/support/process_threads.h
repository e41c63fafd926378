// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace umbrixlib::test {

inline std::ptrdiff_t threads_of_process()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// The team of a thread that has ended goes a moment later. Waits until @p left threads are left.
inline void wait_for_teams_to_go(std::ptrdiff_t left)
{
    while (threads_of_process() > left) {
        std::this_thread::yield();
    }
}

} // namespace umbrixlib::test
