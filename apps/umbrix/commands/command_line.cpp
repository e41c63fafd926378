// SPDX-License-Identifier: MIT
#include "commands/command_line.h"

#include "commands/batch_command.h"
#include "commands/devices_command.h"
#include "commands/fit_command.h"
#include "commands/info_command.h"
#include "commands/list/list_command.h"
#include "commands/map_command.h"
#include "commands/normal_command.h"
#include "commands/preset_command.h"
#include "commands/relight_command.h"
#include "commands/self_description_command.h"
#include "commands/stack_command.h"
#include "options/describe/help_formatter.h"
#include "options/graphics_option.h"
#include "terminal/advice.h"
#include "toolkit/base/utf8.h"

#include <algorithm>
#include <fmt/format.h>
#include <sstream>
#include <utility>

namespace umbrix_cli {

namespace {

ParsedLine refusal(std::string const& command, Complaint const& complaint)
{
    ParsedLine parsed;
    parsed.name = command;
    parsed.complaint = error_line(complaint, command);
    parsed.code = complaint.code;
    return parsed;
}

} // namespace

template <typename... Commands>
void CommandLine::declare_all()
{
    auto const add = [&](std::unique_ptr<Command> command) {
        CLI::App* const added = command->declare(app_);
        added->footer(kExitCodesHelp);
        commands_.push_back({added, std::move(command)});
    };
    (add(std::make_unique<Commands>()), ...);
}

CommandLine::CommandLine()
    : app_("Makes tangent-space normal maps and Umbrix maps from height maps and normal maps.", "umbrix")
{
    app_.formatter(std::make_shared<HelpFormatter>());
    app_.set_version_flag("--version", kVersion, "Print the version");
    app_.footer(kExitCodesHelp);
    app_.require_subcommand(0, 1);
    declare_all<MapCommand, NormalCommand, StackCommand, RelightCommand, BatchCommand, ListCommand,
                InfoCommand, FitCommand, PresetCommand, DevicesCommand, CompletionCommand, ManualCommand>();
}

/// "umbrix map" or "umbrix list add" as soon as the words name the command.
std::string CommandLine::full_name(std::vector<std::string> const& words)
{
    std::string name = app_.get_name();
    CLI::App* at = &app_;
    for (std::string const& word : words) {
        auto const named = at->get_subcommands([&](CLI::App* each) { return each->get_name() == word; });
        if (named.empty()) {
            break;
        }
        at = named.front();
        name += " " + at->get_name();
    }
    return name;
}

ParsedLine CommandLine::parse(std::vector<std::string> const& words)
{
    ParsedLine parsed;
    parsed.name = full_name(words);
    try {
        std::vector<std::string> arguments = with_device_numbers(words);
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
        app_.parse(std::move(arguments));
    } catch (CLI::Success const& success) {
        std::ostringstream out;
        parsed.code = app_.exit(success, out, out);
        parsed.out = out.str();
        return parsed;
    } catch (CLI::ParseError const& error) {
        parsed.complaint =
            printable(fmt::format("{0}: error: {1}; see {0} --help", parsed.name, error.what())) + "\n";
        parsed.code = kWrongUsage;
        return parsed;
    } catch (Failure const& failure) { // a preset is read while the command line is
        return refusal(parsed.name, complaint_about(failure));
    } catch (Complaint const& complaint) {
        return refusal(parsed.name, complaint);
    }
    for (Declared const& each : commands_) {
        if (each.app->parsed()) {
            parsed.command = each.command.get();
            return parsed;
        }
    }
    parsed.complaint = "umbrix: error: no command is given; see umbrix --help\n";
    parsed.code = kWrongUsage;
    return parsed;
}

} // namespace umbrix_cli
