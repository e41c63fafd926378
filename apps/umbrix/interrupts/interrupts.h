// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/stop.h"
#include "toolkit_names.h"

#include <csignal>

namespace umbrix_cli {

/// Collects Ctrl-C, a request to end and a closed terminal instead of dying from them, so that nothing
/// temporary is left behind. Signals that the process was started without (`nohup`) stay ignored. Children
/// inherit the blocked signals and so outlive a Ctrl-C until their parent ends them. One object, for the life
/// of the program.
class Interrupts : public umbrixlib::toolkit::Stop {
public:
    Interrupts();
    ~Interrupts() override;

    int descriptor() const override { return descriptor_; }
    bool take() const override;

    /// Whether there is a signal, or was one that has been taken.
    bool asked() const;

    /// The last signal that was taken; SIGINT if there was none.
    int signal() const { return signal_; }

private:
    int descriptor_;
    mutable int signal_ = SIGINT;
    mutable bool taken_ = false;
};

} // namespace umbrix_cli
