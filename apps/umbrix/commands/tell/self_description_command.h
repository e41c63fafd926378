// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"

#include <string>

namespace umbrix_cli {

/// `umbrix completion`: what a shell needs to complete the tool's command line.
class CompletionCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CLI::App const* tool_ = nullptr;
    std::string shell_;
};

/// `umbrix manual`: the tool's manual page, or that of a command, or all of them as files.
class ManualCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CLI::App const* tool_ = nullptr;
    std::string command_;
    std::string folder_;
};

} // namespace umbrix_cli
