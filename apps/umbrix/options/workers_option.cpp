// SPDX-License-Identifier: MIT
#include "options/workers_option.h"

#include "options/common_options.h"
#include "options/setting_options.h"
#include "toolkit/base/whole.h"
#include "toolkit/workers/processor_share.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>
#include <functional>

namespace umbrix_cli {

std::size_t WorkersOption::count() const
{
    return given > 0 ? static_cast<std::size_t>(given) : default_workers();
}

void declare_workers(CLI::App& command, WorkersOption& workers)
{
    constexpr double kMost = 1024;
    std::function<void(std::string const&)> const parse = [&workers](std::string const& text) {
        workers.given = parse_number("--jobs", text, 1, kMost);
        if (!is_whole(workers.given)) {
            throw CLI::ValidationError("--jobs", fmt::format("{} is not a whole number", text));
        }
    };
    command
        .add_option_function<std::string>("-j,--jobs", parse,
                                          fmt::format("Files at a time, which share the processors [1 to {}; "
                                                      "default one for each processor and 2 GiB of memory]",
                                                      kMost))
        ->type_name("N")
        ->group(kRunGroup);
    command
        .add_flag(
            "--isolate", workers.isolate,
            "Work on each file in a process of its own [default: up to 256 files, one after the other, in "
            "each process]")
        ->group(kRunGroup);
}

} // namespace umbrix_cli
