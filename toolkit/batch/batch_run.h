// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/kind.h"
#include "toolkit/base/note.h"
#include "toolkit/base/stop.h"
#include "toolkit/batch/batch_plan.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/workers/service.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What became of a file. What needs a look stands last.
enum class BatchState { kSkipped, kDone, kStopped, kFailed };

struct BatchResult {
    BatchFile file; ///< Without a target, a place where no files could be looked for.
    BatchState state = BatchState::kDone;
    std::string reason;             ///< If it was skipped or stopped.
    std::optional<Failure> failure; ///< If it failed.
    std::optional<Kind> kind;       ///< What the source was taken for, if it is done and that was a question.
    std::optional<NormalY> green;   ///< Direction of it, as the name of a normal map told.
    double seconds = 0;             ///< 0 if no worker was begun, and so the next two.
    long peak_kib = 0;              ///< Largest memory of the worker.
    std::vector<Note> notes;
    std::string printed; ///< The last that libraries printed in the worker, fit for a terminal.
};

struct BatchSummary {
    std::size_t planned = 0; ///< Would be done.
    std::size_t done = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
    std::size_t left = 0;       ///< Not begun, or stopped.
    std::size_t left_alone = 0; ///< For the endings of their names; they count in nothing else.
    double seconds = 0;         ///< Of the whole run.
    bool stopped = false;       ///< There was a wish to stop.

    std::size_t total() const { return planned + done + skipped + failed + left; }
};

/// What is the same for all files of a batch.
struct BatchOrders {
    /// The job for a file, without its files. A Failure if the output's name does not suit it.
    std::function<PictureJob(BatchFile const& file)> job_for;
    std::size_t workers = 1;              ///< Files at a time.
    Service service = Service::kManyJobs; ///< Of each worker.
    bool dry_run = false;                 ///< Only tell what would be made of what.
    OutputPolicy policy = OutputPolicy::kKeep;
    Saving saving{};               ///< Of every picture.
    double max_texels = 268435456; ///< Largest picture that is worked on; 2^28 is 16384 x 16384.
    double timeout_seconds = 60;   ///< Longest time for decoding a file.
};

/// How far a batch is. Counts files that are not skipped from the start.
struct BatchProgress {
    std::size_t number = 0; ///< Of the file that begins, from 1.
    std::size_t ended = 0;
    std::size_t count = 0;
};

/// What a front end is told of a batch. Each function does nothing unless overridden. All calls come from
/// within run_batch(), one at a time.
class BatchObserver {
public:
    BatchObserver() = default;
    virtual ~BatchObserver() = default;
    BatchObserver(BatchObserver const&) = delete;
    BatchObserver& operator=(BatchObserver const&) = delete;

    /// A file that would be worked on, in a dry run.
    virtual void planned(BatchFile const& /*file*/) {}

    /// A worker begins with @p file.
    virtual void begin(BatchFile const& /*file*/, BatchProgress const& /*progress*/) {}

    /// A note of the worker at work on @p file, about the file that it calls @p name.
    virtual void note(BatchFile const& /*file*/, std::string const& /*name*/, Note const& /*note*/) {}

    /// Once for each file that is not left, and each place where no files could be looked for.
    virtual void end(BatchResult const& /*result*/) {}

    /// The first wish to stop: @p running files are still being finished, and no other is begun.
    virtual void stopping(std::size_t /*running*/) {}
};

/// Does what there is to do for the files of @p plan, in worker processes. Removes what killed runs left
/// in the folders that it writes to. After the first wish to stop the files at work are finished, after the
/// second they are stopped; nothing of them is left.
BatchSummary run_batch(BatchPlan const& plan, BatchOrders const& orders, BatchObserver& observer,
                       Stop const& stop);

} // namespace umbrixlib::toolkit
