// SPDX-License-Identifier: MIT
#include "commands/list/list_export_command.h"

#include "options/list_argument.h"
#include "terminal/complaint.h"
#include "terminal/say.h"
#include "toolkit/files/text_file.h"
#include "toolkit/lists/list_file.h"
#include "toolkit/lists/list_toml.h"

#include <fmt/format.h>

namespace umbrix_cli {

void ListExportCommand::declare(CLI::App& command)
{
    declare_list(command, file_);
    command.add_option("-o,--output", output_, "File to write [default: standard output]")->type_name("FILE");
    command.add_flag("--overwrite", overwrite_, "Replace the output if it exists");
}

void ListExportCommand::run(Interrupts const& /*interrupts*/)
{
    umbrix_list list;
    read_list(file_, list);
    std::string const text = to_toml(list);
    if (output_.empty()) {
        put_text(stdout, is_terminal(stdout) ? printable_lines(text) : text);
        return;
    }
    std::error_code error;
    if (std::filesystem::equivalent(output_, file_, error)) {
        throw UsageError(output_, "it is the list, which would be lost", "give another name with -o");
    }
    write_text_file(output_, text, overwrite_);
    say("wrote {}: {} of {}", output_, count_of_jobs(list.get_size()), file_);
}

} // namespace umbrix_cli
