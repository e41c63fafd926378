// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "terminal/batch_writer.h"
#include "terminal/progress_display.h"
#include "toolkit_names.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace umbrix_cli {

/// How the command line shows a batch.
struct BatchView {
    std::string command; ///< Begins every message: "umbrix batch".
    bool verbose = false;
    ResultsForm form = ResultsForm::kRows; ///< With JSON, notes go to the results instead of standard error.
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
    void show_progress();

    BatchView const& view_;
    std::unique_ptr<BatchWriter> writer_;
    ProgressDisplay progress_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    BatchProgress at_;
    std::filesystem::path file_; ///< That began last.
};

/// "5 s", "12 min", "3 h 5 min": rounded up, as estimates are that nobody waits for in vain.
std::string time_in_words(double seconds);

} // namespace umbrix_cli
