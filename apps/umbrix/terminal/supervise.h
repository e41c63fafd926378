// SPDX-License-Identifier: MIT
#pragma once

#include "interrupts/interrupts.h"
#include "terminal/progress_display.h"
#include "toolkit/workers/run_one.h"
#include "toolkit_names.h"

#include <string>

namespace umbrix_cli {

/// What a supervised job needs besides itself.
struct Supervision {
    std::string command; ///< Begins every message: "umbrix map".
    double timeout_seconds;
    bool verbose;
    ProgressDisplay::Style progress;
    Interrupts const& interrupts;
};

/// Shows on standard error what becomes of a job.
class JobDisplay : public Observer {
public:
    explicit JobDisplay(Supervision const& supervision)
        : supervision_(supervision), progress_(supervision.progress)
    {
    }

    void begin(Phase phase, std::string const& file) override;
    void stage(std::string_view name, int permille) override;
    void note(std::string const& file, Note const& note) override;
    void printed(std::string const& lines) override;

private:
    Supervision const& supervision_;
    ProgressDisplay progress_;
};

/// Before the first worker of a command: tells if workers keep the user's rights, by --no-sandbox or because
/// the system cannot take them.
/// @param command Begins the note: "umbrix map".
void note_missing_sandbox(std::string const& command);

/// Has a worker do @p job, shows its progress and notes, and returns its report; as run_one().
template <typename OneJob>
typename OneJob::Report supervise(OneJob const& job, Supervision const& supervision)
{
    note_missing_sandbox(supervision.command);
    JobDisplay display(supervision);
    return run_one(job, display, supervision.interrupts, supervision.timeout_seconds);
}

} // namespace umbrix_cli
