// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/workers/processor_share.h"
#include "toolkit/workers/sandbox/rights.h"
#include "toolkit/workers/service.h"

#include <sys/types.h>

namespace umbrixlib::toolkit {

/// A process of the program umbrix-worker. It reads jobs from its standard input, a socket, tells its events
/// to a pipe, and has another pipe for what libraries print. Of the user's environment it has what
/// worker_environment() leaves. Wishes of the system or a terminal that it end do not reach it: it ends when
/// its jobs are done, or when this process ends it or is gone.
class WorkerProcess {
public:
    /// A Failure if it cannot be started.
    /// @param of_job     What its jobs need; it has no other rights unless all_rights_are_kept().
    /// @param processors That it may use; null for those of this process. It uses no more than the user's
    ///                   OMP_NUM_THREADS.
    WorkerProcess(Rights of_job, Service service, ProcessorSet const* processors);
    ~WorkerProcess(); ///< Ends it at once if it still runs.
    WorkerProcess(WorkerProcess const&) = delete;
    WorkerProcess& operator=(WorkerProcess const&) = delete;

    int input() const { return input_; }   ///< To write jobs to.
    int events() const { return events_; } ///< To read events from.
    int output() const { return output_; } ///< To read from what libraries print.

    /// The worker finds the end of its input behind what was written.
    void end_input();

    bool is_stopped() const; ///< By a signal, and not going on.
    bool is_quiet() const;   ///< There are no events to read, and it has not closed their pipe.

    /// CPU time that it has used so far; infinite if the system does not tell.
    double cpu_seconds() const;

    void kill();
    int wait(); ///< Its status, as waitpid has it.

    /// Has a worker between two jobs end as programs do, or kills it if it does not soon.
    void dismiss();

    /// Largest memory that it held, in KiB: while it runs since forget_peak(), after wait() at any time.
    long peak_kib() const;
    void forget_peak() const;

private:
    pid_t process_ = -1;
    int input_ = -1;
    int events_ = -1;
    int output_ = -1;
    long peak_kib_ = 0;
};

} // namespace umbrixlib::toolkit
