// SPDX-License-Identifier: MIT
#pragma once

#include "common/export.h"

#include <atomic>

namespace umbrixlib {

/// How a run in memory came out.
enum class Outcome {
    kDone,
    kStopped, ///< `RunControl::stop` was called; there are no results.
    kInvalid, ///< The request makes no sense, such as a picture without samples; there are no results.
};

/// Watches one run from other threads, and stops it.
///
/// Threads: any number may call any of these at the same time. For one run; it outlives that.
class UMBRIX_API RunControl {
public:
    RunControl() = default;
    RunControl(RunControl const&) = delete;
    RunControl& operator=(RunControl const&) = delete;

    /// Name of the stage that runs, with static storage; "" before the first.
    char const* stage() const { return stage_.load(std::memory_order_relaxed); }
    /// Progress of the stage, 0 to 1000.
    int permille() const;

    /// Asks the run to end early. It looks between its stages, between the parts of those that take long, and
    /// between the tiles of the occlusion, and returns with `Outcome::kStopped`, or with `kDone` if it was at
    /// its end. May be called from a signal handler, and before the run.
    void stop();
    /// Whether `stop` has been called.
    bool stopping() const { return stop_.load(std::memory_order_relaxed); }

    /// For the run: enters a stage, at 0 permille. @p stage has static storage.
    void enter(char const* stage);
    /// For the run: where a kernel writes its progress, 0 to 1000, and sees that it is to stop.
    int* kernel_progress() { return &progress_; }

private:
    std::atomic<char const*> stage_ = "";
    std::atomic<bool> stop_ = false;
    mutable int progress_ = 0; ///< Accessed atomically.
};

} // namespace umbrixlib
