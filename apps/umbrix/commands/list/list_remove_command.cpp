// SPDX-License-Identifier: MIT
#include "commands/list/list_remove_command.h"

#include "commands/list/lock_list.h"
#include "options/list_argument.h"
#include "terminal/say.h"
#include "toolkit/lists/list_file.h"

#include <functional>
#include <set>

namespace umbrix_cli {

void ListRemoveCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    command
        .add_option("INDEX", numbers_,
                    "Numbers of the jobs, as they are before any is removed; the first is 1")
        ->required()
        ->type_name("");
}

void ListRemoveCommand::run(Interrupts const& interrupts)
{
    ListLock const lock = lock_list(file_, "umbrix list remove", interrupts);
    umbrix_list list;
    read_list(file_, list);
    std::set<int, std::greater<>> indices;
    for (int const number : numbers_) {
        indices.insert(index_of_job(list, file_, number));
    }
    for (int const index : indices) { // from the last: the others keep their places
        list.remove_item(index);
    }
    write_list(list, file_, true);
    say("{}: {} removed, {} left", file_, count_of_jobs(static_cast<int>(indices.size())), list.get_size());
}

} // namespace umbrix_cli
