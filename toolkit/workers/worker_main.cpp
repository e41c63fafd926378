// SPDX-License-Identifier: MIT
#include "toolkit/base/worker_channel.h"
#include "toolkit/tasks/job.h"
#include "toolkit/workers/worker_process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
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
        _exit(kInterrupted);
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

/// For operator new. In a parallel region there is nobody to catch an exception, and no memory to word it
/// with.
[[noreturn]] void tell_of_too_little_memory()
{
    constexpr std::string_view kEvent =
        R"({"failure":{"subject":"input","what":"there is not enough memory to work on it",)"
        R"("advice":"make the picture smaller","code":1}})"
        "\n";
    static_cast<void>(!write(kEventDescriptor, kEvent.data(), kEvent.size()));
    _exit(kInputFailed);
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
    std::set_new_handler(tell_of_too_little_memory);
    try {
        send_result(run(unpack_job(read_standard_input())));
        return kDone;
    } catch (Failure const& failure) {
        send_failure(failure);
    } catch (std::bad_alloc const&) { // of a size beyond all memory
        tell_of_too_little_memory();
    } catch (std::system_error const& error) { // of a thread that could not be started
        send_failure(Failure("input", std::string("it is not worked on: ") + error.what(),
                             "raise the limits on memory and processes (ulimit -v, ulimit -u)"));
    } catch (std::exception const& error) {
        send_failure(Failure("input", error.what(), "try another picture"));
    }
    // Without a clean end: after a failed load DevIL's own would crash.
    _exit(kInputFailed);
}

} // namespace umbrixlib::toolkit
