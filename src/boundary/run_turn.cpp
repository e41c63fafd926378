// SPDX-License-Identifier: MIT
#include "boundary/run_turn_internal.h"

#include <chrono>

namespace umbrixlib::detail {

namespace {

std::timed_mutex turns;

} // namespace

RunTurn::RunTurn(RunReport const& report) : lock_(turns, std::defer_lock)
{
    constexpr std::chrono::milliseconds kLookEvery(5);
    while (!lock_.try_lock_for(kLookEvery) && !report.stopping()) {
    }
}

} // namespace umbrixlib::detail
