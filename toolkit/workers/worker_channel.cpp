// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_channel.h"

#include "toolkit/workers/crossing_internal.h"
#include "toolkit/workers/handed_files_internal.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <poll.h>
#include <unistd.h>

namespace umbrixlib::toolkit {

namespace {

void send_event(Event const& event)
{
    std::string const message = pack(event);
    for (std::size_t sent = 0; sent < message.size();) {
        ssize_t const step = write(kEventDescriptor, message.data() + sent, message.size() - sent);
        if (step <= 0) {
            _exit(EXIT_FAILURE); // nobody is listening any more
        }
        sent += static_cast<std::size_t>(step);
    }
}

} // namespace

std::optional<Job> WorkerChannel::read_job()
{
    HandedFiles files;
    std::string bytes;
    for (;;) {
        if (auto const message = take_message(bytes, std::numeric_limits<std::size_t>::max())) {
            Job job = unpack_job(*message);
            files.take_for(job);
            return job;
        }
        char piece[65536];
        ssize_t const got = files.receive(STDIN_FILENO, piece, sizeof piece);
        if (got == 0 && bytes.empty()) {
            return std::nullopt;
        }
        if (got == 0 || (got < 0 && errno != EINTR)) {
            throw Garbled("the job ends too early");
        }
        bytes.append(piece, static_cast<std::size_t>(got > 0 ? got : 0));
    }
}

void WorkerChannel::begin(Phase phase, std::string const& file)
{
    send_event(PhaseEvent{phase, file});
}

void WorkerChannel::stage(std::string_view name, int permille)
{
    send_event(StageEvent{std::string(name), permille});
}

void WorkerChannel::note(std::string const& file, Note const& note)
{
    send_event(NoteEvent{file, note});
}

bool WorkerChannel::stopping() const
{
    pollfd waiting{STDIN_FILENO, POLLIN, 0};
    return poll(&waiting, 1, 0) > 0;
}

void WorkerChannel::send(Report const& report)
{
    send_event(report);
}

void WorkerChannel::send(Failure const& failure)
{
    send_event(failure);
}

} // namespace umbrixlib::toolkit
