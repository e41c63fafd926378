// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/profile_option.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <optional>
#include <string>

namespace umbrix_cli {

/// `umbrix bent`: bent normals and the occlusion map of one channel from a height map.
class BentCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    CommonOptions common_;
    Settings settings_ = kDefaults;
    ProfileOption profile_;
    std::optional<NormalY> normal_y_;
    std::string occlusion_output_;
};

} // namespace umbrix_cli
