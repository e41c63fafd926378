// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"
#include "toolkit_names.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace umbrix_cli {

/// In the order of the table: what needs a look stands last.
enum class BatchState { kSkipped, kDone, kStopped, kFailed };

/// What became of one file of a batch.
struct BatchResult {
    std::filesystem::path source;
    std::filesystem::path target; ///< Empty for a place where no files could be looked for.
    BatchState state = BatchState::kDone;
    std::string reason;       ///< Unless it is done.
    std::optional<Kind> kind; ///< What the source was taken for, if it is done and that was a question.
    double seconds = 0;       ///< 0 if no worker was begun, and so the next two.
    long peak_kib = 0;        ///< Largest memory of the worker.
    std::vector<std::string> notes;
};

struct BatchSummary {
    std::size_t planned = 0; ///< Would be done.
    std::size_t done = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
    std::size_t left = 0; ///< Not begun, or stopped.
    double seconds = 0;
};

/// Prints results to standard output: as lines of JSON while they come, or as a table in the end.
class BatchReport {
public:
    explicit BatchReport(bool json) : json_(json) {}

    void add(BatchResult result);
    void add_skipped(std::filesystem::path const& source, std::filesystem::path const& target,
                     std::string const& reason);

    /// A file that would be worked on.
    void plan(std::filesystem::path const& source, std::filesystem::path const& target);

    /// @param total All files of the batch; those without a result or plan are left.
    BatchSummary finish(std::size_t total, double seconds);

private:
    void print_table() const;

    bool json_;
    BatchSummary summary_;
    std::vector<BatchResult> results_; ///< For the table.
};

} // namespace umbrix_cli
