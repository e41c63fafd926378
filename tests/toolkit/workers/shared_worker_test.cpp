// SPDX-License-Identifier: MIT
/// Pools whose workers do many pieces each, and what one piece can do to the next.
#include "stand_in_worker.h"
#include "temporary_folder.h"
#include "toolkit/base/stop.h"
#include "toolkit/workers/worker_pool.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>

namespace umbrixlib::toolkit {
namespace {

constexpr double kTimeout = 10; ///< Seconds. Pieces that hang take so long, and no other.

/// A client with jobs for stand-ins, which keeps what it hears.
class Troupe : public PoolClient {
public:
    std::unique_ptr<PoolTask> open(std::size_t index) override
    {
        if (index == stop_at) {
            stop.request();
        }
        return std::make_unique<Task>(jobs[index], timeout_seconds, started_over);
    }
    void note(std::size_t index, std::string const&, Note const& note) override
    {
        notes[index].push_back(note.text);
    }
    void end(PoolEnding const& ending) override { EXPECT_TRUE(endings.emplace(ending.index, ending).second); }
    void stopping(std::size_t) override { stop.request(); }

    std::string failure(std::size_t index) const
    {
        auto const& failure = endings.at(index).failure;
        return failure ? failure->what() : "";
    }
    MapReport const& report(std::size_t index) const
    {
        return std::get<MapReport>(endings.at(index).report.value());
    }
    int process(std::size_t index) const { return report(index).height; }

    /// Numbers of the processes that did the pieces.
    std::set<int> processes() const
    {
        std::set<int> all;
        for (auto const& [index, ending] : endings) {
            all.insert(process(index));
        }
        return all;
    }

    bool run(std::size_t workers, Service service = Service::kManyJobs)
    {
        return run_pool(jobs.size(), {workers, service}, *this, stop);
    }

    std::vector<MapJob> jobs;
    double timeout_seconds = 60;
    std::size_t stop_at = std::string::npos; ///< The piece at whose beginning there are two wishes to stop.
    StopSource stop;
    std::map<std::size_t, PoolEnding> endings;
    std::map<std::size_t, std::vector<std::string>> notes;
    int started_over = 0;

private:
    class Task : public PoolTask {
    public:
        Task(MapJob job, double timeout_seconds, int& started_over)
            : job_(std::move(job)), timeout_seconds_(timeout_seconds), started_over_(started_over)
        {
        }

        Job job() const override { return job_; }
        double timeout_seconds() const override { return timeout_seconds_; }
        void start_over() override { ++started_over_; }
        void complete(Report const&) override {}

    private:
        MapJob job_;
        double timeout_seconds_;
        int& started_over_;
    };
};

class SharedWorker : public testing::Test {
protected:
    SharedWorker() { std::ofstream(folder_ / "in") << "input"; }
    ~SharedWorker() override { EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a worker is still there"; }

    void play(std::vector<std::string> const& acts)
    {
        for (std::string const& each : acts) {
            troupe_.jobs.push_back(job(each));
        }
    }

    /// With an input that can be handed to a worker.
    MapJob job(std::string const& acts, double texels = 1e9) const
    {
        MapJob job = job_to_act(acts);
        job.files.input = (folder_ / "in").string();
        job.files.max_texels = texels;
        return job;
    }

    test::TemporaryFolder folder_;
    Troupe troupe_;
};

TEST_F(SharedWorker, DoesOnePieceAfterTheOther)
{
    play({"note a", "note b", "note c"});
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.processes().size(), 1U);
    EXPECT_EQ(troupe_.notes[2], std::vector<std::string>{"c"});
}

TEST_F(SharedWorker, IsNobodysWhereEachPieceIsToHaveItsOwn)
{
    play({"note a", "note b", "note c"});
    EXPECT_TRUE(troupe_.run(1, Service::kOneJob));
    EXPECT_EQ(troupe_.processes().size(), 3U);
}

TEST_F(SharedWorker, GivesWayToAFreshOneAfter256Pieces)
{
    play(std::vector<std::string>(260, "note a"));
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.processes().size(), 2U);
    EXPECT_EQ(troupe_.process(255), troupe_.process(0));
    EXPECT_NE(troupe_.process(256), troupe_.process(0));
}

TEST_F(SharedWorker, GivesWayToAFreshOneForOtherLimits)
{
    troupe_.jobs = {job("note a", 1e6), job("note b", 1e6), job("note c", 2e6)};
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.process(0), troupe_.process(1));
    EXPECT_NE(troupe_.process(1), troupe_.process(2));
}

TEST_F(SharedWorker, GivesWayToAFreshOneAfterAFailure)
{
    play({"note a", "fail badly", "note b", "note c"});
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.failure(1), "badly");
    EXPECT_NE(troupe_.process(0), troupe_.process(2));
    EXPECT_EQ(troupe_.process(2), troupe_.process(3));
    EXPECT_EQ(troupe_.started_over, 1);
}

/// A piece that a shared worker begins with notes ends as it does by itself.
TEST_F(SharedWorker, TellsOfAFailureOnceAndInTheWordsOfAFreshOne)
{
    play({"note a", "note b note c fail badly", "note d phase 2 abort now"});
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.failure(1), "badly");
    EXPECT_EQ(troupe_.failure(2), "writing it broke down (Aborted)");
    EXPECT_EQ(troupe_.notes[1], (std::vector<std::string>{"b", "c"}));
    EXPECT_EQ(troupe_.notes[2], std::vector<std::string>{"d"});
}

/// The first piece takes the worker over, which spoils the second.
class TakenOver : public SharedWorker, public testing::WithParamInterface<char const*> {};

TEST_P(TakenOver, MakesNoOtherPieceFail)
{
    troupe_.timeout_seconds = kTimeout;
    play({"phase 1 note a " + std::string(GetParam()), "phase 1 note b", "phase 1 note c"});
    EXPECT_TRUE(troupe_.run(1));
    for (std::size_t const index : {1U, 2U}) {
        EXPECT_EQ(troupe_.failure(index), "");
        EXPECT_EQ(troupe_.report(index).reason, troupe_.jobs[index].files.output.name);
        EXPECT_EQ(troupe_.notes[index].size(), 1U);
        EXPECT_EQ(troupe_.endings.at(index).printed, "");
    }
    EXPECT_EQ(troupe_.endings.size(), 3U);
    EXPECT_LE(troupe_.started_over, 1);
    EXPECT_TRUE(troupe_.started_over == 1 || std::string_view(GetParam()).starts_with("linger"));
}

INSTANTIATE_TEST_SUITE_P(Ways, TakenOver,
                         testing::Values("haunt abort-now", "haunt exit-0", "haunt raise-9",
                                         "haunt fail-badly", "haunt rave-on", "haunt note-x-exit-3",
                                         "haunt say-x-exit-3", "haunt phase-0-wait-60000",
                                         "haunt phase-2-raise-19-wait-60000", "linger exit-0",
                                         "linger abort-now", "linger raise-9", "linger rave-on",
                                         "linger deaf-60000"));

TEST_F(SharedWorker, ThatWasTakenOverAltersWhatItMakesLater)
{
    play({"alter bad", "note b"});
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.report(1).reason, "bad note b");
}

TEST_F(SharedWorker, ThatWasTakenOverAltersNothingOfOthers)
{
    play({"alter bad wait 300", "wait 600", "wait 600", "wait 1"});
    EXPECT_TRUE(troupe_.run(2));
    EXPECT_EQ(troupe_.processes().size(), 2U);
    for (auto const& [index, ending] : troupe_.endings) {
        bool const altered = troupe_.report(index).reason.starts_with("bad ");
        EXPECT_EQ(altered, troupe_.process(index) == troupe_.process(0)) << index;
    }
}

TEST_F(SharedWorker, CannotBeTakenOverWhereEachPieceHasItsOwn)
{
    play({"alter bad haunt abort-now", "note b", "note c"});
    EXPECT_TRUE(troupe_.run(1, Service::kOneJob));
    EXPECT_EQ(troupe_.report(1).reason, "note b");
    EXPECT_EQ(troupe_.report(2).reason, "note c");
    EXPECT_EQ(troupe_.started_over, 0);
}

/// Files with acts in them, as a batch has.
class SharedWorkerWithFiles : public SharedWorker {
protected:
    void add(std::string const& name, std::string const& acts)
    {
        std::ofstream(folder_.path() / name) << acts;
        add_job(name);
    }

    void add_job(std::string const& name)
    {
        MapJob job = this->job("");
        job.files.input = (folder_.path() / name).string();
        job.files.output.file = (folder_.path() / (name + ".out")).string();
        troupe_.jobs.push_back(job);
    }
};

TEST_F(SharedWorkerWithFiles, IsHandedTheFilesOfEachPiece)
{
    add("a", "read on write map");
    add("b", "read on write map");
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.processes().size(), 1U);
    EXPECT_EQ(troupe_.notes[1], std::vector<std::string>{"read on write map"});
}

TEST_F(SharedWorkerWithFiles, HasNoMoreDescriptorsAfter300Pieces)
{
    for (int i = 0; i < 300; ++i) {
        add("in" + std::to_string(i), "count on");
    }
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.processes().size(), 2U);
    std::string const second = troupe_.notes[1].at(0); // the first opens its files itself
    for (std::size_t const index : {2U, 100U, 255U, 257U, 299U}) {
        EXPECT_EQ(troupe_.notes[index].at(0), second);
    }
}

TEST_F(SharedWorkerWithFiles, GivesWayToAFreshOneForFilesThatCannotBeHanded)
{
    add("a", "note a");
    add_job("missing");
    add("c", "note c");
    std::ofstream(folder_ / "d.out") << "of somebody else";
    add("d", "note d");
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.processes().size(), 3U);
    EXPECT_NE(troupe_.process(0), troupe_.process(1));
    EXPECT_EQ(troupe_.process(1), troupe_.process(2));
    EXPECT_NE(troupe_.process(2), troupe_.process(3));
}

TEST_F(SharedWorkerWithFiles, WaitsForNoPipeInPlaceOfAFile)
{
    add("a", "note a");
    ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    add_job("pipe");
    add("c", "note c");
    troupe_.timeout_seconds = kTimeout;
    EXPECT_TRUE(troupe_.run(1));
    EXPECT_EQ(troupe_.failure(0), "");
    EXPECT_EQ(troupe_.failure(1), "it was still being read after 10 s");
    EXPECT_EQ(troupe_.failure(2), "");
}

TEST_F(SharedWorker, EndsAtTheSecondWishToStop)
{
    play({"note a", "phase 1 wait 60000", "note c"});
    troupe_.stop_at = 1;
    EXPECT_FALSE(troupe_.run(1));
    EXPECT_EQ(troupe_.failure(0), "");
    EXPECT_TRUE(troupe_.endings.at(1).stopped);
    EXPECT_EQ(troupe_.endings.count(2), 0U);
}

} // namespace
} // namespace umbrixlib::toolkit
