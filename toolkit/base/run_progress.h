// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// How far a run is that consists of equal pieces, as its control tells others. Any number of threads.
class RunProgress {
public:
    /// @param control Null for none.
    RunProgress(RunControl* control, std::size_t pieces) : control_(control), pieces_(pieces) {}

    bool stopping() const { return control_ != nullptr && control_->stopping(); }

    void add_piece()
    {
        if (control_ != nullptr) {
            auto const permille = static_cast<int>(1000 * ++done_ / pieces_);
            std::atomic_ref(*control_->kernel_progress()).store(permille, std::memory_order_relaxed);
        }
    }

private:
    RunControl* control_;
    std::size_t pieces_;
    std::atomic<std::size_t> done_ = 0;
};

} // namespace umbrixlib::toolkit
