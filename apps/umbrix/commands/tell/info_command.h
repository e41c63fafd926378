// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"

namespace umbrix_cli {

/// `umbrix info`: what is in a picture, and what `umbrix map` would take it for.
class InfoCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    bool json_ = false;
    bool range_ = false;
};

} // namespace umbrix_cli
