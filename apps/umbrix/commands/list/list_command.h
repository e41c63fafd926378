// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <memory>
#include <vector>

namespace umbrix_cli {

/// `umbrix list`: what can be done with a work list, each a subcommand of its own.
class ListCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    struct Action {
        CLI::App* app;
        std::unique_ptr<Command> command;
    };
    std::vector<Action> actions_;
};

} // namespace umbrix_cli
