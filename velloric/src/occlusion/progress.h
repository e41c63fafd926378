// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

namespace velloric {

/// The share of finished work in thousandths, written where a front end polls it. Never goes back.
class Progress {
public:
    /// @param target May be null.
    explicit Progress(int* target) : target_(target) { write(0); }

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
            std::atomic_ref<int>(*target_).store(value, std::memory_order_relaxed);
        }
    }

    int* target_;
    long long expected_ = 1;
    std::atomic<long long> done_ = 0;
};

} // namespace velloric
