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

constexpr CommandRow kActions[] = {
    {"show", "Show the jobs: what each makes of which source, and the options that matter most",
     make_command<ListShowCommand>},
    {"add", "Add jobs to a list, one for each source; a list that is not there is made",
     make_command<ListAddCommand>},
    {"remove", "Take jobs out of a list", make_command<ListRemoveCommand>},
    {"set", "Change options of a job; those that are not named stay, whatever the defaults",
     make_command<ListSetCommand>},
    {"run", "Make the Umbrix maps of all jobs, beside their sources, and keep a log beside the list",
     make_command<ListRunCommand>},
    {"export", "Write a list as TOML, to be read, edited and imported again",
     make_command<ListExportCommand>},
    {"import", "Make a list of the TOML of an export", make_command<ListImportCommand>},
};

} // namespace

void ListCommand::declare(CLI::App& command)
{
    command.require_subcommand(1, 1);
    for (CommandRow const& row : kActions) {
        Action const& added =
            actions_.emplace_back(Action{command.add_subcommand(row.name, row.description), row.make()});
        added.command->declare(*added.app);
        added.app->footer(kExitCodesHelp);
    }
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
