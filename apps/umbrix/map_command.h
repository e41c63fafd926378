// SPDX-License-Identifier: MIT
#pragma once

#include "command.h"
#include "common_options.h"
#include "defaults.h"

#include <optional>

namespace umbrix_cli {

/// `umbrix map`: an Umbrix map from a height map or a normal map.
class MapCommand : public Command {
public:
    CLI::App* declare(CLI::App& app) override;
    void run(Interrupts const& interrupts) override;

private:
    void validate() const;

    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::optional<Kind> kind_;
    std::optional<NormalY> normal_y_;
};

} // namespace umbrix_cli
