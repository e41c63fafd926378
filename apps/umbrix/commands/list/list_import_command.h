// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <string>

namespace umbrix_cli {

/// `umbrix list import`: a list from the TOML of an export.
class ListImportCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    std::string input_;
    std::string output_;
    bool overwrite_ = false;
};

} // namespace umbrix_cli
