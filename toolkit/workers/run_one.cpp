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

std::optional<FolderReport> run_walk(FolderJob const& job, Observer& observer, Stop const& stop,
                                     std::function<void()> const& stopping)
{
    constexpr double kTimeoutSeconds = 60;
    Session session(job, kTimeoutSeconds, observer);
    bool asked_to_stop = false;
    for (bool at_work = true; at_work;) {
        at_work = wait_for({&session}, stop).empty();
        if (!stop.take()) {
            continue;
        }
        if (asked_to_stop) {
            return std::nullopt;
        }
        asked_to_stop = true;
        if (at_work) {
            session.ask_to_stop();
            stopping();
        }
    }
    if (asked_to_stop) {
        return std::nullopt;
    }
    return std::get<FolderReport>(session.finish());
}

} // namespace umbrixlib::toolkit
