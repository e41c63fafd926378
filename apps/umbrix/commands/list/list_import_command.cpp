// SPDX-License-Identifier: MIT
#include "commands/list/list_import_command.h"

#include "commands/list/lock_list.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/files/preflight.h"
#include "toolkit/lists/list_file.h"
#include "toolkit/lists/list_toml.h"

namespace umbrix_cli {

namespace fs = std::filesystem;

void ListImportCommand::declare(CLI::App& command)
{
    command.add_option("INPUT", input_, "File as umbrix list export writes it")->required()->type_name("");
    command
        .add_option("-o,--output", output_, "Work list to write [default INPUT with the extension .ulist]")
        ->type_name("FILE");
    command.add_flag("--overwrite", overwrite_, "Replace the output if it exists");
}

void ListImportCommand::run(Interrupts const& interrupts)
{
    check_input(input_, "an exported list");
    std::error_code error;
    fs::path const output =
        output_.empty() ? fs::path(input_).replace_extension(".ulist") : fs::path(output_);
    if (fs::equivalent(output, input_, error)) {
        throw UsageError(output.string(), "it is the input, which would be lost",
                         "give another name with -o");
    }
    ListLock const lock = lock_list(output, "umbrix list import", interrupts);
    umbrix_list list;
    read_toml(input_, list);
    write_list(list, output, overwrite_);
    say("wrote {}: {}", output.string(), count_of_jobs(list.get_size()));
}

} // namespace umbrix_cli
