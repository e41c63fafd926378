// SPDX-License-Identifier: MIT
/// Runs that are stopped in the middle.
#include "terminal/terminal.h"

#include <fstream>
#include <thread>

namespace umbrixlib::test {
namespace {

using namespace std::chrono_literals;

class ToolInterrupt : public ToolTest {
protected:
    ToolInterrupt()
    {
        write("hill.tga", hill(1024));
        write("old.tga", {1, 2, 3});
    }

    Arguments const long_run{"map",         "hill.tga", "-o",    "old.tga",
                             "--overwrite", "--rays",   "10000", "--progress",
                             "lines",       "--relief", "1"};
};

bool ends_within(pid_t process, std::chrono::milliseconds limit)
{
    for (auto waited = 0ms; waited < limit; waited += 10ms) {
        std::ifstream status("/proc/" + std::to_string(process) + "/stat");
        std::string number, name, state;
        if (!(status >> number >> name >> state) || state == "Z") {
            return true;
        }
        std::this_thread::sleep_for(10ms);
    }
    return false;
}

TEST_F(ToolInterrupt, LeavesNothingBehind)
{
    std::set<std::string> const before = files();
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        RunningTool tool(folder(), long_run, with_scratch());
        ASSERT_TRUE(tool.wait_for_text("occlusion"));
        std::vector<pid_t> const workers = tool.children();
        ASSERT_EQ(workers.size(), 1U);
        EXPECT_GT(files().size(), before.size());
        tool.send(signal);
        Outcome const outcome = tool.finish();
        EXPECT_EQ(outcome.code, 128 + signal);
        EXPECT_NE(outcome.err.find("umbrix map: interrupted; nothing was written\n"), std::string::npos);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(ends_within(workers[0], 1s));
        EXPECT_EQ(files(), before);
        EXPECT_EQ(read("old.tga"), (Bytes{1, 2, 3}));
    }
}

TEST_F(ToolInterrupt, IsNotNoticedUnderNohup)
{
    RunningTool tool(folder(), {"normal", "hill.tga", "-o", "new.png", "--progress", "lines"}, with_scratch(),
                     [] { std::signal(SIGHUP, SIG_IGN); });
    ASSERT_TRUE(tool.wait_for_text("writing"));
    tool.send(SIGHUP);
    EXPECT_EQ(tool.finish().code, 0);
}

TEST_F(ToolInterrupt, TakesTheWorkerAlongIfTheToolIsKilled)
{
    RunningTool tool(folder(), long_run, with_scratch());
    ASSERT_TRUE(tool.wait_for_text("occlusion"));
    std::vector<pid_t> const workers = tool.children();
    ASSERT_EQ(workers.size(), 1U);
    tool.send(SIGKILL);
    EXPECT_EQ(tool.finish().code, -SIGKILL);
    EXPECT_TRUE(ends_within(workers[0], 2s));
}

TEST_F(ToolInterrupt, IsOneSentenceIfTheWorkerIsKilled)
{
    RunningTool tool(folder(), long_run, with_scratch());
    ASSERT_TRUE(tool.wait_for_text("occlusion"));
    std::vector<pid_t> const workers = tool.children();
    ASSERT_EQ(workers.size(), 1U);
    kill(workers[0], SIGKILL);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix map", "hill.tga"));
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "old.tga"}));
}

TEST_F(ToolInterrupt, ShowsABarThatFitsTheTerminal)
{
    for (unsigned short const columns : std::initializer_list<unsigned short>{200, 80, 40, 20, 8, 1}) {
        Shown const on_terminal =
            run_on_terminal(folder(), {"map", "hill.tga", "-o", "a.tga", "--overwrite", "--rays", "200"},
                            with_scratch(), {STDERR_FILENO}, columns);
        EXPECT_EQ(on_terminal.outcome.code, 0);
        std::string const& shown = on_terminal.text;
        std::string const clear = "\r\033[K";
        EXPECT_EQ(shown.find('\n'), std::string::npos) << shown;
        EXPECT_EQ(shown.rfind(clear), shown.size() - clear.size());
        std::size_t bars = 0;
        for (std::size_t at = clear.size(); at < shown.size(); ++bars) {
            std::size_t const end = shown.find(clear, at);
            EXPECT_LT(end - at, std::size_t{columns}) << shown.substr(at, end - at);
            at = end + clear.size();
        }
        EXPECT_GE(bars, 1U) << columns; // a fast machine is done before the second one
    }
}

} // namespace
} // namespace umbrixlib::test
