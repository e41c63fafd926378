// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/graphics_option.h"
#include "options/profile_option.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/reports.h"
#include "toolkit_names.h"

#include <optional>

namespace umbrix_cli {

/// `umbrix map`: an Umbrix map from a height map or a normal map.
class MapCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void validate() const;
    std::string relief_in_words() const;

    CommonOptions common_;
    Settings settings_ = kDefaults;
    ProfileOption profile_;
    std::optional<Kind> kind_;
    std::optional<NormalY> normal_y_;
    Graphics graphics_;
    bool compare_cpu_ = false;
};

} // namespace umbrix_cli
