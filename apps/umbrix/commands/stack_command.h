// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/graphics_option.h"
#include "toolkit/batch/stack_target.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <string>
#include <vector>

namespace umbrix_cli {

/// `umbrix stack`: a normal map, a height map and an Umbrix map from layers that a TOML file describes.
class StackCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void validate() const;
    void write_example() const;
    std::vector<StackTarget> targets_for(StackDescription const& description) const;

    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::string height_output_; ///< Empty: not wanted.
    std::string map_output_;    ///< Empty: not wanted.
    bool map_from_layers_ = false;
    bool new_ = false;
    Graphics graphics_;
};

} // namespace umbrix_cli
