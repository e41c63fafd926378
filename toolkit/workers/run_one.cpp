// SPDX-License-Identifier: MIT
#include "toolkit/workers/run_one.h"

#include "toolkit/workers/session.h"

namespace umbrixlib::toolkit {

Report run_job(Job const& job, Observer& observer, Stop const& stop, double timeout_seconds)
{
    Session session(job, timeout_seconds, observer);
    while (wait_for({&session}, stop).empty()) {
        stop.check();
    }
    stop.check();
    return session.finish();
}

} // namespace umbrixlib::toolkit
