// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/stop.h"
#include "toolkit_names.h"

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

private:
    int descriptor_;
};

} // namespace umbrix_cli
