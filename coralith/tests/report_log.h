// SPDX-License-Identifier: MIT
#pragma once

#include "session/reports.h"

#include <string>
#include <vector>

namespace coralith::test {

/// Collects reports as long as it lives. One at a time.
class ReportLog {
public:
    ReportLog()
    {
        lines().clear();
        before_ = set_report_handler([](char const* line) { lines().emplace_back(line); });
    }
    ReportLog(ReportLog const&) = delete;
    ReportLog& operator=(ReportLog const&) = delete;
    ~ReportLog() { set_report_handler(before_); }

    static std::vector<std::string>& lines()
    {
        static std::vector<std::string> collected;
        return collected;
    }

private:
    ReportHandler before_;
};

} // namespace coralith::test
