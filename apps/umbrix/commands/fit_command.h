// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/reports.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix fit`: the relief at which a height map's normals come nearest to an existing normal map.
class FitCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void save(FitReport const& report) const;

    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::string normals_;
    bool fit_gaussian_ = false;
    bool json_ = false;
    std::string preset_output_; ///< Empty: none is written.
};

} // namespace umbrix_cli
