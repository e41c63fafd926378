// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/observer.h"
#include "toolkit/base/stop.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/workers/worker_process.h"

#include <chrono>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A worker that does one job, from its start to its end. Its events go on to an observer. Several sessions
/// can be waited for at a time, with wait_for().
class Session {
public:
    static constexpr std::size_t kDescriptors = 3;

    /// Starts the worker, which takes its job while it is waited for.
    /// @param timeout_seconds Longest time for decoding a file. After it a worker that is stopped (SIGSTOP)
    ///                 is ended, too, and one that has told nothing for as long and the time that its work
    ///                 allows for. Time in which this process does not run does not count.
    /// @param observer   Called while the session is waited for; outlives it.
    /// @param processors The worker's share, or null for all that this process may use.
    Session(Job const& job, double timeout_seconds, Observer& observer,
            ProcessorSet const* processors = nullptr);

    /// Writes what poll is to wait for to kDescriptors records from @p records on.
    void fill(pollfd* records) const;

    /// Milliseconds until advance() has to look at the time, as poll takes them.
    int poll_timeout() const;

    /// Takes in what poll found. False when the worker has ended, or was ended because it decoded or was
    /// silent for too long, or did not keep to the rules: then finish() is next.
    bool advance(pollfd const* records);

    /// Tells the worker that it may end early, as Observer::stopping().
    void ask_to_stop();

    /// Waits for the worker's end, and tells the observer what libraries printed. The report, whose type is
    /// that of the job, or the Failure that the worker told or that its sudden end means.
    Report finish();

    /// Largest memory of the worker in KiB, after finish(); also if that threw.
    long peak_kib() const { return worker_.peak_kib(); }

private:
    using Clock = std::chrono::steady_clock;

    void write_job();
    bool job_is_sent() const { return sent_ == job_.size(); }
    bool read_events();
    void count_time();
    std::optional<Failure> took_too_long() const;
    Failure broke_down(std::string const& how) const;

    std::string job_;
    std::size_t sent_ = 0; ///< Bytes of the job.
    std::size_t task_;     ///< The place of the job's type, and so of its report's.
    double timeout_seconds_;
    double longest_silence_; ///< Seconds; while it makes and writes the result.
    Observer& observer_;
    WorkerProcess worker_;
    bool asked_to_stop_ = false;
    Phase phase_ = Phase::kReading;
    Clock::time_point looked_ = Clock::now();
    double in_phase_ = 0;      ///< Seconds.
    double silent_ = 0;        ///< Seconds since the worker told anything.
    std::string input_;        ///< The last that was read or worked on.
    std::string file_at_work_; ///< The input or the output.
    bool output_open_ = true;
    std::string output_; ///< The last that libraries printed.
    std::string bytes_;  ///< Of events.
    std::optional<Failure> failure_;
    std::optional<Report> report_;
};

/// Waits until something happens to one of @p sessions or to @p stop, and takes it in. The places of the
/// sessions that have ended.
std::vector<std::size_t> wait_for(std::vector<Session*> const& sessions, Stop const& stop);

} // namespace umbrixlib::toolkit
