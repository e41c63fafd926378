// SPDX-License-Identifier: MIT
#include "command_line.h"
#include "failure.h"
#include "put_text.h"
#include "worker_process.h"

#include <cstring>
#include <fmt/format.h>

namespace umbrix_cli {

namespace {

int run_command(Command& command, std::string const& name)
{
    Interrupts const interrupts;
    try {
        command.run(interrupts);
        return kDone;
    } catch (Failure const& failure) {
        put_text(stderr, complaint_about(failure, name));
        return failure.code;
    } catch (Interrupted const& interrupted) {
        put_text(stderr, fmt::format("{}: interrupted; {}\n", name, interrupted.state));
        return kInterrupted;
    }
}

int run_tool(int count, char** words)
{
    CommandLine line;
    Asked const asked = line.parse({words + 1, words + count});
    if (asked.command != nullptr) {
        return run_command(*asked.command, asked.name);
    }
    put_text(stdout, asked.out);
    put_text(stderr, asked.complaint);
    return asked.code;
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
