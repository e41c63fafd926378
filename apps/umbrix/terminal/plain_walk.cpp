// SPDX-License-Identifier: MIT
#include "terminal/plain_walk.h"

#include "terminal/advice.h"
#include "terminal/put_text.h"
#include "terminal/say.h"
#include "toolkit/base/failure.h"
#include "toolkit/files/temporary.h"
#include "toolkit/workers/worker_pool.h"

#include <fmt/format.h>
#include <fstream>

namespace umbrix_cli {

namespace {

constexpr char const* kCommand = "umbrix batch";

class WalkTask : public PoolTask {
public:
    WalkTask(PlainWalk const& walk, std::filesystem::path const& scratch) : walk_(walk), scratch_(scratch) {}

    Job job() const override
    {
        Job job;
        job.task = Task::kFolder;
        job.input = walk_.folder.string();
        job.scratch = scratch_.string();
        job.search = walk_.search;
        job.recurse = walk_.recurse;
        job.settings = walk_.settings;
        job.kind = walk_.kind;
        job.graphics = walk_.graphics;
        return job;
    }

    Briefing briefing() const override { return {walk_.folder.string(), walk_.folder.string()}; }

    void complete(nlohmann::json const&) override {}

private:
    PlainWalk const& walk_;
    std::filesystem::path const& scratch_;
};

/// The one piece of work of a pool.
class WalkClient : public PoolClient {
public:
    explicit WalkClient(PlainWalk const& walk) : walk_(walk) {}

    std::unique_ptr<PoolTask> open(std::size_t) override
    {
        return std::make_unique<WalkTask>(walk_, scratch_.path());
    }

    void note(std::size_t, std::string const& file, Note const& note) override
    {
        say_note(kCommand, file + ": " + text_of(note));
    }

    void end(PoolEnding const& ending) override { failure_ = ending.failure; }

    void stopping(std::size_t running) override
    {
        std::ofstream(scratch_.path() / kStopRequest).flush();
        if (running > 0) {
            put_text(stderr,
                     fmt::format("{}: stopping when the file at work is finished; press Ctrl-C again to "
                                 "stop at once, which may leave half of it\n",
                                 kCommand));
        }
    }

    std::optional<Failure> const& failure() const { return failure_; }

private:
    PlainWalk const& walk_;
    ScratchFolder scratch_;
    std::optional<Failure> failure_;
};

} // namespace

void run_plain_walk(PlainWalk const& walk, Interrupts const& interrupts)
{
    WalkClient client(walk);
    if (!run_pool(1, 1, client, interrupts)) {
        throw Stopped{"the walk was stopped; the same command begins it anew"};
    }
    if (client.failure()) {
        throw Failure(*client.failure());
    }
    say("{}: the walk ran to its end; the library does not tell what became of each file",
        walk.folder.string());
}

} // namespace umbrix_cli
