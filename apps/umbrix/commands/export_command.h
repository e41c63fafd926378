// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"
#include "toolkit_names.h"

#include <optional>

namespace umbrix_cli {

/// `umbrix export`: a texture file for engines, with mipmaps.
class ExportCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void declare_format();

    CLI::App* command_ = nullptr;
    CommonOptions common_;
    std::optional<PictureKind> kind_;
    std::optional<TextureFormat> format_;
    int levels_ = kAllLevels;
    Settings settings_ = kDefaults; ///< How colours are read.
};

} // namespace umbrix_cli
