// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "commands/list/list_job_options.h"

#include <string>
#include <vector>

namespace umbrix_cli {

/// `umbrix list add`: jobs for files and folders at the end of a list, which is made if it is not there.
class ListAddCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    struct NewJob;
    NewJob job_for(std::string const& source, Interrupts const& interrupts) const;
    std::string pattern_for(std::string const& source) const;

    std::string file_;
    std::vector<std::string> sources_;
    JobOptions options_;
};

} // namespace umbrix_cli
