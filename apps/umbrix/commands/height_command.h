// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/profile_option.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <optional>

namespace umbrix_cli {

/// `umbrix height`: a height map from a normal map.
class HeightCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    Settings settings_ = kDefaults;
    ProfileOption profile_;
    std::optional<NormalY> normal_y_;
    CLI::Option* range_ = nullptr;
};

} // namespace umbrix_cli
