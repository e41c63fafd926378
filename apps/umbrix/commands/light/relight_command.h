// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix relight`: shows what a map is for, a lit picture of the texture for any direction of the light.
class RelightCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void settle_animation();

    CommonOptions common_;
    Settings settings_ = kDefaults;
    double azimuth_degrees_ = 135;
    double elevation_degrees_ = 45;
    double exposure_ = 0.7;
    double ambient_ = 0;
    double seconds_ = 0;
    WeightRule weights_ = WeightRule::kFitted;
    std::string albedo_;
    int directions_ = 0;
    int cell_ = 256;
    bool force_ = false;
    CLI::App const* command_ = nullptr;
};

} // namespace umbrix_cli
