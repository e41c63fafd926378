// SPDX-License-Identifier: MIT
#include "supervise.h"

#include "failure.h"
#include "phase.h"
#include "worker_process.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fmt/format.h>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace umbrix_cli {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

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

class Conversation {
public:
    Conversation(Job const& job, Supervision const& supervision)
        : supervision_(supervision), display_(supervision.progress), worker_(pack(job))
    {
    }

    nlohmann::json run()
    {
        while (listen()) {
            supervision_.interrupts.check();
            if (is_decoding(phase_) && Clock::now() - phase_start_ > timeout()) {
                worker_.kill();
                throw took_too_long();
            }
        }
        int const status = worker_.wait();
        supervision_.interrupts.check();
        display_.clear();
        if (supervision_.verbose && !chatter_.empty()) {
            fmt::print(stderr, "{}", chatter_);
        }
        if (failure_) {
            throw Failure(*failure_);
        }
        if (!result_) {
            throw ended_without_a_word(status);
        }
        return *result_;
    }

private:
    Seconds timeout() const { return Seconds(supervision_.timeout_seconds); }

    /// Waits for something to happen and takes it in. False when the worker has closed its pipe of events.
    bool listen()
    {
        pollfd waiting[] = {{worker_.events(), POLLIN, 0},
                            {supervision_.interrupts.descriptor(), POLLIN, 0},
                            {chatter_open_ ? worker_.chatter() : -1, POLLIN, 0}};
        int limit = -1;
        if (is_decoding(phase_)) {
            double const left =
                std::chrono::duration<double, std::milli>(timeout() - (Clock::now() - phase_start_)).count();
            limit = static_cast<int>(std::min(std::max(left, 0.0) + 1.0, 1e9));
        }
        if (poll(waiting, 3, limit) < 0) {
            return errno == EINTR;
        }
        if (waiting[2].revents != 0) {
            chatter_open_ = read_some(worker_.chatter(), chatter_);
            if (chatter_.size() > kChatterKept) {
                chatter_.erase(0, chatter_.size() - kChatterKept);
            }
        }
        if (waiting[0].revents == 0) {
            return true;
        }
        bool const open = read_some(worker_.events(), lines_);
        for (std::size_t end = 0; (end = lines_.find('\n')) != std::string::npos; lines_.erase(0, end + 1)) {
            take(nlohmann::json::parse(lines_.substr(0, end)));
        }
        return open;
    }

    void take(nlohmann::json const& event)
    {
        if (event.contains("phase")) {
            event.at("phase").get_to(phase_);
            phase_start_ = Clock::now();
            if (phase_ == Phase::kWriting) {
                display_.show("writing", 0);
            }
        } else if (event.contains("stage")) {
            display_.show(event.at("stage"), event.at("permille"));
        } else if (event.contains("file")) {
            event.at("file").get_to(file_);
        } else if (event.contains("note")) {
            if (supervision_.verbose || !event.at("detail").get<bool>()) {
                display_.clear();
                fmt::print(stderr, "{}: note: {}: {}\n", supervision_.command, input(),
                           event.at("note").get<std::string>());
            }
        } else if (event.contains("failure")) {
            nlohmann::json const& told = event.at("failure");
            failure_.emplace(subject(told.at("subject")), told.at("what").get<std::string>(),
                             told.at("advice"), told.at("code").get<ExitCode>());
        } else {
            result_ = event.at("result");
        }
    }

    std::string subject(std::string const& name) const
    {
        return name == "input" ? input() : name == "output" ? output() : name;
    }

    std::string const& input() const { return file_.empty() ? supervision_.input : file_; }
    std::string const& output() const { return file_.empty() ? supervision_.output : file_; }

    std::string const& file_at_work() const
    {
        return phase_ == Phase::kReading || phase_ == Phase::kMaking ? input() : output();
    }

    Failure took_too_long() const
    {
        return {file_at_work(),
                fmt::format("it was still being read after {} s", supervision_.timeout_seconds),
                "it is probably damaged; --timeout allows more"};
    }

    Failure ended_without_a_word(int status) const
    {
        std::string const how = WIFSIGNALED(status) ? fmt::format("{}", strsignal(WTERMSIG(status)))
                                                    : fmt::format("exit code {}", WEXITSTATUS(status));
        switch (phase_) {
        case Phase::kOpeningDevice:
            return {"graphics driver", fmt::format("it broke down ({})", how),
                    "update it, or leave --gpu out; -v shows more"};
        case Phase::kReading:
            return {input(), fmt::format("its decoder broke down ({})", how),
                    "the file is damaged; save it again in a program that opens it"};
        case Phase::kMaking:
            return {input(), fmt::format("the run broke down ({})", how),
                    "a picture that is too large for the memory can be the reason; -v shows more"};
        default:
            return {output(), fmt::format("writing it broke down ({})", how),
                    "choose another format with -o"};
        }
    }

    Supervision const& supervision_;
    ProgressDisplay display_;
    WorkerProcess worker_;
    Phase phase_ = Phase::kReading;
    Clock::time_point phase_start_ = Clock::now();
    bool chatter_open_ = true;
    std::string chatter_;
    std::string lines_;
    std::string file_; ///< What the worker calls the file at work; empty if there is only one of a kind.
    std::optional<Failure> failure_;
    std::optional<nlohmann::json> result_;
};

} // namespace

nlohmann::json supervise(Job const& job, Supervision const& supervision)
{
    return Conversation(job, supervision).run();
}

} // namespace umbrix_cli
