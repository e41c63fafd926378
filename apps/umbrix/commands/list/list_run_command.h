// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/graphics_option.h"
#include "options/results_option.h"
#include "options/workers_option.h"
#include "toolkit/lists/list_log.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix list run`: does the jobs of a list.
class ListRunCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    std::string file_;
    Shard shard_;
    WorkersOption workers_;
    Graphics graphics_;
    Settings settings_ = kDefaults; ///< How heights are read; the jobs have the others.
    bool recurse_ = false;
    bool dry_run_ = false;
    ResultsForm form_ = ResultsForm::kRows;
};

} // namespace umbrix_cli
