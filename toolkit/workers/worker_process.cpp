// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_process.h"

#include "toolkit/base/failure.h"
#include "toolkit/workers/sandbox/environment_internal.h"
#include "toolkit/workers/worker_channel.h"
#include "toolkit/workers/worker_program.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <limits>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

extern char** environ; // NOLINT(readability-redundant-declaration): not every unistd.h has it

namespace umbrixlib::toolkit {

namespace {

/// A pipe, or a pair of sockets. Ends that are not taken are closed.
struct Ends {
    Ends() = default;
    ~Ends()
    {
        close_end(ours);
        close_end(theirs);
    }
    Ends(Ends const&) = delete;
    Ends& operator=(Ends const&) = delete;

    static void close_end(int& end)
    {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }

    int ours = -1;
    int theirs = -1; ///< Above the descriptors that the worker expects something on.
};

/// For a worker that has nothing to do any more.
constexpr std::chrono::seconds kTimeToEnd{5};

[[noreturn]] void refuse_pipe()
{
    throw Failure(Fault::kWorkerUnheard, "umbrix",
                  std::string("no pipe to a worker: ") + std::strerror(errno));
}

void keep(Ends& ends, int ours, int theirs)
{
    ends.ours = ours;
    ends.theirs = fcntl(theirs, F_DUPFD_CLOEXEC, 10);
    close(theirs);
    if (ends.theirs < 0) {
        refuse_pipe();
    }
}

/// We read what they write.
void open_pipe(Ends& ends)
{
    int both[2];
    if (pipe2(both, O_CLOEXEC) != 0) {
        refuse_pipe();
    }
    keep(ends, both[0], both[1]);
}

/// A socket: writing to one whose other end is closed raises no signal if told so.
void open_socket(Ends& ends)
{
    int both[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, both) != 0) {
        refuse_pipe();
    }
    keep(ends, both[0], both[1]);
}

/// Ctrl-C and its kin go to all processes of a terminal. What becomes of a worker then, its parent decides.
void deafen(posix_spawnattr_t& attributes)
{
    sigset_t deaf_to;
    sigemptyset(&deaf_to);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&deaf_to, signal);
    }
    posix_spawnattr_setsigmask(&attributes, &deaf_to);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
}

} // namespace

WorkerProcess::WorkerProcess(Rights of_job, Service service, ProcessorSet const* processors)
{
    Rights const rights = all_rights_are_kept() ? Rights::kAll : of_job;
    std::string const program = worker_program().string();
    Ends input;
    Ends events;
    Ends output;
    open_socket(input);
    open_pipe(events);
    open_pipe(output);

    char name[] = "umbrix-worker";
    std::string parent = std::to_string(getpid());
    std::string rights_name = name_of(rights);
    std::string service_name = name_of(service);
    char* const words[] = {name, parent.data(), rights_name.data(), service_name.data(), nullptr};
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    deafen(attributes);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input.theirs, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, output.theirs, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, output.theirs, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(&files, events.theirs, kEventDescriptor);
    int const error = [&] {
        ProcessorScope const scope(processors);
        std::optional<ProcessorSet> const few = processors_for_threads(std::getenv("OMP_NUM_THREADS"));
        ProcessorScope const fewer(few ? &*few : nullptr);
        std::vector<std::string> variables = worker_environment(environ, rights, processor_count());
        std::vector<char*> environment;
        environment.reserve(variables.size() + 1);
        for (std::string& variable : variables) {
            environment.push_back(variable.data());
        }
        environment.push_back(nullptr);
        return posix_spawn(&process_, program.c_str(), &files, &attributes, words, environment.data());
    }();
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (error != 0) {
        throw Failure(Fault::kNoWorker, "umbrix",
                      std::string("no worker process can be started: ") + std::strerror(error));
    }
    input_ = std::exchange(input.ours, -1);
    events_ = std::exchange(events.ours, -1);
    output_ = std::exchange(output.ours, -1);
}

WorkerProcess::~WorkerProcess()
{
    if (process_ > 0) {
        kill();
        wait();
    }
    close(input_);
    close(events_);
    close(output_);
}

void WorkerProcess::end_input()
{
    shutdown(input_, SHUT_WR);
}

bool WorkerProcess::is_stopped() const
{
    siginfo_t found = {};
    return waitid(P_PID, static_cast<id_t>(process_), &found, WSTOPPED | WNOHANG | WNOWAIT) == 0 &&
           found.si_pid == process_;
}

bool WorkerProcess::is_quiet() const
{
    pollfd waiting{events_, POLLIN, 0};
    return poll(&waiting, 1, 0) == 0;
}

double WorkerProcess::cpu_seconds() const
{
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(process_, &clock) != 0 || clock_gettime(clock, &used) != 0) {
        return std::numeric_limits<double>::infinity();
    }
    return static_cast<double>(used.tv_sec) + 1e-9 * static_cast<double>(used.tv_nsec);
}

void WorkerProcess::dismiss()
{
    using Clock = std::chrono::steady_clock;
    end_input();
    pollfd waiting[] = {{events_, POLLIN, 0}, {output_, POLLIN, 0}};
    char unheard[4096];
    for (Clock::time_point const start = Clock::now(); Clock::now() - start < kTimeToEnd;) {
        constexpr int kMilliseconds = 100;
        poll(waiting, 2, kMilliseconds);
        for (pollfd& each : waiting) {
            if (each.revents != 0 && read(each.fd, unheard, sizeof unheard) == 0) {
                each.fd = -1;
            }
        }
        if (waiting[0].fd < 0) {
            break;
        }
    }
    kill();
}

void WorkerProcess::kill()
{
    ::kill(process_, SIGKILL);
}

int WorkerProcess::wait()
{
    int status = 0;
    rusage used = {};
    while (wait4(process_, &status, 0, &used) < 0 && errno == EINTR) {
    }
    process_ = -1;
    peak_kib_ = used.ru_maxrss;
    return status;
}

long WorkerProcess::peak_kib() const
{
    if (process_ < 0) {
        return peak_kib_;
    }
    constexpr std::string_view kPeak = "VmHWM:";
    std::ifstream status(fmt::format("/proc/{}/status", process_));
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(kPeak)) {
            return std::strtol(line.c_str() + kPeak.size(), nullptr, 10);
        }
    }
    return 0;
}

void WorkerProcess::forget_peak() const
{
    std::ofstream(fmt::format("/proc/{}/clear_refs", process_)) << "5";
}

} // namespace umbrixlib::toolkit
