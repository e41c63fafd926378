// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/tasks/jobs.h"
#include "toolkit/workers/handed_files_internal.h"
#include "toolkit/workers/sandbox/limits_internal.h"
#include "toolkit/workers/service.h"
#include "toolkit/workers/worker_process.h"

#include <cstddef>
#include <memory>

namespace umbrixlib::toolkit {

/// Room for one worker at a time, which keeps it from job to job where it may. One that has done other jobs
/// is of no more service after 256 of them or a minute of CPU time, for a job with other rights or limits, or
/// with files that cannot be handed to it, and if it told anything unasked.
class WorkerSlot {
public:
    /// @param processors A worker's share, which outlives the slot, or null for all that this process may
    /// use.
    WorkerSlot(Service service, ProcessorSet const* processors) : service_(service), processors_(processors)
    {
    }
    ~WorkerSlot(); ///< Has the worker between two jobs end.
    WorkerSlot(WorkerSlot const&) = delete;
    WorkerSlot& operator=(WorkerSlot const&) = delete;

    /// Has a worker for @p job, a fresh one if need be. A Failure if none can be started.
    /// @param files Gets the open files of the job if it is not a fresh one: those go to it with the job.
    WorkerProcess& hire(Job const& job, HandedFiles& files);

    /// Whether the worker has done other jobs before the one that it was hired for.
    bool is_used() const { return jobs_ > 1; }

    Service service() const { return service_; }

    /// Ends the worker at once, unless it has ended.
    void drop() { worker_.reset(); }

    /// No job is to come: the worker between two jobs may end.
    void let_go() const;

private:
    void dismiss();
    bool suits(Job const& job) const;

    Service service_;
    ProcessorSet const* processors_;
    std::unique_ptr<WorkerProcess> worker_;
    std::size_t jobs_ = 0; ///< That the worker was hired for.
    Rights rights_{};
    Limits limits_{};
};

} // namespace umbrixlib::toolkit
