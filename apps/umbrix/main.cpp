// SPDX-License-Identifier: MIT
#include "commands/command_line.h"
#include "interrupts/interruptible_output.h"
#include "terminal/advice.h"
#include "terminal/say.h"
#include "terminal/standard_output.h"
#include "toolkit/base/stop.h"
#include "toolkit_names.h"

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <new>

namespace umbrix_cli {

namespace {

int complain(std::string const& who, Complaint const& complaint)
{
    put_line(stderr, error_line(complaint, who));
    return complaint.code;
}

int complain_of_memory(std::string const& name)
{
    return complain(name, {"umbrix", "there is not enough memory", "raise the limit (ulimit -v)"});
}

int run_command(Command& command, std::string const& name)
{
    Interrupts const interrupts;
    InterruptibleOutput const output(interrupts);
    try {
        command.run(interrupts);
        finish_standard_output();
        if (output.dropped()) {
            throw Stopped{"not all that it tells was read"};
        }
        return command.code();
    } catch (Complaint const& complaint) {
        return complain(name, complaint);
    } catch (Failure const& failure) {
        return complain(name, complaint_about(failure));
    } catch (std::filesystem::filesystem_error const& error) { // something has gone since it was looked at
        return complain(name,
                        {error.path1().string(), error.code().message(), "check that it is still there"});
    } catch (std::bad_alloc const&) {
        return complain_of_memory(name);
    } catch (Stopped const& interrupted) {
        put_line(stderr, fmt::format("{}: interrupted; {}", name, interrupted.state));
        static_cast<void>(interrupts.take()); // a wish that was only looked at
        return kStoppedBySignal + interrupts.signal();
    }
}

int run_tool(int count, char** words)
{
    CommandLine line;
    ParsedLine const parsed = line.parse({words + 1, words + count});
    if (parsed.command != nullptr) {
        return run_command(*parsed.command, parsed.name);
    }
    put_text(stdout, parsed.out);
    if (!parsed.complaint.empty()) {
        put_line(stderr, parsed.complaint);
    }
    return parsed.code;
}

} // namespace

} // namespace umbrix_cli

int main(int count, char** words)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away must not end a run in the middle
    try {
        return umbrix_cli::run_tool(count, words);
    } catch (std::bad_alloc const&) { // before a command was found
        return umbrix_cli::complain_of_memory("umbrix");
    } catch (std::exception const& error) {
        umbrix_cli::put_line(
            stderr, fmt::format("umbrix: error: {}; this should not happen, please report it", error.what()));
        return umbrix_cli::kInputFailed;
    }
}
