// SPDX-License-Identifier: MIT
/// One job at a time, with stand-ins for the workers.
#include "toolkit/workers/run_one.h"

#include "stand_in_worker.h"
#include "toolkit/base/failure.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace umbrixlib::toolkit {
namespace {

using namespace std::chrono_literals;

class Listener : public Observer {
public:
    void note(std::string const&, Note const& note) override
    {
        notes.push_back(note.text);
        wish_to_stop();
    }
    void stage(std::string_view name, int permille) override
    {
        stages.emplace_back(name);
        EXPECT_EQ(permille, 500);
        wish_to_stop();
    }
    void printed(std::string const& lines) override { last_printed += lines; }

    std::vector<std::string> notes;
    std::vector<std::string> stages;
    std::string last_printed;
    StopSource* stop = nullptr; ///< Asked to stop at the first stage or note.

private:
    void wish_to_stop()
    {
        if (stop != nullptr) {
            std::exchange(stop, nullptr)->request();
        }
    }
};

TEST(RunOne, TellsWhatHappensAndReports)
{
    Listener listener;
    MapReport const report = run_one(job_to_act("note a stage b note c"), listener, NeverStop());
    EXPECT_EQ(report.reason, "note a stage b note c");
    EXPECT_EQ(listener.notes, (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(listener.stages, std::vector<std::string>{"b"});
}

TEST(RunOne, ThrowsWhatTheWorkerTells)
{
    Listener listener;
    try {
        run_one(job_to_act("note a fail badly"), listener, NeverStop());
        FAIL();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kNotWorkedOn);
        EXPECT_STREQ(failure.what(), "badly");
    }
    EXPECT_EQ(listener.notes.size(), 1U);
}

TEST(RunOne, CarriesJobsAndReportsThatFillEveryPipe)
{
    std::string acts = "note a";
    acts.append(2'000'000, ' ');
    Listener listener;
    EXPECT_EQ(run_one(job_to_act(acts), listener, NeverStop()).reason, acts);
}

TEST(RunOne, EndsAtAWishToStop)
{
    StopSource stop;
    Listener listener;
    listener.stop = &stop;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THROW(run_one(job_to_act("phase 1 stage a wait 30000"), listener, stop), Stopped);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

TEST(RunOne, EndsAtAWishToStopWhileALargeJobIsStillOnItsWay)
{
    StopSource stop;
    stop.request();
    std::string acts = "phase 1 wait 30000";
    acts.append(2'000'000, ' ');
    Listener listener;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THROW(run_one(job_to_act(acts), listener, stop), Stopped);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

TEST(RunWalk, RunsThroughIfNobodyStopsIt)
{
    Listener listener;
    auto const report = run_walk(walk_to_act("note a say b"), listener, NeverStop(), [] { FAIL(); });
    ASSERT_TRUE(report.has_value());
    EXPECT_TRUE(report->ran_through);
    EXPECT_EQ(listener.notes, std::vector<std::string>{"a"});
    EXPECT_EQ(listener.last_printed, "b");
}

TEST(RunWalk, ThrowsWhatTheWorkerTells)
{
    Listener listener;
    try {
        run_walk(walk_to_act("fail badly"), listener, NeverStop(), [] { FAIL(); });
        FAIL();
    } catch (Failure const& failure) {
        EXPECT_STREQ(failure.what(), "badly");
    }
}

/// How a stand-in ends that does @p acts and may be silent for @p timeout_seconds.
Fault fault_of(std::string const& acts, double timeout_seconds)
{
    MapJob job = job_to_act(acts);
    job.files.max_texels = 0;
    Listener listener;
    try {
        run_one(job, listener, NeverStop(), timeout_seconds);
    } catch (Failure const& failure) {
        return failure.fault;
    }
    return Fault::kUnexpected;
}

TEST(RunOne, EndsAWorkerThatIsSilentForTooLong)
{
    EXPECT_EQ(fault_of("wait 30000", 0.5), Fault::kDecodedTooLong);
    EXPECT_EQ(fault_of("phase 1 wait 30000", 0.5), Fault::kWorkerSilent);
    EXPECT_EQ(fault_of("phase 2 wait 30000", 0.5), Fault::kWorkerSilent);
    EXPECT_EQ(fault_of("phase 1 wait 2000 note a wait 2000 note a wait 2000", 5), Fault::kUnexpected);
}

TEST(RunOne, EndsAWorkerThatIsStopped)
{
    Listener listener;
    try {
        run_one(job_to_act("phase 1 raise 19 wait 1"), listener, NeverStop(), 0.5);
        FAIL();
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kWorkerSilent);
    }
}

TEST(RunOne, DoesNotCountTheTimeInWhichItIsStoppedItself)
{
    pid_t const runner = fork();
    if (runner == 0) {
        _exit(fault_of("phase 1 wait 6500", 4) == Fault::kUnexpected ? 0 : 1);
    }
    std::this_thread::sleep_for(500ms);
    kill(runner, SIGSTOP);
    std::this_thread::sleep_for(6s);
    kill(runner, SIGCONT);
    int end = 1;
    ASSERT_EQ(waitpid(runner, &end, 0), runner);
    EXPECT_EQ(end, 0);
}

TEST(RunWalk, IsAskedToEndAtTheFirstWishToStop)
{
    StopSource stop;
    Listener listener;
    listener.stop = &stop;
    int times = 0;
    auto const report =
        run_walk(walk_to_act("phase 1 note a listen 1 note b"), listener, stop, [&] { ++times; });
    EXPECT_FALSE(report.has_value());
    EXPECT_EQ(times, 1);
    EXPECT_EQ(listener.notes, (std::vector<std::string>{"a", "b"}));
}

TEST(RunWalk, IsStoppedAtTheSecond)
{
    StopSource stop;
    Listener listener;
    listener.stop = &stop;
    auto const start = std::chrono::steady_clock::now();
    auto const report =
        run_walk(walk_to_act("phase 1 note a wait 30000 note b"), listener, stop, [&] { stop.request(); });
    EXPECT_FALSE(report.has_value());
    EXPECT_EQ(listener.notes, std::vector<std::string>{"a"});
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

} // namespace
} // namespace umbrixlib::toolkit
