// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/batch_report.h"
#include "terminal/interrupts.h"
#include "terminal/progress_display.h"
#include "toolkit/batch/batch_plan.h"
#include "toolkit/workers/worker_pool.h"
#include "toolkit_names.h"

#include <functional>
#include <map>
#include <vector>

namespace umbrix_cli {

/// What is the same for all files of a batch.
struct BatchOrders {
    std::string command; ///< Begins every message: "umbrix batch".
    /// The job for a file, without its files. A Failure if the output's name does not suit
    /// it.
    std::function<PictureJob(BatchFile const& file)> job_for;
    /// Called as each file ends that was begun; may be empty.
    std::function<void(BatchFile const& file, BatchResult const& result)> ended;
    std::size_t workers = 1; ///< Files at a time.
    bool dry_run = false;    ///< Only tell what would be made of what.
    OutputPolicy policy = OutputPolicy::kKeep;
    double max_texels = 0; ///< Largest picture that is worked on.
    double timeout_seconds = 60;
    bool verbose = false;
    bool json = false; ///< Notes go to the report instead of standard error.
    ProgressDisplay::Style progress = ProgressDisplay::Style::kNone;
};

/// Does what there is to do for the files of @p plan and prints the results. Removes what killed runs left in
/// the folders that it writes to. Stopped if the user stopped it, a Complaint if any file failed.
void run_batch(BatchPlan const& plan, BatchOrders const& orders, Interrupts const& interrupts);

/// The files of a batch on their way through a pool of workers, and the results on theirs to the report.
class BatchRun : public PoolClient {
public:
    BatchRun(std::vector<BatchFile> files, BatchOrders const& orders, BatchReport& report);

    std::unique_ptr<PoolTask> open(std::size_t index) override;
    void note(std::size_t index, std::string const& file, Note const& note) override;
    void end(PoolEnding const& ending) override;
    void stopping(std::size_t running) override;

private:
    std::vector<BatchFile> files_;
    BatchOrders const& orders_;
    BatchReport& report_;
    ProgressDisplay display_;
    std::map<std::size_t, std::vector<std::string>> notes_; ///< Of files at work.
    std::size_t finished_ = 0;
};

} // namespace umbrix_cli
