// SPDX-License-Identifier: MIT
#include "terminal/plain_walk.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "toolkit/base/failure.h"
#include "toolkit/workers/worker_pool.h"

#include <fmt/format.h>

namespace umbrix_cli {

namespace {

constexpr char const* kCommand = "umbrix batch";

class WalkTask : public PoolTask {
public:
    explicit WalkTask(FolderJob const& job) : job_(job) {}

    Job job() const override { return job_; }
    double timeout_seconds() const override { return 60; }
    bool has_many_files() const override { return true; }
    void complete(Report const&) override {}

private:
    FolderJob const& job_;
};

/// The one piece of work of a pool.
class WalkClient : public PoolClient {
public:
    explicit WalkClient(FolderJob const& job) : job_(job) {}

    std::unique_ptr<PoolTask> open(std::size_t) override { return std::make_unique<WalkTask>(job_); }

    void note(std::size_t, std::string const& file, Note const& note) override
    {
        say_note(kCommand, file + ": " + text_of(note));
    }

    void end(PoolEnding const& ending) override { failure_ = ending.failure; }

    void stopping(std::size_t running) override
    {
        if (running > 0) {
            put_text(stderr,
                     fmt::format("{}: stopping when the file at work is finished; press Ctrl-C again to "
                                 "stop at once, which may leave half of it\n",
                                 kCommand));
        }
    }

    std::optional<Failure> const& failure() const { return failure_; }

private:
    FolderJob const& job_;
    std::optional<Failure> failure_;
};

} // namespace

void run_plain_walk(FolderJob const& job, Interrupts const& interrupts)
{
    WalkClient client(job);
    if (!run_pool(1, 1, client, interrupts)) {
        throw Stopped{"the walk was stopped; the same command begins it anew"};
    }
    if (client.failure()) {
        throw Failure(*client.failure());
    }
    say("{}: the walk ran to its end; the library does not tell what became of each file", job.folder);
}

} // namespace umbrix_cli
