// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/run_control.h"

#include <string>

namespace umbrixlib::detail {

/// Where a run tells its stage and its progress, and asks whether to go on: the polled text and number of the
/// file functions, plain stores, or a control, or nothing.
class RunReport {
public:
    RunReport(std::string* status, int* progress) : status_(status), progress_(progress) {}
    explicit RunReport(RunControl* control) : control_(control) {}

    /// Shows @p stage, with static storage.
    void show(char const* stage)
    {
        if (status_ != nullptr) {
            *status_ = stage;
        } else if (control_ != nullptr) {
            control_->enter(stage);
        }
    }
    /// The same, and a progress of 0.
    void begin(char const* stage)
    {
        show(stage);
        if (progress_ != nullptr) {
            *progress_ = 0;
        }
    }

    /// For calls that take the text; null if there is none.
    std::string* status() const { return status_; }
    /// For calls that take the number; null if there is none.
    int* progress() const { return progress_; }
    /// Where a kernel that ends early on a negative value has its progress.
    int* kernel_progress() const { return control_ != nullptr ? control_->kernel_progress() : progress_; }

    bool can_stop() const { return control_ != nullptr; }
    bool stopping() const { return control_ != nullptr && control_->stopping(); }

private:
    std::string* status_ = nullptr;
    int* progress_ = nullptr;
    RunControl* control_ = nullptr;
};

} // namespace umbrixlib::detail
