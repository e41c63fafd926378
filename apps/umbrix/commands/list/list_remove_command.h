// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <string>
#include <vector>

namespace umbrix_cli {

/// `umbrix list remove`: jobs taken out of a list.
class ListRemoveCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    std::string file_;
    std::vector<int> numbers_;
};

} // namespace umbrix_cli
