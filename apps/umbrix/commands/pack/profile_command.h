// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/profile_option.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// `umbrix profile`: shows, writes and lists profiles.
class ProfileCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    void show() const;
    void save() const;
    void list() const;

    CLI::App* show_ = nullptr;
    CLI::App* save_ = nullptr;
    CLI::App* list_ = nullptr;

    std::string name_; ///< To be shown, or the file to be written.
    ProfileOption source_;
    bool json_ = false;
    bool overwrite_ = false;
};

} // namespace umbrix_cli
