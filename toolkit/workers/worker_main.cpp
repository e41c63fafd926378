// SPDX-License-Identifier: MIT
#include "toolkit/base/give_up.h"
#include "toolkit/tasks/tasks.h"
#include "toolkit/workers/crossing_internal.h"
#include "toolkit/workers/worker_channel.h"
#include "toolkit/workers/worker_process.h"

#include <csignal>
#include <new>
#include <string>
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

} // namespace

int run_worker(char const* parent)
{
    end_with_parent(parent);
    std::signal(SIGXFSZ, SIG_IGN); // a limit on file sizes then reads as a full disk
    no_memory_event = pack(Event(Failure(Fault::kNoMemory, "", "there is not enough memory to work on it")));
    std::set_new_handler(tell_of_too_little_memory);
    set_last_words(tell);
    WorkerChannel channel;
    try {
        channel.send(run(channel.read_job(), channel));
        return EXIT_SUCCESS;
    } catch (Failure const& failure) {
        channel.send(failure);
    } catch (std::bad_alloc const&) { // of a size beyond all memory
        tell_of_too_little_memory();
    } catch (std::system_error const& error) { // of a thread that could not be started
        channel.send(Failure(Fault::kNoThread, "", std::string("it is not worked on: ") + error.what()));
    } catch (std::exception const& error) {
        channel.send(Failure(Fault::kNotWorkedOn, "", error.what()));
    }
    // Without a clean end: after a failed load DevIL's own would crash.
    _exit(EXIT_FAILURE);
}

} // namespace umbrixlib::toolkit
