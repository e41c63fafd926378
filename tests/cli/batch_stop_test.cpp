// SPDX-License-Identifier: MIT
/// Batches that are stopped or killed in the middle, and those that go on with them.
#include "batch_folder.h"

#include <fstream>
#include <random>
#include <thread>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class BatchStop : public BatchTest {
protected:
    static constexpr int kFiles = 8;

    BatchStop()
    {
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(64 + i));
        }
        auto const start = std::chrono::steady_clock::now();
        EXPECT_EQ(run(batch_into("whole")).code, 0);
        whole_time_ = std::chrono::steady_clock::now() - start;
        whole_ = contents(folder() / "whole");
        EXPECT_EQ(whole_.size(), static_cast<std::size_t>(kFiles));
    }

    static Arguments batch_into(std::string const& target, std::string const& rays = "4000")
    {
        return {"batch", "in", "--keep-tree", target, "--rays", rays, "--relief", "1", "--jobs", "2"};
    }

    /// Waits for a part of the time that the whole batch takes.
    void wait_for_share(double share) const { std::this_thread::sleep_for(whole_time_ * share); }

    static bool is_temporary(std::string const& name)
    {
        return fs::path(name).filename().string().starts_with(".umbrix-");
    }

    static std::size_t temporaries(std::map<std::string, Bytes> const& files)
    {
        return static_cast<std::size_t>(std::count_if(
            files.begin(), files.end(), [](auto const& file) { return is_temporary(file.first); }));
    }

    /// Every file is one of the whole batch, and whole itself.
    void expect_finished_files_only(std::map<std::string, Bytes> const& files) const
    {
        for (auto const& [name, bytes] : files) {
            if (!is_temporary(name)) {
                ASSERT_TRUE(whole_.contains(name)) << name;
                EXPECT_EQ(bytes, whole_.at(name)) << name;
            }
        }
    }

    std::map<std::string, Bytes> made(std::string const& target) const
    {
        return fs::exists(folder() / target) ? contents(folder() / target) : std::map<std::string, Bytes>{};
    }

    void expect_that_the_next_run_goes_on(std::string const& target, std::size_t done) const
    {
        Outcome const outcome = run(batch_into(target));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_NE(outcome.out.find(std::to_string(kFiles - done) + " done, " + std::to_string(done) +
                                   " skipped, 0 failed; "),
                  std::string::npos)
            << outcome.out;
        EXPECT_EQ(made(target), whole_);
        EXPECT_TRUE(fs::is_empty(scratch()));
    }

    std::chrono::duration<double> whole_time_{};
    std::map<std::string, Bytes> whole_;
};

TEST_F(BatchStop, LosesNothingAtAnyMoment)
{
    std::mt19937 random(20261121);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (int trial = 0; trial < 8; ++trial) {
        SCOPED_TRACE(trial);
        std::string const target = "out" + std::to_string(trial);
        RunningTool tool(folder(), batch_into(target), with_scratch());
        wait_for_share(share(random));
        tool.send(trial % 2 == 0 ? SIGINT : SIGTERM);
        Outcome const outcome = tool.finish();
        auto const files = made(target);
        expect_finished_files_only(files);
        EXPECT_EQ(temporaries(files), 0U);
        EXPECT_TRUE(fs::is_empty(scratch()));
        if (files.size() < kFiles) {
            // A signal that comes before the tool watches for it ends it as it ends any program.
            if (outcome.code == (trial % 2 == 0 ? 130 : 143)) {
                std::string const left = std::to_string(kFiles - files.size()) + " files are left";
                EXPECT_NE(outcome.err.find("umbrix batch: interrupted; " + left), std::string::npos)
                    << outcome.err;
                EXPECT_NE(outcome.out.find(std::to_string(files.size()) + " done, 0 skipped, 0 failed, "),
                          std::string::npos)
                    << outcome.out;
            } else {
                EXPECT_TRUE(outcome.code == -SIGINT || outcome.code == -SIGTERM) << outcome.code;
                EXPECT_EQ(files.size(), 0U);
            }
        }
        expect_that_the_next_run_goes_on(target, files.size());
    }
}

TEST_F(BatchStop, FinishesWhatIsAtWork)
{
    Arguments arguments = batch_into("out");
    arguments.insert(arguments.end(), {"--progress", "lines"});
    RunningTool tool(folder(), arguments, with_scratch());
    ASSERT_TRUE(tool.wait_for_text("3 of 8"));
    tool.send(SIGINT);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 130);
    EXPECT_NE(outcome.err.find("umbrix batch: stopping when the "), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out.find("stopped"), std::string::npos) << outcome.out;
    EXPECT_GE(made("out").size(), 3U);
    EXPECT_LT(made("out").size(), 8U);
}

TEST_F(BatchStop, StopsAtOnceAtTheSecondTime)
{
    Arguments arguments = batch_into("out", "10000");
    arguments.insert(arguments.end(), {"--radius", "4", "--json"});
    put("in/0.tga", hill(1024));
    put("in/1.tga", hill(1024));
    RunningTool tool(folder(), arguments, with_scratch());
    while (temporaries(made("out")) < 2) {
        std::this_thread::sleep_for(5ms);
    }
    tool.send(SIGINT);
    ASSERT_TRUE(tool.wait_for_text("press Ctrl-C again"));
    auto const start = std::chrono::steady_clock::now();
    tool.send(SIGINT);
    Outcome const outcome = tool.finish();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
    EXPECT_EQ(outcome.code, 130);
    auto const all = objects(outcome);
    EXPECT_EQ(all.at("in/0.tga").at("state"), "stopped");
    EXPECT_EQ(all.at("in/1.tga").at("state"), "stopped");
    EXPECT_EQ(all.at("").at("left"), kFiles);
    EXPECT_EQ(made("out").size(), 0U);
    EXPECT_TRUE(fs::is_empty(scratch()));
}

TEST_F(BatchStop, DoesNotMindThatNobodyReadsItsResults)
{
    Outcome const outcome = run(batch_into("out"), {}, [] {
        int const full = open("/dev/full", O_WRONLY | O_CLOEXEC);
        dup2(full, STDOUT_FILENO);
    });
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix batch", "standard output"));
    EXPECT_EQ(made("out"), whole_);
}

TEST_F(BatchStop, CleansUpAfterABatchThatWasKilled)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> share(0.0, 0.8);
    std::size_t left_behind = 0;
    for (int trial = 0; trial < 5; ++trial) {
        SCOPED_TRACE(trial);
        std::string const target = "out" + std::to_string(trial);
        adopt_workers();
        RunningTool tool(folder(), batch_into(target), with_scratch());
        wait_for_share(share(random));
        tool.send(SIGKILL);
        int const code = tool.finish().code;
        EXPECT_TRUE(adopted_workers_end());
        auto const files = made(target);
        EXPECT_TRUE(code == -SIGKILL || files == whole_) << code; // it may have been done before
        expect_finished_files_only(files);
        left_behind += temporaries(files);
        expect_that_the_next_run_goes_on(target, files.size() - temporaries(files));
    }
    EXPECT_GT(left_behind, 0U);
}

TEST_F(BatchStop, LeavesTheFilesOfAnotherBatchAtWorkAlone)
{
    RunningTool first(folder(), batch_into("out"), with_scratch());
    while (made("out").empty()) {
        std::this_thread::sleep_for(2ms);
    }
    RunningTool second(folder(), batch_into("out"), with_scratch());
    Outcome const first_outcome = first.finish();
    Outcome const second_outcome = second.finish();
    EXPECT_EQ(first_outcome.code, 0) << first_outcome.out << first_outcome.err;
    EXPECT_EQ(second_outcome.code, 0) << second_outcome.out << second_outcome.err;
    EXPECT_EQ(made("out"), whole_);
    EXPECT_TRUE(fs::is_empty(scratch()));
}

} // namespace
} // namespace umbrixlib::test
