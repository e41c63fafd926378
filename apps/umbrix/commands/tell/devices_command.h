// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

namespace umbrix_cli {

/// `umbrix devices`: what --gpu can run on.
class DevicesCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    bool json_ = false;
    bool verbose_ = false;
};

} // namespace umbrix_cli
