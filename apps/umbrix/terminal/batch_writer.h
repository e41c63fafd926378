// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/batch/batch_run.h"
#include "toolkit_names.h"

#include <memory>
#include <string>

namespace umbrix_cli {

/// Writes the results of a batch to standard output.
class BatchWriter {
public:
    BatchWriter() = default;
    virtual ~BatchWriter() = default;
    BatchWriter(BatchWriter const&) = delete;
    BatchWriter& operator=(BatchWriter const&) = delete;

    /// A file that would be worked on.
    virtual void planned(BatchFile const& file) = 0;
    virtual void add(BatchResult const& result) = 0;
    virtual void finish(BatchSummary const& summary) = 0;
};

/// How results are written. In each form a file stands there as soon as it is done.
enum class ResultsForm {
    kRows,  ///< A line each.
    kJson,  ///< An object a line.
    kNames, ///< What was made of what, or would be: two names, each with a zero byte behind it.
};

/// @param details Whether JSON has notes that are details.
std::unique_ptr<BatchWriter> write_results(ResultsForm form, bool details);

/// Why a file was not made, in the words of the command line.
std::string reason_of(BatchResult const& result);

} // namespace umbrix_cli
