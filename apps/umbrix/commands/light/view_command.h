// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix view`: a web page with a map in it, for those who have not got the tool.
class ViewCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::string albedo_;
    std::string title_;
    bool force_ = false;
    CLI::App const* command_ = nullptr;
};

} // namespace umbrix_cli
