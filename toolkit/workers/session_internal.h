// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/observer.h"
#include "toolkit/base/stop.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/workers/worker_slot_internal.h"

#include <chrono>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// A worker and one job of it, from its beginning to its end. Its events go on to an observer. Several
/// sessions can be waited for at a time, with wait_for().
class Session {
public:
    static constexpr std::size_t kDescriptors = 3;

    /// Has a worker of @p slot, which takes its job while it is waited for.
    /// @param slot     Outlives the session, and has one at a time.
    /// @param timeout_seconds Longest time for decoding a file. After it a worker that is stopped (SIGSTOP)
    ///                 is ended, too, and one that has told nothing for as long and the time that its work
    ///                 allows for. Time in which this process does not run does not count.
    /// @param observer   Called while the session is waited for; outlives it.
    Session(Job const& job, double timeout_seconds, Observer& observer, WorkerSlot& slot);
    ~Session(); ///< Ends the worker at once unless it has told its report to finish().
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// Writes what poll is to wait for to kDescriptors records from @p records on.
    void fill(pollfd* records) const;

    /// Whether the worker has done other jobs before.
    bool has_used_worker() const { return is_used_; }

    /// Milliseconds until advance() has to look at the time, as poll takes them.
    int poll_timeout() const;

    /// Takes in what poll found. False when the worker has done its job and waits for another one, has ended,
    /// or was ended because it decoded or was silent for too long, or did not keep to the rules: then
    /// finish() is next.
    bool advance(pollfd const* records);

    /// Tells the worker that it may end early, as Observer::stopping().
    void ask_to_stop();

    /// Waits for the worker's end unless it waits for another job, and tells the observer what libraries
    /// printed. The report, whose type is that of the job, or the Failure that the worker told or that its
    /// sudden end means.
    Report finish();

    /// Largest memory of the worker in KiB during the job, after finish(); also if that threw.
    long peak_kib() const { return peak_kib_; }

private:
    using Clock = std::chrono::steady_clock;

    void write_job();
    bool job_is_sent() const { return sent_ == job_.size(); }
    bool read_events();
    void read_output();
    bool waits_for_another_job() const;
    void count_time();
    std::optional<Failure> took_too_long() const;
    Failure broke_down(std::string const& how) const;

    std::string job_;
    std::size_t sent_ = 0; ///< Bytes of the job.
    std::size_t task_;     ///< The place of the job's type, and so of its report's.
    double timeout_seconds_;
    double longest_silence_; ///< Seconds; while it makes and writes the result.
    Observer& observer_;
    WorkerSlot& slot_;
    HandedFiles files_; ///< That the job still is to take along.
    WorkerProcess& worker_;
    bool is_used_;
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
    long peak_kib_ = 0;
    bool is_over_ = false; ///< finish() has found the end.
};

/// Waits until something happens to one of @p sessions or to @p stop, and takes it in. The places of the
/// sessions that have ended.
std::vector<std::size_t> wait_for(std::vector<Session*> const& sessions, Stop const& stop);

} // namespace umbrixlib::toolkit
