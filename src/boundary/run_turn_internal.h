// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/run_report_internal.h"

#include <mutex>

namespace umbrixlib::detail {

/// The turn of a run in memory among those of other threads. The kernels and the graphics library are called
/// by one thread at a time, and each run takes all processors.
class RunTurn {
public:
    /// Waits for it, unless @p report says to stop.
    explicit RunTurn(RunReport const& report);

    bool has_come() const { return lock_.owns_lock(); }

private:
    std::unique_lock<std::timed_mutex> lock_;
};

} // namespace umbrixlib::detail
