// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/note.h"
#include "toolkit/base/stop.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/workers/service.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace umbrixlib::toolkit {

/// One piece of work on its way through a pool. Destroyed as soon as it has ended, however it ended:
/// temporary files belong into it.
class PoolTask {
public:
    PoolTask() = default;
    virtual ~PoolTask() = default;
    PoolTask(PoolTask const&) = delete;
    PoolTask& operator=(PoolTask const&) = delete;

    virtual Job job() const = 0;

    /// Longest time for decoding a file.
    virtual double timeout_seconds() const = 0;

    /// Whether its worker is told of the first wish to stop, as Observer::stopping(), and may end early.
    virtual bool may_end_early() const { return false; }

    /// It begins anew, with another worker. What the first one may have written is of no use: job() names
    /// other outputs from now on. A Failure if that cannot be.
    virtual void start_over() {}

    /// The worker has done its part: what is left to do. A Failure if that cannot be done.
    virtual void complete(Report const& report) = 0;
};

/// How one piece of work ended.
struct PoolEnding {
    std::size_t index = 0;
    std::optional<Report> report;   ///< The worker's, if all went well.
    std::optional<Failure> failure; ///< If not.
    bool stopped = false;           ///< Neither: the user would not wait for it.
    std::string printed;            ///< The last that libraries printed in the worker, fit for a terminal.
    double seconds = 0;             ///< From the opening of the task.
    long peak_kib = 0;              ///< Largest memory of the worker meanwhile; 0 if there was none.
};

/// Who has work for a pool. All calls come from within run_pool(), one at a time.
class PoolClient {
public:
    PoolClient() = default;
    virtual ~PoolClient() = default;
    PoolClient(PoolClient const&) = delete;
    PoolClient& operator=(PoolClient const&) = delete;

    /// A worker is free for work number @p index. Null: there is nothing to do for it after all, and it does
    /// not end(). A Failure: it ends with that.
    virtual std::unique_ptr<PoolTask> open(std::size_t index) = 0;

    /// A note of the worker at work number @p index, about @p file.
    virtual void note(std::size_t index, std::string const& file, Note const& note) = 0;

    /// Called once for each task that was opened or failed to open.
    virtual void end(PoolEnding const& ending) = 0;

    /// The user wants to stop: @p running pieces are still being finished, and no other is begun.
    virtual void stopping(std::size_t running) = 0;
};

/// Who does the work of a pool.
struct PoolWorkers {
    std::size_t at_a_time = 1;
    Service service = Service::kManyJobs; ///< Of each.
};

/// Does @p count pieces of work in their order, in worker processes, each with its share of the processors.
/// What happens in a worker is the end of that piece only: one that fails in a worker that has done others
/// before is done once more in a fresh one, so a failure is always the piece's own. After the first interrupt
/// no piece is begun any more, and those that may end early are asked to; after the second those at work are
/// stopped. False if the user stopped it.
///
/// It has no threads and no state besides its arguments; several may run at a time on threads of their own.
/// Workers die with the thread that began them.
bool run_pool(std::size_t count, PoolWorkers const& workers, PoolClient& client, Stop const& stop);

} // namespace umbrixlib::toolkit
