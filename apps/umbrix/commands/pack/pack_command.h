// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "options/common_options.h"
#include "options/profile_option.h"
#include "toolkit_names.h"

#include <string>
#include <vector>

namespace umbrix_cli {

/// `umbrix pack`: channels of several pictures in one.
class PackCommand : public Command {
public:
    void declare(CLI::App& command) override;
    void run(Interrupts const& interrupts) override;

private:
    PackJob job_of_words() const;
    void name_output(PackJob const& job);
    void check_files(PackJob const& job) const;

    CommonOptions common_;
    ProfileOption profile_;
    std::vector<std::string> words_; ///< R=rough.png and the like.
};

} // namespace umbrix_cli
