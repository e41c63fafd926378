// SPDX-License-Identifier: MIT
#include "foundation/run_control.h"

#include "common/stop_request.h"

#include <algorithm>

namespace umbrixlib {

int RunControl::permille() const
{
    return std::clamp(std::atomic_ref(progress_).load(std::memory_order_relaxed), 0, 1000);
}

void RunControl::stop()
{
    stop_.store(true, std::memory_order_relaxed);
    std::atomic_ref(progress_).store(detail::kStopRequest, std::memory_order_relaxed);
}

void RunControl::enter(char const* stage)
{
    stage_.store(stage, std::memory_order_relaxed);
    detail::store_progress(progress_, 0);
}

} // namespace umbrixlib
