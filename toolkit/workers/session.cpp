// SPDX-License-Identifier: MIT
#include "toolkit/workers/session_internal.h"

#include "toolkit/base/overloaded.h"
#include "toolkit/base/utf8.h"
#include "toolkit/workers/crossing_internal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kOutputKept = 4096;
constexpr int kPiecesOfOutput = 16; ///< Of read_some(), as much as a pipe holds.
constexpr double kTick = 1.0;       ///< Seconds between two looks at the time.

/// A worker tells something several times a second but while it turns a result into a file. That takes less
/// than this for each texel, also on a slow and busy machine.
constexpr double kSecondsPerTexel = 1e-6;

/// Appends what is there to read. False at the end of the pipe.
bool read_some(int descriptor, std::string& text)
{
    char piece[4096];
    ssize_t const got = read(descriptor, piece, sizeof piece);
    if (got > 0) {
        text.append(piece, static_cast<std::size_t>(got));
    }
    return got > 0 || (got < 0 && errno == EINTR);
}

bool has_something(int descriptor)
{
    pollfd waiting{descriptor, POLLIN, 0};
    return poll(&waiting, 1, 0) > 0;
}

bool is_decoding(Phase phase)
{
    return phase == Phase::kReading || phase == Phase::kChecking;
}

std::string describe_end(int status)
{
    return WIFSIGNALED(status) ? fmt::format("{}", strsignal(WTERMSIG(status)))
                               : fmt::format("exit code {}", WEXITSTATUS(status));
}

} // namespace

Session::Session(Job const& job, double timeout_seconds, Observer& observer, WorkerSlot& slot)
    : job_(pack(job)), task_(job.index()), timeout_seconds_(timeout_seconds),
      longest_silence_(timeout_seconds + kSecondsPerTexel * pictures_of(job).texels), observer_(observer),
      slot_(slot), worker_(slot.hire(job, files_)), is_used_(slot.is_used()), input_(name_of_input(job)),
      file_at_work_(input_)
{
}

Session::~Session()
{
    if (!is_over_) {
        slot_.drop();
    }
}

void Session::fill(pollfd* records) const
{
    records[0] = {worker_.events(), POLLIN, 0};
    records[1] = {output_open_ ? worker_.output() : -1, POLLIN, 0};
    records[2] = {job_is_sent() ? -1 : worker_.input(), POLLOUT, 0};
}

int Session::poll_timeout() const
{
    double const left = is_decoding(phase_) ? timeout_seconds_ - in_phase_ : kTick;
    return static_cast<int>(1000.0 * std::clamp(left, 0.0, kTick)) + 1;
}

bool Session::advance(pollfd const* records)
{
    if (records[1].revents != 0) {
        read_output();
    }
    if (records[2].revents != 0) {
        write_job();
    }
    if (records[0].revents != 0 && !read_events()) {
        return false;
    }
    count_time();
    if (auto const failure = took_too_long()) {
        failure_.emplace(*failure);
        worker_.kill();
        return false;
    }
    return true;
}

void Session::read_output()
{
    output_open_ = read_some(worker_.output(), output_);
    if (output_.size() > kOutputKept) {
        output_.erase(0, output_.size() - kOutputKept);
    }
}

/// A long step means that this process was stopped or the machine asleep, and the worker with it.
void Session::count_time()
{
    Clock::time_point const now = Clock::now();
    double const step = std::min(std::chrono::duration<double>(now - looked_).count(), 2 * kTick);
    looked_ = now;
    in_phase_ += step;
    silent_ += step;
}

/// As much as the worker takes at once. One that takes no more has ended, or is of no use.
void Session::write_job()
{
    ssize_t const step = files_.send(worker_.input(), job_.data() + sent_, job_.size() - sent_);
    if (step >= 0) {
        files_.close_all();
        sent_ += static_cast<std::size_t>(step);
    } else if (errno != EAGAIN && errno != EINTR) {
        sent_ = job_.size();
        worker_.kill();
    }
    if (job_is_sent() && asked_to_stop_) {
        worker_.end_input();
    }
}

void Session::ask_to_stop()
{
    asked_to_stop_ = true;
    if (job_is_sent()) {
        worker_.end_input();
    }
}

bool Session::waits_for_another_job() const
{
    return slot_.service() == Service::kManyJobs && report_ && !failure_ && bytes_.empty() && job_is_sent() &&
           !asked_to_stop_;
}

/// False if there is no more to come.
bool Session::read_events()
{
    bool const open = read_some(worker_.events(), bytes_);
    auto const take = Overloaded{
        [&](PhaseEvent const& event) {
            phase_ = event.phase;
            in_phase_ = 0;
            file_at_work_ = event.file;
            if (phase_ == Phase::kReading || phase_ == Phase::kMaking) {
                input_ = event.file;
            }
            observer_.begin(event.phase, event.file);
        },
        [&](StageEvent const& event) { observer_.stage(event.name, event.permille); },
        [&](NoteEvent const& event) { observer_.note(event.file, event.note); },
        [&](Failure const& failure) {
            failure_.emplace(failure);
            if (failure.subject.empty()) {
                failure_->subject = input_;
            }
        },
        [&](Report const& report) { report_ = report; },
    };
    silent_ = 0;
    try {
        while (auto const message = take_message(bytes_, kLongestEvent)) {
            std::visit(take, unpack_event(*message));
        }
        if (report_ && report_->index() != task_) {
            throw Garbled("the report of another task");
        }
    } catch (Garbled const&) {
        // A decoder gone wild can write anywhere, also into this pipe.
        failure_.emplace(broke_down("its reports make no sense"));
        worker_.kill();
        return false;
    }
    return open && !waits_for_another_job();
}

Report Session::finish()
{
    int status = 0;
    if (waits_for_another_job()) {
        for (int i = 0; i < kPiecesOfOutput && has_something(worker_.output()); ++i) {
            read_output();
        }
        peak_kib_ = worker_.peak_kib();
    } else {
        status = worker_.wait();
        peak_kib_ = worker_.peak_kib();
        slot_.drop();
    }
    is_over_ = true;
    if (!output_.empty()) {
        observer_.printed(printable_lines(output_));
    }
    if (failure_) {
        throw Failure(*failure_);
    }
    if (!report_) {
        throw broke_down(describe_end(status));
    }
    return *report_;
}

std::optional<Failure> Session::took_too_long() const
{
    if (is_decoding(phase_) && in_phase_ > timeout_seconds_) {
        return Failure(Fault::kDecodedTooLong, file_at_work_,
                       fmt::format("it was still being read after {} s", timeout_seconds_));
    }
    if (silent_ > longest_silence_ || (silent_ > timeout_seconds_ && worker_.is_stopped())) {
        return Failure(Fault::kWorkerSilent, file_at_work_,
                       fmt::format("its worker told nothing for {:.0f} s", silent_));
    }
    return std::nullopt;
}

Failure Session::broke_down(std::string const& how) const
{
    switch (phase_) {
    case Phase::kOpeningDevice:
        return {Fault::kDeviceBrokeDown, "graphics driver", fmt::format("it broke down ({})", how)};
    case Phase::kReading:
        return {Fault::kDecoderBrokeDown, file_at_work_, fmt::format("its decoder broke down ({})", how)};
    case Phase::kMaking:
        return {Fault::kRunBrokeDown, file_at_work_, fmt::format("the run broke down ({})", how)};
    default:
        return {Fault::kWritingBrokeDown, file_at_work_, fmt::format("writing it broke down ({})", how)};
    }
}

std::vector<std::size_t> wait_for(std::vector<Session*> const& sessions, Stop const& stop)
{
    std::vector<pollfd> records(1 + sessions.size() * Session::kDescriptors);
    records[0] = {stop.descriptor(), POLLIN, 0};
    int limit = -1;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        sessions[i]->fill(&records[1 + i * Session::kDescriptors]);
        int const timeout = sessions[i]->poll_timeout();
        limit = limit < 0 ? timeout : timeout < 0 ? limit : std::min(limit, timeout);
    }
    if (poll(records.data(), records.size(), limit) < 0) {
        if (errno != EINTR) {
            throw Failure(Fault::kWorkerUnheard, "umbrix",
                          std::string("no word from its worker: ") + std::strerror(errno));
        }
        return {};
    }
    std::vector<std::size_t> ended;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        if (!sessions[i]->advance(&records[1 + i * Session::kDescriptors])) {
            ended.push_back(i);
        }
    }
    return ended;
}

} // namespace umbrixlib::toolkit
