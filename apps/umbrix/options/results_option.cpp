// SPDX-License-Identifier: MIT
#include "options/results_option.h"

#include "options/common_options.h"

namespace umbrix_cli {

void declare_results_form(CLI::App& command, ResultsForm& form)
{
    auto* const json = command.add_flag_callback(
        "--json", [&form] { form = ResultsForm::kJson; },
        "Write a JSON object a line for each file as it ends, and one in the end");
    auto* const names = command.add_flag_callback(
        "--print0", [&form] { form = ResultsForm::kNames; },
        "Write the names of each input and its output alone, each with a zero byte behind it, as the output "
        "is there; with --dry-run what would be made");
    json->excludes(names)->group(kRunGroup);
    names->group(kRunGroup);
}

} // namespace umbrix_cli
