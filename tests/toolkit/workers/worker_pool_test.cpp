// SPDX-License-Identifier: MIT
/// The pool with stand-ins for its workers.
#include "stand_in_worker.h"
#include "toolkit/base/stop.h"
#include "toolkit/workers/worker_pool.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace umbrixlib::toolkit {
namespace {

/// A client that gives a worker acts to do, and keeps what it hears.
class Director : public PoolClient {
public:
    explicit Director(std::vector<std::string> acts) : acts_(std::move(acts)) {}

    std::unique_ptr<PoolTask> open(std::size_t index) override
    {
        ++opened;
        if (on_open) {
            on_open(index);
        }
        double const limit = limits.contains(index) ? limits.at(index) : 60.0;
        return acts_[index].empty() ? nullptr : std::make_unique<Task>(*this, acts_[index], limit);
    }
    void note(std::size_t index, std::string const& file, Note const& note) override
    {
        notes.push_back(std::to_string(index) + " " + file + ": " + note.text +
                        (note.detail ? " in detail" : ""));
    }
    void end(PoolEnding const& ending) override
    {
        EXPECT_EQ(endings.count(ending.index), 0U);
        endings[ending.index] = ending;
    }
    void stopping(std::size_t running) override
    {
        stopped_with.push_back(running);
        if (on_stopping) {
            on_stopping();
        }
    }

    std::string what(std::size_t index) const
    {
        auto const& failure = endings.at(index).failure;
        return failure ? failure->subject + ": " + failure->what() : "";
    }

    std::map<std::size_t, double> limits; ///< Seconds for decoding; else plenty.
    std::function<void(std::size_t)> on_open;
    std::function<void()> on_stopping;
    std::function<void(MapReport const&)> on_complete;
    std::map<std::size_t, PoolEnding> endings;
    std::vector<std::string> notes;
    std::vector<std::size_t> stopped_with;
    std::size_t opened = 0;
    int open_tasks = 0;
    int most_open_tasks = 0;
    int completed = 0;

private:
    class Task : public PoolTask {
    public:
        Task(Director& director, std::string act, double limit)
            : director_(director), act_(std::move(act)), limit_(limit)
        {
            director_.most_open_tasks = std::max(director_.most_open_tasks, ++director_.open_tasks);
        }
        ~Task() override { --director_.open_tasks; }

        umbrixlib::toolkit::Job job() const override { return job_to_act(act_); }
        double timeout_seconds() const override { return limit_; }
        void complete(Report const& report) override
        {
            ++director_.completed;
            if (director_.on_complete) {
                director_.on_complete(std::get<MapReport>(report));
            }
        }

    private:
        Director& director_;
        std::string act_;
        double limit_;
    };

    std::vector<std::string> acts_;
};

class WorkerPool : public testing::Test {
protected:
    bool run(Director& director, std::size_t count, std::size_t workers) const
    {
        return run_pool(count, {workers, service_}, director, stop_);
    }

    ~WorkerPool() override { EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a worker is still there"; }

    Service service_ = Service::kManyJobs;
    StopSource stop_;
};

TEST_F(WorkerPool, EndsEachPieceOnce)
{
    std::vector<std::string> acts;
    for (int i = 0; i < 30; ++i) {
        acts.push_back("note " + std::to_string(i));
    }
    Director director(acts);
    EXPECT_TRUE(run(director, acts.size(), 4));
    EXPECT_EQ(director.endings.size(), acts.size());
    for (auto const& [index, ending] : director.endings) {
        EXPECT_EQ(std::get<MapReport>(ending.report.value()).reason, acts[index]);
        EXPECT_FALSE(ending.failure || ending.stopped);
        EXPECT_GT(ending.seconds, 0.0);
        EXPECT_GT(ending.peak_kib, 0);
    }
    EXPECT_EQ(director.notes.size(), acts.size());
    EXPECT_EQ(std::count(director.notes.begin(), director.notes.end(), "7 in: 7"), 1);
    EXPECT_EQ(director.open_tasks, 0);
    EXPECT_TRUE(director.stopped_with.empty());
}

TEST_F(WorkerPool, LosesNothingButThePieceThatBreaksDown)
{
    Director director({"note a", "abort now", "note b", "exit 3", "exit 0", "rave on", "phase 1 abort now",
                       "phase 2 exit 7", "fail badly", "wait 60000", "phase 3 wait 60000",
                       "phase 1 wait 2500", "note detail"});
    director.limits = {{9, 0.4}, {10, 2.0}, {11, 2.0}};
    EXPECT_TRUE(run(director, 13, 3));
    ASSERT_EQ(director.endings.size(), 13U);
    EXPECT_EQ(director.what(0), "");
    EXPECT_EQ(director.what(1), "in: its decoder broke down (Aborted)");
    EXPECT_EQ(director.what(2), "");
    EXPECT_EQ(director.what(3), "in: its decoder broke down (exit code 3)");
    EXPECT_EQ(director.what(4), "in: its decoder broke down (exit code 0)");
    EXPECT_EQ(director.what(5), "in: its decoder broke down (its reports make no sense)");
    EXPECT_EQ(director.what(6), "in: the run broke down (Aborted)");
    EXPECT_EQ(director.what(7), "out: writing it broke down (exit code 7)");
    EXPECT_EQ(director.what(8), "in: badly");
    EXPECT_EQ(director.what(9), "in: it was still being read after 0.4 s");
    EXPECT_EQ(director.what(10), "out: it was still being read after 2 s");
    EXPECT_EQ(director.what(11), ""); // only decoding has a limit
    EXPECT_EQ(director.what(12), "");
    EXPECT_EQ(director.notes.size(), 3U);
    EXPECT_EQ(director.completed, 4);
    EXPECT_EQ(director.open_tasks, 0);
}

TEST_F(WorkerPool, KeepsWhatATerminalSendsFromWorkers)
{
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        Director director({"raise " + std::to_string(signal) + " note a"});
        EXPECT_TRUE(run(director, 1, 1));
        EXPECT_EQ(director.what(0), "") << signal;
    }
}

TEST_F(WorkerPool, GoesOnAfterPiecesThatDoNotBegin)
{
    Director director({"note a", "", "note b", "note c", "note d"});
    director.on_open = [](std::size_t index) {
        if (index == 2) {
            throw Failure(Fault::kMissingFile, "b", "it is not there");
        }
        if (index == 3) {
            throw std::runtime_error("no memory");
        }
    };
    EXPECT_TRUE(run(director, 5, 1));
    EXPECT_EQ(director.opened, 5U);
    EXPECT_EQ(director.endings.size(), 4U);
    EXPECT_EQ(director.endings.count(1), 0U);
    EXPECT_EQ(director.what(2), "b: it is not there");
    EXPECT_EQ(director.endings.at(2).peak_kib, 0);
    EXPECT_EQ(director.what(3), "umbrix: no memory");
    EXPECT_EQ(director.what(4), "");
}

TEST_F(WorkerPool, TellsIfAPieceCannotBeCompleted)
{
    Director director({"note a", "note b", "note c"});
    director.on_complete = [](MapReport const& report) {
        if (report.reason == "note b") {
            throw Failure(Fault::kNameNotTaken, "out", "it cannot take its name");
        }
    };
    EXPECT_TRUE(run(director, 3, 2));
    EXPECT_EQ(director.what(0), "");
    EXPECT_EQ(director.what(1), "out: it cannot take its name");
    EXPECT_EQ(director.what(2), "");
}

TEST_F(WorkerPool, HasAsManyAtWorkAsItIsTold)
{
    for (int const workers : {1, 3, 9}) {
        Director director(std::vector<std::string>(9, "phase 1 wait 60"));
        auto const start = std::chrono::steady_clock::now();
        EXPECT_TRUE(run(director, 9, static_cast<std::size_t>(workers)));
        EXPECT_EQ(director.most_open_tasks, workers);
        EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60) * (9 / workers));
    }
    Director nothing({});
    EXPECT_TRUE(run(nothing, 0, 4));
}

TEST_F(WorkerPool, SharesTheProcessorsOut)
{
    std::vector<int> const all = own_processors();
    for (std::size_t const workers : {std::size_t{1}, std::size_t{2}, all.size(), 2 * all.size() + 1}) {
        Director director(std::vector<std::string>(workers, "wait 20"));
        EXPECT_TRUE(run(director, workers, workers));
        std::map<int, std::size_t> used;
        for (auto const& [index, ending] : director.endings) {
            auto const& report = std::get<MapReport>(ending.report.value());
            std::vector<int> const& processors = report.difference;
            EXPECT_EQ(report.width, processors.size());
            EXPECT_GE(processors.size(), std::max<std::size_t>(all.size() / workers, 1));
            for (int const processor : processors) {
                ++used[processor];
            }
        }
        EXPECT_EQ(used.size(), all.size());
        for (auto const& [processor, times] : used) {
            EXPECT_LE(times, (workers + all.size() - 1) / all.size()) << processor;
        }
    }
    EXPECT_EQ(own_processors(), all);
}

TEST_F(WorkerPool, KeepsTheLastThatLibrariesPrinted)
{
    Director director({"say hello wait 20", "say bye fail badly", "say \x1b[2J wait 1"});
    EXPECT_TRUE(run(director, 3, 1));
    EXPECT_EQ(director.endings.at(0).printed, "hello");
    EXPECT_EQ(director.endings.at(1).printed, "bye");
    EXPECT_EQ(director.endings.at(2).printed, "\\x1B[2J");
}

TEST_F(WorkerPool, MeasuresTheMemoryOfEachWorker)
{
    Director director({"take 64", "take 1"});
    EXPECT_TRUE(run(director, 2, 1));
    EXPECT_GT(director.endings.at(0).peak_kib, 64 * 1024);
    EXPECT_LT(director.endings.at(1).peak_kib, director.endings.at(0).peak_kib - 32 * 1024);
}

TEST_F(WorkerPool, BeginsNothingAfterAWishToStop)
{
    Director director(std::vector<std::string>(10, "phase 1 wait 50"));
    director.on_open = [this](std::size_t index) {
        if (index == 4) {
            stop_.request();
        }
    };
    EXPECT_FALSE(run(director, 10, 2));
    EXPECT_EQ(director.opened, 5U);
    EXPECT_EQ(director.completed, 5);
    EXPECT_EQ(director.stopped_with.size(), 1U);
    EXPECT_GE(director.stopped_with.at(0), 1U);
}

TEST_F(WorkerPool, StopsWhatIsAtWorkAfterTheSecondWish)
{
    Director director(std::vector<std::string>(10, "phase 1 wait 20000"));
    director.on_open = [this](std::size_t index) {
        if (index == 2) {
            stop_.request();
        }
    };
    director.on_stopping = [this] { stop_.request(); };
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(run(director, 10, 3));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    ASSERT_EQ(director.endings.size(), 3U);
    for (auto const& [index, ending] : director.endings) {
        EXPECT_TRUE(ending.stopped);
        EXPECT_FALSE(ending.failure);
    }
    EXPECT_EQ(director.stopped_with, (std::vector<std::size_t>{3}));
    EXPECT_EQ(director.completed, 0);
    EXPECT_EQ(director.open_tasks, 0);
}

TEST_F(WorkerPool, LeavesNoDescriptorsBehind)
{
    auto const open_descriptors = [] {
        std::filesystem::directory_iterator const all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    auto const before = open_descriptors();
    Director director({"note a", "abort now", "rave on", "wait 60000", "fail badly", "note b"});
    director.limits = {{3, 0.1}};
    EXPECT_TRUE(run(director, 6, 3));
    EXPECT_EQ(open_descriptors(), before);
}

} // namespace
} // namespace umbrixlib::toolkit
