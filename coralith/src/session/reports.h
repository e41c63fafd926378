// SPDX-License-Identifier: MIT
#pragma once

#include <list>
#include <mutex>
#include <string>

namespace coralith {

/// Receives one line of text without a line break. Must return, must not throw.
using ReportHandler = void (*)(char const* line);

/// Sends reports to @p handler, null for standard error. Returns the handler so far.
ReportHandler set_report_handler(ReportHandler handler);

/// The lines that were reported, each of them once. From any thread.
class Reports {
public:
    /// Hands @p line to the handler, unless the same line went there before, and remembers it as the last.
    void report(std::string const& line);

    /// The last line; empty if there is none. Valid as long as the object.
    char const* last() const;

private:
    mutable std::mutex mutex_;
    std::list<std::string> lines_; ///< Stay where they are, since callers hold on to them.
    std::string const* last_ = nullptr;
};

} // namespace coralith
