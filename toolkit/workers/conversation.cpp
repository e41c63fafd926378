// SPDX-License-Identifier: MIT
#include "toolkit/workers/conversation.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::size_t kChatterKept = 4096;

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

Conversation::Conversation(Job const& job, Briefing briefing, Hearing hearing, ProcessorSet const* processors)
    : briefing_(std::move(briefing)), hearing_(std::move(hearing)), worker_(pack(job), processors)
{
}

void Conversation::fill(pollfd* records) const
{
    records[0] = {worker_.events(), POLLIN, 0};
    records[1] = {chatter_open_ ? worker_.chatter() : -1, POLLIN, 0};
}

int Conversation::patience() const
{
    if (!is_decoding(phase_)) {
        return -1;
    }
    double const left =
        1000.0 * briefing_.timeout_seconds - Milliseconds(Clock::now() - phase_start_).count();
    return static_cast<int>(std::min(std::max(left, 0.0) + 1.0, 1e9));
}

bool Conversation::listen(pollfd const* records)
{
    if (records[1].revents != 0) {
        chatter_open_ = read_some(worker_.chatter(), chatter_);
        if (chatter_.size() > kChatterKept) {
            chatter_.erase(0, chatter_.size() - kChatterKept);
        }
    }
    if (records[0].revents != 0 && !read_events()) {
        return false;
    }
    std::chrono::duration<double> const in_phase = Clock::now() - phase_start_;
    if (is_decoding(phase_) && in_phase.count() > briefing_.timeout_seconds) {
        failure_.emplace(took_too_long());
        worker_.kill();
        return false;
    }
    return true;
}

/// False if there is no more to come.
bool Conversation::read_events()
{
    bool const open = read_some(worker_.events(), lines_);
    try {
        for (std::size_t end = 0; (end = lines_.find('\n')) != std::string::npos; lines_.erase(0, end + 1)) {
            take(nlohmann::json::parse(lines_.substr(0, end)));
        }
    } catch (nlohmann::json::exception const&) {
        // A decoder gone wild can write anywhere, also into this pipe.
        failure_.emplace(broke_down("its reports make no sense"));
        worker_.kill();
        return false;
    }
    return open;
}

nlohmann::json Conversation::finish()
{
    int const status = worker_.wait();
    if (failure_) {
        throw Failure(*failure_);
    }
    if (!result_) {
        throw broke_down(describe_end(status));
    }
    return *result_;
}

void Conversation::take(nlohmann::json const& event)
{
    if (event.contains("phase")) {
        event.at("phase").get_to(phase_);
        phase_start_ = Clock::now();
        if (phase_ == Phase::kWriting && hearing_.progress) {
            hearing_.progress("writing", 0);
        }
    } else if (event.contains("stage")) {
        if (hearing_.progress) {
            hearing_.progress(event.at("stage"), event.at("permille"));
        }
    } else if (event.contains("file")) {
        event.at("file").get_to(file_);
    } else if (event.contains("note")) {
        if (hearing_.note) {
            hearing_.note(input(), {event.at("note"), event.at("kind").get<NoteKind>(), event.at("detail")});
        }
    } else if (event.contains("failure")) {
        nlohmann::json const& told = event.at("failure");
        failure_.emplace(told.at("fault").get<Fault>(), subject(told.at("subject")),
                         told.at("what").get<std::string>(), told.at("remedy"));
    } else {
        result_ = event.at("result");
    }
}

std::string Conversation::subject(std::string const& name) const
{
    return name == "input" ? input() : name == "output" ? output() : name;
}

std::string const& Conversation::file_at_work() const
{
    return phase_ == Phase::kReading || phase_ == Phase::kMaking ? input() : output();
}

Failure Conversation::took_too_long() const
{
    return {Fault::kDecodedTooLong, file_at_work(),
            fmt::format("it was still being read after {} s", briefing_.timeout_seconds)};
}

Failure Conversation::broke_down(std::string const& how) const
{
    switch (phase_) {
    case Phase::kOpeningDevice:
        return {Fault::kDeviceBrokeDown, "graphics driver", fmt::format("it broke down ({})", how)};
    case Phase::kReading:
        return {Fault::kDecoderBrokeDown, input(), fmt::format("its decoder broke down ({})", how)};
    case Phase::kMaking:
        return {Fault::kRunBrokeDown, input(), fmt::format("the run broke down ({})", how)};
    default:
        return {Fault::kWritingBrokeDown, output(), fmt::format("writing it broke down ({})", how)};
    }
}

} // namespace umbrixlib::toolkit
