// SPDX-License-Identifier: MIT
#include "session/reports.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

namespace coralith {
namespace {

void to_standard_error(char const* line)
{
    std::fprintf(stderr, "coralith: %s\n", line);
}

std::atomic<ReportHandler> current_handler{nullptr};

} // namespace

ReportHandler set_report_handler(ReportHandler handler)
{
    return current_handler.exchange(handler);
}

void Reports::report(std::string const& line)
{
    {
        std::lock_guard const lock(mutex_);
        auto const known = std::find(lines_.begin(), lines_.end(), line);
        if (known != lines_.end()) {
            last_ = &*known;
            return;
        }
        lines_.push_back(line);
        last_ = &lines_.back();
    }
    ReportHandler const handler = current_handler.load();
    (handler != nullptr ? handler : to_standard_error)(line.c_str());
}

char const* Reports::last() const
{
    std::lock_guard const lock(mutex_);
    return last_ != nullptr ? last_->c_str() : "";
}

} // namespace coralith
