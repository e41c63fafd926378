// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <string>

namespace umbrix_cli {

/// `umbrix list export`: a list as TOML, with nothing lost.
class ListExportCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    std::string file_;
    std::string output_;
    bool overwrite_ = false;
};

} // namespace umbrix_cli
