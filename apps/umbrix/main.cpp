// SPDX-License-Identifier: MIT
#include "batch_command.h"
#include "devices_command.h"
#include "failure.h"
#include "fit_command.h"
#include "graphics_option.h"
#include "help_formatter.h"
#include "info_command.h"
#include "list_command.h"
#include "map_command.h"
#include "normal_command.h"
#include "preset_command.h"
#include "put_text.h"
#include "relight_command.h"
#include "self_description_command.h"
#include "stack_command.h"
#include "worker_process.h"

#include <algorithm>
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
    put_text(stderr,
             fmt::format("{}: error: {}: {}; {}\n", who, failure.subject, failure.what(), failure.advice));
    return failure.code;
}

/// "umbrix map" or "umbrix list add" as soon as the command line names the command.
std::string full_name(CLI::App& app, int count, char** words)
{
    std::string name = app.get_name();
    CLI::App* at = &app;
    for (int i = 1; i < count; ++i) {
        auto const named = at->get_subcommands([&](CLI::App* each) { return each->get_name() == words[i]; });
        if (named.empty()) {
            break;
        }
        at = named.front();
        name += " " + at->get_name();
    }
    return name;
}

int run_command(Declared const& declared, std::string const& name)
{
    Interrupts const interrupts;
    try {
        declared.command->run(interrupts);
        return kDone;
    } catch (Failure const& failure) {
        return complain(name, failure);
    } catch (Interrupted const& interrupted) {
        put_text(stderr, fmt::format("{}: interrupted; {}\n", name, interrupted.state));
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
        declare_all<MapCommand, NormalCommand, StackCommand, RelightCommand, BatchCommand, ListCommand,
                    InfoCommand, FitCommand, PresetCommand, DevicesCommand, CompletionCommand, ManualCommand>(
            app);
    std::string const name = full_name(app, count, words);
    try {
        std::vector<std::string> arguments = with_device_numbers({words + 1, words + count});
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
        app.parse(std::move(arguments));
    } catch (CLI::Success const& asked) {
        return app.exit(asked);
    } catch (CLI::ParseError const& error) {
        put_text(stderr, fmt::format("{}: error: {}; see {} --help\n", name, error.what(), name));
        return kWrongUsage;
    } catch (Failure const& failure) { // a preset is read while the command line is
        return complain(name, failure);
    }
    for (Declared const& each : commands) {
        if (each.app->parsed()) {
            return run_command(each, name);
        }
    }
    put_text(stderr, "umbrix: error: no command is given; see umbrix --help\n");
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
        umbrix_cli::put_text(
            stderr,
            fmt::format("umbrix: error: {}; this should not happen, please report it\n", error.what()));
        return umbrix_cli::kInputFailed;
    }
}
