// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "commands/list/list_job_options.h"

#include <string>

namespace umbrix_cli {

/// `umbrix list set`: other options for a job; what is not named stays.
class ListSetCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void change_numbers(umbrix_node& job, Interrupts const& interrupts) const;
    void change_layers(umbrix_node& job, Interrupts const& interrupts) const;

    std::string file_;
    int number_ = 0;
    JobOptions options_;
    bool no_layers_ = false;
};

} // namespace umbrix_cli
