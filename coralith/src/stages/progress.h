// SPDX-License-Identifier: MIT
#pragma once

#include "common/stop_request.h"

#include <algorithm>

namespace coralith {

/// The share of finished work in thousandths, written where a front end polls it. Never goes back, not even
/// when the work starts again on another device.
class Progress {
public:
    /// @param target May be null.
    explicit Progress(int* target) : target_(target) { write(0); }

    void reached(double done, double all)
    {
        int const share = static_cast<int>(std::clamp(done / all, 0.0, 1.0) * kWhole);
        if (share > shown_) {
            write(share);
        }
    }
    void finish() { write(kWhole); }

    /// Whether the rest of the work is to be left: a front end asks for that in the place of its progress.
    bool is_stopped() const { return target_ != nullptr && umbrixlib::detail::is_stop_requested(*target_); }

private:
    static constexpr int kWhole = 1000;

    void write(int value)
    {
        shown_ = value;
        if (target_ != nullptr) {
            umbrixlib::detail::store_progress(*target_, value);
        }
    }

    int* target_;
    int shown_ = 0;
};

} // namespace coralith
