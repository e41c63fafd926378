// SPDX-License-Identifier: MIT
#pragma once

#include "terminal/batch_writer.h"
#include "terminal/interrupts.h"
#include "terminal/progress_display.h"
#include "toolkit_names.h"

#include <functional>
#include <memory>
#include <string>

namespace umbrix_cli {

/// How the command line shows a batch.
struct BatchView {
    std::string command; ///< Begins every message: "umbrix batch".
    bool verbose = false;
    bool json = false; ///< Notes go to the results instead of standard error.
    ProgressDisplay::Style progress = ProgressDisplay::Style::kNone;
    /// Called as each file ends; may be empty.
    std::function<void(BatchResult const& result)> ended;
};

/// Runs a batch and prints its results. Stopped if the user stopped it, a Complaint if any file failed.
void show_batch(BatchPlan const& plan, BatchOrders const& orders, BatchView const& view,
                Interrupts const& interrupts);

/// Results to standard output, all else to standard error.
class BatchDisplay : public BatchObserver {
public:
    explicit BatchDisplay(BatchView const& view);

    void planned(BatchFile const& file) override { writer_->planned(file); }
    void begin(BatchFile const& file, BatchProgress const& progress) override;
    void note(BatchFile const& file, std::string const& name, Note const& note) override;
    void end(BatchResult const& result) override;
    void stopping(std::size_t running) override;

    void finish(BatchSummary const& summary) { writer_->finish(summary); }

private:
    BatchView const& view_;
    std::unique_ptr<BatchWriter> writer_;
    ProgressDisplay progress_;
};

} // namespace umbrix_cli
