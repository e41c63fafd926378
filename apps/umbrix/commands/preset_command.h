// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "toolkit/settings/preset.h"
#include "toolkit_names.h"

#include <optional>
#include <string>

namespace umbrix_cli {

/// `umbrix preset`: shows, writes and lists presets.
class PresetCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void declare_show(CLI::App& command);
    void declare_save(CLI::App& command);
    void declare_list(CLI::App& command);
    void show() const;
    void save();
    void list() const;

    CLI::App* show_ = nullptr;
    CLI::App* save_ = nullptr;
    CLI::App* list_ = nullptr;

    std::string name_; ///< To be shown, or the file to be written.
    bool json_ = false;

    Settings settings_ = kDefaults;
    std::string description_;
    std::optional<Kind> kind_;
    std::optional<NormalY> normal_y_;
    bool overwrite_ = false;
};

} // namespace umbrix_cli
