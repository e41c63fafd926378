// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_process.h"

#include "toolkit/base/failure.h"
#include "toolkit/base/worker_channel.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ; // NOLINT(readability-redundant-declaration): not every unistd.h has it

namespace umbrixlib::toolkit {

namespace {

struct Pipe {
    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) {
            throw Failure(Fault::kWorkerUnheard, "umbrix",
                          std::string("no pipe to a worker: ") + std::strerror(errno));
        }
        read_end = ends[0];
        write_end = ends[1];
    }
    ~Pipe()
    {
        close_end(read_end);
        close_end(write_end);
    }
    Pipe(Pipe const&) = delete;
    Pipe& operator=(Pipe const&) = delete;

    static void close_end(int& end)
    {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }

    int read_end;
    int write_end;
};

/// The environment without anything that steers OpenMP, but for two settings of ours: a team has all its
/// threads, and those that wait sleep. By default they would spin, which takes longer than a small job and
/// takes the processors from the workers beside.
std::vector<char*> worker_environment()
{
    static char no_dynamic[] = "OMP_DYNAMIC=false";
    static char sleeping[] = "OMP_WAIT_POLICY=passive";
    std::vector<char*> kept;
    for (char** each = environ; *each != nullptr; ++each) {
        std::string_view const variable = *each;
        if (!variable.starts_with("OMP_") && !variable.starts_with("GOMP_") &&
            !variable.starts_with("KMP_")) {
            kept.push_back(*each);
        }
    }
    kept.push_back(no_dynamic);
    kept.push_back(sleeping);
    kept.push_back(nullptr);
    return kept;
}

/// A job is some hundred bytes and file names, less than any pipe holds.
void put_job(Pipe& pipe, std::vector<std::uint8_t> const& job)
{
    if (write(pipe.write_end, job.data(), job.size()) != static_cast<ssize_t>(job.size())) {
        throw Failure(Fault::kJobNotTaken, "umbrix", "a worker does not take its job");
    }
    Pipe::close_end(pipe.write_end);
}

} // namespace

WorkerProcess::WorkerProcess(std::vector<std::uint8_t> const& job, ProcessorSet const* processors)
{
    Pipe input;
    Pipe events;
    Pipe chatter;
    put_job(input, job);

    std::string const parent = std::to_string(getpid());
    std::vector<std::string> words{"umbrix", kWorkerArgument, parent};
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);

    // The pipes' own descriptors may be those that the worker expects something else on: lift them out of the
    // way.
    int const job_end = fcntl(input.read_end, F_DUPFD_CLOEXEC, 10);
    int const event_end = fcntl(events.write_end, F_DUPFD_CLOEXEC, 10);
    int const chatter_end = fcntl(chatter.write_end, F_DUPFD_CLOEXEC, 10);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, job_end, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, chatter_end, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, chatter_end, STDERR_FILENO);
    posix_spawn_file_actions_adddup2(&files, event_end, kEventDescriptor);
    int const error = [&] {
        ProcessorScope const scope(processors);
        return posix_spawn(&process_, "/proc/self/exe", &files, nullptr, arguments.data(),
                           worker_environment().data());
    }();
    posix_spawn_file_actions_destroy(&files);
    for (int const end : {job_end, event_end, chatter_end}) {
        close(end);
    }
    if (error != 0) {
        throw Failure(Fault::kNoWorker, "umbrix",
                      std::string("no worker process can be started: ") + std::strerror(error));
    }
    events_ = std::exchange(events.read_end, -1);
    chatter_ = std::exchange(chatter.read_end, -1);
}

WorkerProcess::~WorkerProcess()
{
    if (process_ > 0) {
        kill();
        wait();
    }
    close(events_);
    close(chatter_);
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

} // namespace umbrixlib::toolkit
