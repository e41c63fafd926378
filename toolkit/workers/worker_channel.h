// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/failure.h"
#include "toolkit/base/observer.h"
#include "toolkit/tasks/jobs.h"
#include "toolkit/tasks/reports.h"

#include <optional>

namespace umbrixlib::toolkit {

/// Where a worker tells what becomes of its job.
inline constexpr int kEventDescriptor = 3;

/// The worker's end of its connection: jobs from the standard input, whose end is the wish to stop, and what
/// is told of them to the descriptor above.
class WorkerChannel : public Observer {
public:
    /// Waits for a job. The files that come with it count as opened ahead. Nothing at the end of the input.
    std::optional<Job> read_job();

    void begin(Phase phase, std::string const& file) override;
    void stage(std::string_view name, int permille) override;
    void note(std::string const& file, Note const& note) override;
    bool stopping() const override;

    // One of them ends a job.
    void send(Report const& report);
    void send(Failure const& failure);
};

} // namespace umbrixlib::toolkit
