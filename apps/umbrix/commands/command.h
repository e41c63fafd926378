// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "terminal/exit_codes.h"

#include <CLI/App.hpp>

namespace umbrix_cli {

/// A subcommand: its options, and what it does with them.
class Command {
public:
    Command() = default;
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    /// Adds itself to @p app and returns what was added.
    virtual CLI::App* declare(CLI::App& app) = 0;

    /// Does the work after parsing. Throws Failure, Complaint or Stopped.
    virtual void run(Interrupts const& interrupts) = 0;

    /// What the tool tells its caller if that went well.
    virtual ExitCode code() const { return kDone; }
};

} // namespace umbrix_cli
