// SPDX-License-Identifier: MIT
#include "failure.h"
#include "fit_command.h"
#include "help_formatter.h"
#include "info_command.h"
#include "map_command.h"
#include "normal_command.h"
#include "preset_command.h"
#include "relight_command.h"
#include "stack_command.h"
#include "worker_process.h"

#include <cstring>
#include <fmt/format.h>
#include <memory>
#include <utility>
#include <vector>

namespace umbrix_cli {

namespace {

struct Declared {
    CLI::App* app;
    std::unique_ptr<Command> command;
};

template <typename... Commands>
std::vector<Declared> declare_all(CLI::App& app)
{
    std::vector<Declared> all;
    auto const add = [&](std::unique_ptr<Command> command) {
        CLI::App* const added = command->declare(app);
        added->footer(kExitCodesHelp);
        all.push_back({added, std::move(command)});
    };
    (add(std::make_unique<Commands>()), ...);
    return all;
}

int complain(std::string const& who, Failure const& failure)
{
    fmt::print(stderr, "{}: error: {}: {}; {}\n", who, failure.subject, failure.what(), failure.advice);
    return failure.code;
}

/// "umbrix map" as soon as the command line names the command.
std::string full_name(std::vector<Declared> const& commands, int count, char** words)
{
    for (Declared const& each : commands) {
        if (count > 1 && each.app->get_name() == words[1]) {
            return "umbrix " + each.app->get_name();
        }
    }
    return "umbrix";
}

int run_command(Declared const& declared, std::string const& name)
{
    Interrupts const interrupts;
    try {
        declared.command->run(interrupts);
        return kDone;
    } catch (Failure const& failure) {
        return complain(name, failure);
    } catch (Interrupted const&) {
        fmt::print(stderr, "{}: interrupted; nothing was written\n", name);
        return kInterrupted;
    }
}

int run_tool(int count, char** words)
{
    CLI::App app("Makes tangent-space normal maps and Umbrix maps from height maps and normal maps.",
                 "umbrix");
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_version_flag("--version", "umbrix " UMBRIX_VERSION, "Print the version");
    app.footer(kExitCodesHelp);
    app.require_subcommand(0, 1);
    std::vector<Declared> const commands =
        declare_all<MapCommand, NormalCommand, StackCommand, RelightCommand, InfoCommand, FitCommand,
                    PresetCommand>(app);
    std::string const name = full_name(commands, count, words);
    try {
        app.parse(count, words);
    } catch (CLI::Success const& asked) {
        return app.exit(asked);
    } catch (CLI::ParseError const& error) {
        fmt::print(stderr, "{}: error: {}; see {} --help\n", name, error.what(), name);
        return kWrongUsage;
    } catch (Failure const& failure) { // a preset is read while the command line is
        return complain(name, failure);
    }
    for (Declared const& each : commands) {
        if (each.app->parsed()) {
            return run_command(each, name);
        }
    }
    fmt::print(stderr, "umbrix: error: no command is given; see umbrix --help\n");
    return kWrongUsage;
}

} // namespace

} // namespace umbrix_cli

int main(int count, char** words)
{
    try {
        if (count == 3 && std::strcmp(words[1], umbrix_cli::kWorkerArgument) == 0) {
            return umbrix_cli::run_worker(words[2]);
        }
        return umbrix_cli::run_tool(count, words);
    } catch (std::exception const& error) {
        fmt::print(stderr, "umbrix: error: {}; this should not happen, please report it\n", error.what());
        return umbrix_cli::kInputFailed;
    }
}
