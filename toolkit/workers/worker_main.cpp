// SPDX-License-Identifier: MIT
/// @file
/// The program umbrix-worker: takes jobs from its standard input, does them, says how each went.
#include "toolkit/base/give_up.h"
#include "toolkit/base/stop.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/tasks/tasks.h"
#include "toolkit/workers/crossing_internal.h"
#include "toolkit/workers/sandbox/sandbox_internal.h"
#include "toolkit/workers/worker_channel.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/prctl.h>
#include <system_error>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

/// The worker is of no use without its parent, which would remove what the worker leaves.
void end_with_parent(char const* parent)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (std::to_string(getppid()) != parent) {
        _exit(EXIT_FAILURE);
    }
}

/// Worded in advance: without memory nothing can be.
std::string no_memory_event;

/// For operator new. In a parallel region there is nobody to catch an exception.
[[noreturn]] void tell_of_too_little_memory()
{
    static_cast<void>(!write(kEventDescriptor, no_memory_event.data(), no_memory_event.size()));
    _exit(EXIT_FAILURE);
}

void tell(Failure const& failure)
{
    WorkerChannel().send(failure);
}

int serve(Rights rights, Service service)
{
    std::signal(SIGXFSZ, SIG_IGN); // a limit on file sizes then reads as a full disk
    std::signal(SIGPIPE, SIG_IGN); // the parent may have gone
    no_memory_event = pack(Event(Failure(Fault::kNoMemory, "", "there is not enough memory to work on it")));
    std::set_new_handler(tell_of_too_little_memory);
    set_last_words(tell);
    WorkerChannel channel;
    try {
        std::optional<Job> job = channel.read_job();
        if (job) {
            enter_sandbox(*job, rights, service);
        }
        while (job) {
            Report const report = run(*job, channel);
            std::fflush(nullptr); // what libraries print belongs to this job
            close_opened_files();
            channel.send(report);
            job = service == Service::kManyJobs ? channel.read_job() : std::nullopt;
        }
        return EXIT_SUCCESS;
    } catch (Failure const& failure) {
        channel.send(failure);
    } catch (std::bad_alloc const&) { // of a size beyond all memory
        tell_of_too_little_memory();
    } catch (std::system_error const& error) { // of a thread that could not be started
        channel.send(Failure(Fault::kNoThread, "", std::string("it is not worked on: ") + error.what()));
    } catch (Stopped const&) { // whoever wished it waits for no report
    } catch (std::exception const& error) {
        channel.send(Failure(Fault::kNotWorkedOn, "", error.what()));
    }
    // Without a clean end: after a failed load DevIL's own would crash.
    _exit(EXIT_FAILURE);
}

} // namespace

} // namespace umbrixlib::toolkit

/// Three words: the process that the worker belongs to, and the names of its Rights and its Service.
int main(int count, char** words)
{
    using umbrixlib::toolkit::kRightsNames;
    using umbrixlib::toolkit::kServiceNames;
    constexpr int kWords = 4;
    auto const place_of = [&](std::span<char const* const> names, int word) {
        return count == kWords ? std::ranges::find(names, std::string_view(words[word])) - names.begin()
                               : std::ssize(names);
    };
    auto const rights = place_of(kRightsNames, 2);
    auto const service = place_of(kServiceNames, 3);
    if (rights == std::ssize(kRightsNames) || service == std::ssize(kServiceNames)) {
        constexpr std::string_view kWhatItIs =
            "umbrix-worker: UmbrixLib starts it by itself to work on pictures\n";
        static_cast<void>(!write(STDERR_FILENO, kWhatItIs.data(), kWhatItIs.size()));
        return 2;
    }
    umbrixlib::toolkit::end_with_parent(words[1]);
    return umbrixlib::toolkit::serve(static_cast<umbrixlib::toolkit::Rights>(rights),
                                     static_cast<umbrixlib::toolkit::Service>(service));
}
