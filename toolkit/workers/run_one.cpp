// SPDX-License-Identifier: MIT
#include "toolkit/workers/run_one.h"

#include "toolkit/workers/session_internal.h"
#include "toolkit/workers/worker_pool.h"

namespace umbrixlib::toolkit {

namespace {

class WalkTask : public PoolTask {
public:
    WalkTask(FolderJob const& job, double timeout_seconds) : job_(job), timeout_seconds_(timeout_seconds) {}

    Job job() const override { return job_; }
    double timeout_seconds() const override { return timeout_seconds_; }
    bool may_end_early() const override { return true; }
    void complete(Report const&) override {}

private:
    FolderJob const& job_;
    double timeout_seconds_;
};

class Walk : public PoolClient {
public:
    Walk(FolderJob const& job, Observer& observer, std::function<void()> const& stopping,
         double timeout_seconds)
        : job_(job), observer_(observer), stopping_(stopping), timeout_seconds_(timeout_seconds)
    {
    }

    PoolEnding ending;

private:
    std::unique_ptr<PoolTask> open(std::size_t) override
    {
        return std::make_unique<WalkTask>(job_, timeout_seconds_);
    }

    void note(std::size_t, std::string const& file, Note const& note) override { observer_.note(file, note); }

    void end(PoolEnding const& how) override
    {
        if (!how.printed.empty()) {
            observer_.printed(how.printed);
        }
        ending = how;
    }

    void stopping(std::size_t running) override
    {
        if (running > 0) {
            stopping_();
        }
    }

    FolderJob const& job_;
    Observer& observer_;
    std::function<void()> const& stopping_;
    double timeout_seconds_;
};

} // namespace

Report run_job(Job const& job, Observer& observer, Stop const& stop, double timeout_seconds)
{
    WorkerSlot slot(Service::kOneJob, nullptr);
    Session session(job, timeout_seconds, observer, slot);
    while (wait_for({&session}, stop).empty()) {
        stop.check();
    }
    stop.check();
    return session.finish();
}

std::optional<FolderReport> run_walk(FolderJob const& job, Observer& observer, Stop const& stop,
                                     std::function<void()> const& stopping, double timeout_seconds)
{
    Walk walk(job, observer, stopping, timeout_seconds);
    if (!run_pool(1, {1, Service::kOneJob}, walk, stop)) {
        return std::nullopt;
    }
    if (walk.ending.failure) {
        throw Failure(*walk.ending.failure);
    }
    return std::get<FolderReport>(*walk.ending.report);
}

} // namespace umbrixlib::toolkit
