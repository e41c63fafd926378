// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix horizon`: the horizons in eight directions from a height map.
class HorizonCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::string later_output_;
};

} // namespace umbrix_cli
