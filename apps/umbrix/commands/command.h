// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "terminal/exit_codes.h"

#include <CLI/App.hpp>
#include <memory>

namespace umbrix_cli {

/// A subcommand: its options, and what it does with them.
class Command {
public:
    Command() = default;
    virtual ~Command() = default;
    Command(Command const&) = delete;
    Command& operator=(Command const&) = delete;

    /// Adds its options to @p command, which has its name already.
    virtual void declare(CLI::App& command) = 0;

    /// Does the work after parsing. Throws Failure, Complaint or Stopped.
    virtual void run(Interrupts const& interrupts) = 0;

    /// What the tool tells its caller if that went well.
    virtual ExitCode code() const { return kDone; }
};

/// What a list of commands tells of one, and how it is made.
struct CommandRow {
    char const* name;
    char const* description;
    std::unique_ptr<Command> (*make)();
};

template <typename One>
std::unique_ptr<Command> make_command()
{
    return std::make_unique<One>();
}

} // namespace umbrix_cli
