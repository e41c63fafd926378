// SPDX-License-Identifier: MIT
/// What becomes of files does not depend on the workers that they share, or do not.
#include "cli/batch_folder.h"
#include "cli/damaged_files.h"

#include <regex>

namespace umbrixlib::test {
namespace {

using namespace std::chrono_literals;

/// Lines in the order of the alphabet, without the times that files took.
std::multiset<std::string> timeless_lines(std::string const& text)
{
    std::multiset<std::string> all;
    std::istringstream lines(std::regex_replace(text, std::regex("[0-9.]+ s\n"), "\n"));
    for (std::string line; std::getline(lines, line);) {
        all.insert(line);
    }
    return all;
}

class Isolate : public BatchTest {
protected:
    /// What a run leaves for the user.
    struct Left {
        int code;
        std::multiset<std::string> out;
        std::multiset<std::string> err;
        std::map<std::string, Bytes> files;

        bool operator==(Left const&) const = default;
    };

    void put_sound_and_broken_pictures() const
    {
        for (int i = 0; i < 6; ++i) {
            put("in/" + std::to_string(i) + "_sound.tga", hill(20 + 7 * i));
        }
        Bytes cut = hill(30);
        cut.resize(cut.size() / 2);
        put("in/1_cut.tga", cut);
        put("in/1_text.png", {'t', 'e', 'x', 't'});
        put("in/3_giant.psd", photoshop_file(29000, 29000));
        put("in/4_empty.tga", {});
        put("in/6_cut.tga", cut);
    }

    Left left_by(Arguments const& arguments, std::string const& outputs) const
    {
        Outcome const outcome = run(arguments);
        Left left{outcome.code, timeless_lines(outcome.out), timeless_lines(outcome.err),
                  contents(folder() / outputs)};
        std::filesystem::remove_all(folder() / outputs);
        return left;
    }
};

TEST_F(Isolate, ChangesNothingOfWhatABatchMakesAndTells)
{
    put_sound_and_broken_pictures();
    Arguments const batch{"batch", "in", "--keep-tree", "out", "--rays", "8", "--verbose"};
    auto const with = [&](std::string const& jobs, bool isolate) {
        Arguments arguments = batch;
        arguments.insert(arguments.end(), {"--jobs", jobs});
        if (isolate) {
            arguments.emplace_back("--isolate");
        }
        return left_by(arguments, "out");
    };
    Left const expected = with("1", true);
    EXPECT_EQ(expected.code, 1);
    EXPECT_EQ(expected.files.size(), 6U);
    EXPECT_EQ(expected.out.size(), 12U) << "each file and the counts";
    for (char const* const jobs : {"1", "2", "3"}) {
        EXPECT_EQ(with(jobs, false), expected) << jobs;
        EXPECT_EQ(with(jobs, true), expected) << jobs;
    }
}

TEST_F(Isolate, ChangesNothingOfWhatAListMakesAndTells)
{
    put_sound_and_broken_pictures();
    std::filesystem::copy(folder() / "in", folder() / "kept");
    run({"list", "add", "jobs.ulist", "in", "--height-map", "--n-scale", "2", "--rays", "8"});
    auto const with = [&](std::string const& jobs, bool isolate) {
        std::filesystem::remove(folder() / "jobs.ulist.log");
        Arguments arguments{"list", "run", "jobs.ulist", "--jobs", jobs};
        if (isolate) {
            arguments.emplace_back("--isolate");
        }
        Left left = left_by(arguments, "in");
        std::filesystem::copy(folder() / "kept", folder() / "in");
        return left;
    };
    Left const expected = with("1", true);
    EXPECT_EQ(expected.code, 1);
    EXPECT_EQ(expected.files.size(), 11U + 6U);
    EXPECT_EQ(with("1", false), expected);
    EXPECT_EQ(with("2", false), expected);
}

TEST_F(Isolate, IsRefusedForTheLibrarysOwnWalk)
{
    put("in/a.tga", hill(16));
    Outcome const outcome =
        run({"batch", "--plain", "in", "--height-map", "--n-scale", "2", "--pattern", "*.tga", "--isolate"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(complains_about(outcome, "umbrix batch", "--isolate"));
}

/// Two small files, and a third at which there is time to do something.
class KilledWorker : public Isolate {
protected:
    KilledWorker()
    {
        put("in/a.tga", hill(16));
        put("in/b.tga", hill(17));
        put("in/c.tga", hill(160));
    }

    Arguments const batch_{"batch", "in",       "--keep-tree", "out",    "--rays",
                           "4000",  "--relief", "1",           "--jobs", "1"};

    /// Until work on it has begun, with a temporary beside the two outputs.
    void wait_for_the_third() const
    {
        for (auto waited = 0ms; waited < 20s && contents(folder() / "out").size() < 3; waited += 1ms) {
            std::this_thread::sleep_for(1ms);
        }
    }

    /// Kills the worker of @p tool, another one than @p before. Its number, or -1 if there is none for long.
    static pid_t kill_worker(RunningTool const& tool, pid_t before = -1)
    {
        for (auto waited = 0ms; waited < 20s; waited += 1ms) {
            for (pid_t const child : tool.children()) {
                if (child != before) {
                    kill(child, SIGKILL);
                    return child;
                }
            }
            std::this_thread::sleep_for(1ms);
        }
        return -1;
    }
};

TEST_F(KilledWorker, ThatHasDoneOtherFilesCostsNone)
{
    Left const expected = left_by(batch_, "out");
    RunningTool tool(folder(), batch_, with_scratch());
    ASSERT_TRUE(tool.wait_for_result("done     in/b.tga"));
    EXPECT_GT(kill_worker(tool), 0);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 0) << outcome.out << outcome.err;
    EXPECT_EQ(contents(folder() / "out"), expected.files);
}

TEST_F(KilledWorker, OfAFileDoneAnewCostsThatFile)
{
    put("in/c.tga", hill(1000));
    RunningTool tool(folder(), batch_, with_scratch());
    ASSERT_TRUE(tool.wait_for_result("done     in/b.tga"));
    pid_t const first = kill_worker(tool);
    EXPECT_GT(kill_worker(tool, first), 0);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 1) << outcome.out << outcome.err;
    EXPECT_NE(outcome.out.find("failed   in/c.tga: "), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("broke down (Killed)"), std::string::npos) << outcome.out;
    EXPECT_EQ(contents(folder() / "out").size(), 2U);
}

TEST_F(KilledWorker, GoesWithItsToolAtTheSecondInterrupt)
{
    put("in/c.tga", hill(1000));
    RunningTool tool(folder(), batch_, with_scratch());
    ASSERT_TRUE(tool.wait_for_result("done     in/b.tga"));
    wait_for_the_third();
    tool.send(SIGTERM);
    ASSERT_TRUE(tool.wait_for_text("again"));
    std::vector<pid_t> const workers = tool.children();
    tool.send(SIGTERM);
    EXPECT_EQ(tool.finish().code, 128 + SIGTERM);
    EXPECT_EQ(workers.size(), 1U);
    for (pid_t const worker : workers) {
        EXPECT_EQ(kill(worker, 0), -1);
    }
    EXPECT_EQ(contents(folder() / "out").size(), 2U);
}

} // namespace
} // namespace umbrixlib::test
