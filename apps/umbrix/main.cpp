// SPDX-License-Identifier: MIT
#include "commands/command_line.h"
#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/standard_output.h"
#include "toolkit/base/stop.h"
#include "toolkit_names.h"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <new>
#include <string_view>
#include <system_error>

namespace umbrix_cli {

namespace {

/// fmt::print throws where the standard output takes no more, other ways of printing note it in the stream.
void run_and_print(Command& command, Interrupts const& interrupts)
{
    try {
        command.run(interrupts);
    } catch (std::system_error const&) {
        if (std::ferror(stdout) == 0) {
            throw;
        }
    }
    finish_standard_output();
}

int complain(std::string const& who, Complaint const& complaint)
{
    put_text(stderr, error_line(complaint, who));
    return complaint.code;
}

int run_command(Command& command, std::string const& name)
{
    Interrupts const interrupts;
    try {
        run_and_print(command, interrupts);
        return kDone;
    } catch (Complaint const& complaint) {
        return complain(name, complaint);
    } catch (Failure const& failure) {
        return complain(name, complaint_about(failure));
    } catch (std::filesystem::filesystem_error const& error) { // something has gone since it was looked at
        return complain(name,
                        {error.path1().string(), error.code().message(), "check that it is still there"});
    } catch (std::bad_alloc const&) {
        return complain(name, {"umbrix", "there is not enough memory", "raise the limit (ulimit -v)"});
    } catch (Stopped const& interrupted) {
        put_text(stderr, fmt::format("{}: interrupted; {}\n", name, interrupted.state));
        static_cast<void>(interrupts.take()); // a wish that was only looked at
        return kStoppedBySignal + interrupts.signal();
    }
}

int run_tool(int count, char** words)
{
    if (count == 2 && std::string_view(words[1]) == "--version") { // without the declarations of all commands
        put_text(stdout, fmt::format("{}\n", kVersion));
        return kDone;
    }
    CommandLine line;
    ParsedLine const parsed = line.parse({words + 1, words + count});
    if (parsed.command != nullptr) {
        return run_command(*parsed.command, parsed.name);
    }
    put_text(stdout, parsed.out);
    put_text(stderr, parsed.complaint);
    return parsed.code;
}

} // namespace

} // namespace umbrix_cli

int main(int count, char** words)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away must not end a run in the middle
    try {
        return umbrix_cli::run_tool(count, words);
    } catch (std::exception const& error) {
        umbrix_cli::put_text(
            stderr,
            fmt::format("umbrix: error: {}; this should not happen, please report it\n", error.what()));
        return umbrix_cli::kInputFailed;
    }
}
