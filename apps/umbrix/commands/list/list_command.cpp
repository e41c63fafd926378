// SPDX-License-Identifier: MIT
#include "commands/list/list_command.h"

#include "commands/list/list_add_command.h"
#include "commands/list/list_export_command.h"
#include "commands/list/list_import_command.h"
#include "commands/list/list_remove_command.h"
#include "commands/list/list_run_command.h"
#include "commands/list/list_set_command.h"
#include "commands/list/list_show_command.h"
#include "terminal/exit_codes.h"

namespace umbrix_cli {

namespace {

template <typename... Commands>
std::vector<std::unique_ptr<Command>> make_all()
{
    std::vector<std::unique_ptr<Command>> all;
    (all.push_back(std::make_unique<Commands>()), ...);
    return all;
}

} // namespace

CLI::App* ListCommand::declare(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("list", "Keep a work list: jobs for many files, in a file of their own");
    command->require_subcommand(1, 1);
    for (auto& each : make_all<ListShowCommand, ListAddCommand, ListRemoveCommand, ListSetCommand,
                               ListRunCommand, ListExportCommand, ListImportCommand>()) {
        CLI::App* const action = each->declare(*command);
        action->footer(kExitCodesHelp);
        actions_.push_back({action, std::move(each)});
    }
    return command;
}

void ListCommand::run(Interrupts const& interrupts)
{
    for (Action const& action : actions_) {
        if (action.app->parsed()) {
            action.command->run(interrupts);
        }
    }
}

} // namespace umbrix_cli
