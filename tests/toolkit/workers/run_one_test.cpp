// SPDX-License-Identifier: MIT
/// One job at a time, with stand-ins for the workers.
#include "toolkit/workers/run_one.h"

#include "stand_in_worker.h"
#include "toolkit/base/failure.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace umbrixlib::toolkit {
namespace {

using namespace std::chrono_literals;

class Listener : public Observer {
public:
    void note(std::string const&, Note const& note) override { notes.push_back(note.text); }
    void stage(std::string_view name, int permille) override
    {
        stages.emplace_back(name);
        EXPECT_EQ(permille, 500);
        if (stop != nullptr) {
            stop->request();
        }
    }

    std::vector<std::string> notes;
    std::vector<std::string> stages;
    StopSource* stop = nullptr; ///< Asked to stop at each stage.
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
    auto const report = run_walk(walk_to_act("note a"), listener, NeverStop(), [] { FAIL(); });
    ASSERT_TRUE(report.has_value());
    EXPECT_TRUE(report->ran_through);
    EXPECT_EQ(listener.notes, std::vector<std::string>{"a"});
}

TEST(RunWalk, IsAskedToEndAtTheFirstWishToStop)
{
    StopSource stop;
    Listener listener;
    listener.stop = &stop;
    int times = 0;
    auto const report =
        run_walk(walk_to_act("phase 1 stage a listen 1 note b"), listener, stop, [&] { ++times; });
    EXPECT_FALSE(report.has_value());
    EXPECT_EQ(times, 1);
    EXPECT_EQ(listener.notes, std::vector<std::string>{"b"});
}

TEST(RunWalk, IsStoppedAtTheSecond)
{
    StopSource stop;
    Listener listener;
    listener.stop = &stop;
    auto const start = std::chrono::steady_clock::now();
    auto const report =
        run_walk(walk_to_act("phase 1 stage a wait 30000 note b"), listener, stop, [&] { stop.request(); });
    EXPECT_FALSE(report.has_value());
    EXPECT_TRUE(listener.notes.empty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

} // namespace
} // namespace umbrixlib::toolkit
