// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "toolkit/settings/defaults.h"

#include <optional>
#include <string>
#include <vector>

namespace umbrix_cli {

/// `umbrix check`: whether normal maps, height maps and Umbrix maps are sound.
class CheckCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;
    ExitCode code() const override { return code_; }

private:
    void declare_fix(CLI::App& command);
    void validate() const;
    CheckJob job() const;
    CheckReport check(std::string const& file, JobDisplay& display, Interrupts const& interrupts);
    void tell(std::string const& file, CheckReport const& report) const;

    CommonOptions common_;
    Settings settings_ = kDefaults;
    std::vector<std::string> files_;
    std::optional<PictureKind> kind_;
    std::optional<NormalY> normal_y_;
    CLI::Option* mode_ = nullptr;
    bool fix_ = false;
    bool json_ = false;
    std::string written_; ///< The mended copy of the last file; empty if there is none.
    ExitCode code_ = kDone;
};

} // namespace umbrix_cli
