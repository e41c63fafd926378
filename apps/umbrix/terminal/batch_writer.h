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

/// A table in the end, sorted by what became of the files.
std::unique_ptr<BatchWriter> write_table();

/// Lines of JSON while results come.
/// @param details Whether notes that are details are among them.
std::unique_ptr<BatchWriter> write_json_lines(bool details);

/// Why a file was not made, in the words of the command line.
std::string reason_of(BatchResult const& result);

} // namespace umbrix_cli
