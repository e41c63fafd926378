// SPDX-License-Identifier: MIT
#pragma once

#include "batch_plan.h"
#include "batch_report.h"
#include "progress_display.h"
#include "worker_pool.h"

#include <map>
#include <vector>

namespace umbrix_cli {

/// What is the same for all files of a batch.
struct BatchOrders {
    Job job; ///< Without the fields that name files.
    OutputPolicy policy = OutputPolicy::kKeep;
    double timeout_seconds = 60;
    bool verbose = false;
    bool json = false; ///< Notes go to the report instead of standard error.
    ProgressDisplay::Style progress = ProgressDisplay::Style::kNone;
};

/// The files of a batch on their way through a pool of workers, and the results on theirs to the report.
class BatchRun : public PoolClient {
public:
    BatchRun(std::vector<BatchFile> files, BatchOrders const& orders, BatchReport& report);

    std::unique_ptr<PoolTask> open(std::size_t index) override;
    void note(std::size_t index, std::string const& file, std::string const& text, bool detail) override;
    void end(PoolEnding const& ending) override;
    void stopping(std::size_t running) override;

private:
    std::vector<BatchFile> files_;
    BatchOrders const& orders_;
    BatchReport& report_;
    ProgressDisplay display_;
    std::map<std::size_t, nlohmann::json> notes_; ///< Of files at work.
    std::size_t finished_ = 0;
};

} // namespace umbrix_cli
