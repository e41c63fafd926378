// SPDX-License-Identifier: MIT
#pragma once

#include "commands/command.h"
#include "terminal/exit_codes.h"
#include "toolkit/base/failure.h"
#include "toolkit_names.h"

#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace umbrix_cli {

/// What a command line asks for: that a command be run, or, without one, that a text be shown.
struct ParsedLine {
    std::string name;           ///< "umbrix list add": what begins messages.
    Command* command = nullptr; ///< Of the command line that was parsed.
    std::string out;            ///< For the standard output: help, the version.
    std::string complaint;      ///< For the standard error, one line.
    int code = kDone;           ///< What to end with if there is no command.
};

/// What --version prints.
inline constexpr char const* kVersion = "umbrix " UMBRIX_VERSION;

/// The commands of the tool and their options, which are declared as soon as a command line names the
/// command: all of them would take longer than a small command itself.
class CommandLine {
public:
    CommandLine();

    /// Parses the words behind the program's own name. No file is read but one that --preset names. In
    /// another call options that are not given keep what they were set to.
    ParsedLine parse(std::vector<std::string> const& typed);

    /// With the options of the commands that were named so far; of all after one that describes the tool.
    CLI::App const& app() const { return app_; }

private:
    struct Known {
        CLI::App* app;
        CommandRow const* row;
        std::unique_ptr<Command> command; ///< Null before its options are declared.
    };

    void declare_those_in(std::vector<std::string> const& words);
    struct Named {
        CLI::App* app;
        std::string name; ///< "umbrix list add".
    };
    static std::optional<std::string> unknown_command(std::vector<std::string> const& words,
                                                      Named const& named);
    Named command_named_in(std::vector<std::string> const& words);
    std::string what_is_wrong(std::vector<std::string> const& words, Named const& named,
                              std::string const& parser_says) const;

    CLI::App app_;
    std::vector<Known> commands_;
};

} // namespace umbrix_cli
