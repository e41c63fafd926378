// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

namespace umbrix_cli {

/// `umbrix convert`: a picture in another format or at another depth.
class ConvertCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CLI::App* command_ = nullptr;
    CommonOptions common_;
    Settings settings_ = kDefaults; ///< How colours are read.
};

} // namespace umbrix_cli
