// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/observer.h"
#include "toolkit/base/stop.h"
#include "toolkit/tasks/jobs.h"

#include <functional>
#include <optional>

namespace umbrixlib::toolkit {

/// Has a worker do a job, and returns its report. A Failure if the worker told one, crashed, ended without a
/// word, or took longer than @p timeout_seconds lets a Session; Stopped as soon as there is a wish to stop.
Report run_job(Job const& job, Observer& observer, Stop const& stop, double timeout_seconds = 60);

/// The same with the report of the job's own type.
template <typename OneJob>
typename OneJob::Report run_one(OneJob const& job, Observer& observer, Stop const& stop,
                                double timeout_seconds = 60)
{
    return std::get<typename OneJob::Report>(run_job(job, observer, stop, timeout_seconds));
}

/// Has a worker of a pool walk a folder, which tells of notes and of what was printed. After the first wish
/// to stop the file at work is finished, after the second it is left as it is, which may be half written.
/// Nothing if there was such a wish, else as run_one().
/// @param stopping Called at the first wish if the worker is still at work.
std::optional<FolderReport> run_walk(FolderJob const& job, Observer& observer, Stop const& stop,
                                     std::function<void()> const& stopping, double timeout_seconds = 60);

} // namespace umbrixlib::toolkit
