// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <climits>

namespace umbrixlib::detail {

/// Asks an occlusion kernel to end early, in the number through which it tells its progress. Who asks stores
/// it there atomically, from any thread, before the call or during it.
inline constexpr int kStopRequest = INT_MIN;

inline bool is_stop_requested(int& progress)
{
    return std::atomic_ref(progress).load(std::memory_order_relaxed) == kStopRequest;
}

/// Stores @p value, unless a stop is requested: nothing overwrites that.
inline void store_progress(int& progress, int value)
{
    std::atomic_ref shown(progress);
    int seen = shown.load(std::memory_order_relaxed);
    while (seen != kStopRequest && !shown.compare_exchange_weak(seen, value, std::memory_order_relaxed)) {
    }
}

} // namespace umbrixlib::detail
