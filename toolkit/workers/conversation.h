// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/note.h"
#include "toolkit/base/phase.h"
#include "toolkit/base/utf8.h"
#include "toolkit/tasks/job.h"
#include "toolkit/workers/worker_process.h"

#include <chrono>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <poll.h>
#include <string>

namespace umbrixlib::toolkit {

/// What the parent of a worker adds to a job.
struct Briefing {
    std::string input;  ///< Names to be used for the worker's "input" and "output", unless it says others.
    std::string output; ///< May be empty if the job makes no file.
    double timeout_seconds = 60; ///< For decoding a file.
};

/// What a worker says while it is at work. Either may be empty.
struct Hearing {
    std::function<void(std::string const& stage, int permille)> progress;
    std::function<void(std::string const& file, Note const& note)> note;
};

/// A worker that does a job, and what it says meanwhile. Several can be listened to at a time: wait for the
/// descriptors of all of them with poll, then let each take in what has come.
class Conversation {
public:
    static constexpr std::size_t kDescriptors = 2;

    /// @param processors The worker's share, or null for all that this process may use.
    Conversation(Job const& job, Briefing briefing, Hearing hearing,
                 ProcessorSet const* processors = nullptr);

    /// What poll is to wait for: kDescriptors records from @p records on.
    void fill(pollfd* records) const;

    /// Milliseconds until the worker has been decoding for too long, as poll takes them; -1 if it is not
    /// decoding.
    int patience() const;

    /// Takes in what poll found. False when the worker has ended, or was ended because it decoded for too
    /// long or did not keep to the rules: then finish() is next.
    bool listen(pollfd const* records);

    /// Waits for the worker's end. Its report, or the Failure that it told or that its sudden end means.
    nlohmann::json finish();

    /// The last that libraries printed in the worker, for a terminal: it may be taken from the picture.
    std::string chatter() const { return printable_lines(chatter_); }

    /// Largest memory of the worker in KiB, after finish(); also if that threw.
    long peak_kib() const { return worker_.peak_kib(); }

private:
    using Clock = std::chrono::steady_clock;

    bool read_events();
    void take(nlohmann::json const& event);
    std::string subject(std::string const& name) const;
    std::string const& input() const { return file_.empty() ? briefing_.input : file_; }
    std::string const& output() const { return file_.empty() ? briefing_.output : file_; }
    std::string const& file_at_work() const;
    Failure took_too_long() const;
    Failure broke_down(std::string const& how) const;

    Briefing briefing_;
    Hearing hearing_;
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

} // namespace umbrixlib::toolkit
