// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/tasks/job.h"
#include "toolkit/workers/worker_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
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

std::vector<std::uint8_t> read_standard_input()
{
    std::vector<std::uint8_t> all;
    std::uint8_t piece[4096];
    ssize_t got = 0;
    while ((got = read(STDIN_FILENO, piece, sizeof piece)) > 0 || (got < 0 && errno == EINTR)) {
        all.insert(all.end(), piece, piece + (got > 0 ? got : 0));
    }
    return all;
}

/// What is told of too little memory. The first call words it and takes memory, later ones take none.
std::string const& no_memory_event()
{
    static std::string const event =
        failure_event({Fault::kNoMemory, "input", "there is not enough memory to work on it"});
    return event;
}

/// For operator new. In a parallel region there is nobody to catch an exception.
[[noreturn]] void tell_of_too_little_memory()
{
    std::string const& event = no_memory_event();
    static_cast<void>(!write(kEventDescriptor, event.data(), event.size()));
    _exit(EXIT_FAILURE);
}

nlohmann::json run(Job const& job)
{
    switch (job.task) {
    case Task::kMap:
        return run_map_task(job);
    case Task::kNormal:
        return run_normal_task(job);
    case Task::kRelight:
        return run_relight_task(job);
    case Task::kStack:
        return run_stack_task(job);
    case Task::kDevices:
        return run_devices_task();
    case Task::kFolder:
        return run_folder_task(job);
    case Task::kListJob:
        return run_list_job_task(job);
    case Task::kFit:
        return run_fit_task(job);
    case Task::kInfo:
        break;
    }
    return run_info_task(job);
}

} // namespace

int run_worker(char const* parent)
{
    end_with_parent(parent);
    std::signal(SIGXFSZ, SIG_IGN); // a limit on file sizes then reads as a full disk
    no_memory_event();
    std::set_new_handler(tell_of_too_little_memory);
    try {
        send_result(run(unpack_job(read_standard_input())));
        return EXIT_SUCCESS;
    } catch (Failure const& failure) {
        send_failure(failure);
    } catch (std::bad_alloc const&) { // of a size beyond all memory
        tell_of_too_little_memory();
    } catch (std::system_error const& error) { // of a thread that could not be started
        send_failure(Failure(Fault::kNoThread, "input", std::string("it is not worked on: ") + error.what()));
    } catch (std::exception const& error) {
        send_failure(Failure(Fault::kNotWorkedOn, "input", error.what()));
    }
    // Without a clean end: after a failed load DevIL's own would crash.
    _exit(EXIT_FAILURE);
}

} // namespace umbrixlib::toolkit
