// SPDX-License-Identifier: MIT
#pragma once

#include "common/stop_request.h"

#include <atomic>

namespace occlusion_before {

/// The share of finished work in thousandths, written where a front end polls it. Never goes back. A front
/// end that asks for a stop does so in the same place, which then stays as it is.
class Progress {
public:
    /// @param target May be null.
    explicit Progress(int* target) : target_(target) { write(0); }

    /// Whether the rest of the work is to be left.
    bool is_stopped() const { return target_ != nullptr && umbrixlib::detail::is_stop_requested(*target_); }

    /// Says how much work there is, in any unit. Before the first `add`.
    void expect(long long work) { expected_ = work; }

    /// @p work is done. Any thread may call this; @p writes is true on one and the same of them only.
    void add(long long work, bool writes)
    {
        long long const done = done_.fetch_add(work, std::memory_order_relaxed) + work;
        if (writes) {
            write(static_cast<int>(done * kWhole / expected_));
        }
    }

    void finish() { write(kWhole); }

private:
    static constexpr int kWhole = 1000;

    void write(int value)
    {
        if (target_ != nullptr) {
            umbrixlib::detail::store_progress(*target_, value);
        }
    }

    int* target_;
    long long expected_ = 1;
    std::atomic<long long> done_ = 0;
};

} // namespace occlusion_before
