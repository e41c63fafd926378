// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <string>

namespace umbrix_cli {

/// `umbrix list show`: the jobs of a list as a table, or all there is to them as JSON.
class ListShowCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    std::string file_;
    bool json_ = false;
    bool print0_ = false;
};

} // namespace umbrix_cli
