// SPDX-License-Identifier: MIT
/// What is told of many files while they are worked on.
#include "apps/umbrix/terminal/batch_display.h"
#include "cli/batch_folder.h"
#include "terminal.h"

#include <regex>

namespace umbrixlib::test {
namespace {

using namespace std::string_literals;

class BatchResults : public BatchTest {
protected:
    static std::size_t count_of(std::string const& part, std::string const& text)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
            ++count;
        }
        return count;
    }

    /// Waits for the first two results of a run whose third takes minutes, and ends it.
    void expect_results_at_once(Arguments const& arguments, std::string const& place) const
    {
        RunningTool tool(folder(), arguments, with_scratch());
        EXPECT_TRUE(tool.wait_for_result("failed   " + place + "b.png: it is damaged"));
        EXPECT_TRUE(tool.wait_for_result("done     " + place + "a.tga -> "));
        EXPECT_FALSE(std::filesystem::exists(folder() / "in/c_Umbrix.tga"));
        EXPECT_TRUE(tool.wait_for_text("3 of 3 "));
        tool.send(SIGINT);
        EXPECT_TRUE(tool.wait_for_text("stopping"));
        tool.send(SIGINT);
        Outcome const outcome = tool.finish();
        EXPECT_EQ(outcome.code, 130) << outcome.err;
        EXPECT_EQ(count_of("\nstopped  ", outcome.out), 1U) << outcome.out;
    }
};

TEST_F(BatchResults, AreToldAsEachFileIsDone)
{
    put("in/a.tga", hill(8));
    put_text("in/b.png", "no picture");
    put("in/c.tga", hill(1024));
    Arguments const slow{"--rays", "10000", "--radius", "4", "--relief", "1"};
    Arguments batch{"batch", "in", "--jobs", "1", "--progress", "lines"};
    batch.insert(batch.end(), slow.begin(), slow.end());
    expect_results_at_once(batch, "in/");
    std::filesystem::remove(folder() / "in/a_Umbrix.tga");

    Arguments add{"list", "add", "x.ulist", "in", "--height-map", "--n-scale", "1"};
    add.insert(add.end(), slow.begin(), slow.end());
    ASSERT_EQ(run(add).code, 0);
    expect_results_at_once({"list", "run", "x.ulist", "--jobs", "1", "--progress", "lines"},
                           (folder() / "in/").string());
}

TEST_F(BatchResults, SayHowMuchTimeIsLeftOnATerminal)
{
    for (char const* name : {"in/a.tga", "in/b.tga", "in/c.tga"}) {
        put(name, hill(16));
    }
    Shown const shown =
        run_on_terminal(folder(), {"batch", "in", "--jobs", "1"}, with_scratch(), {STDERR_FILENO});
    EXPECT_EQ(shown.outcome.code, 0);
    EXPECT_NE(shown.text.find(" 1 of 3 a.tga"), std::string::npos) << shown.text;
    EXPECT_TRUE(std::regex_search(shown.text, std::regex(" 2 of 3, [0-9]+ (s|min) left: b\\.tga")))
        << shown.text;
    EXPECT_TRUE(std::regex_search(shown.text, std::regex(" 3 of 3, [0-9]+ (s|min) left: c\\.tga")))
        << shown.text;
    Outcome const lines = run({"batch", "in", "--jobs", "1", "--overwrite", "--progress", "lines"});
    EXPECT_EQ(lines.err.find("left"), std::string::npos) << lines.err;
}

TEST_F(BatchResults, ThatFailedAreRepeatedBelowTheOthersOnATerminal)
{
    put_text("in/a.png", "no picture");
    put("in/b.tga", hill(16));
    put_text("in/c.png", "no picture");
    Arguments const arguments{"batch", "in", "--jobs", "1", "--overwrite", "--progress", "none"};
    std::string const text = run_on_terminal(folder(), arguments, with_scratch()).text;
    EXPECT_EQ(count_of("failed   in/a.png: ", text), 2U) << text;
    EXPECT_EQ(count_of("failed   in/c.png: ", text), 2U) << text;
    EXPECT_NE(text.find("format\n1 done, 0 skipped, 2 failed; "), std::string::npos) << text;
    EXPECT_EQ(count_of("failed   in/a.png: ", run(arguments).out), 1U);
    std::filesystem::remove(folder() / "in/b.tga");
    EXPECT_EQ(count_of("failed   in/a.png: ", run_on_terminal(folder(), arguments, with_scratch()).text), 1U);
}

TEST_F(BatchResults, AreNamesThatEndInAZeroByteIfAsked)
{
    put("in/a\n -> b.tga", hill(16));
    put("in/c\xff.tga", hill(16));
    put("in/d.tga", hill(16));
    put("in/d_Umbrix.tga", {1});
    put_text("in/e.png", "no picture");
    std::string const made = "in/a\n -> b.tga\0in/a\n -> b_Umbrix.tga\0in/c\xff.tga\0in/c\xff_Umbrix.tga\0"s;
    Outcome const planned = run({"batch", "in", "--print0", "--dry-run"});
    EXPECT_EQ(planned.code, 0) << planned.err;
    EXPECT_EQ(planned.out, made + "in/e.png\0in/e_Umbrix.png\0"s);
    Outcome const outcome = run({"batch", "in", "--print0", "--jobs", "1"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, made);
    EXPECT_EQ(outcome.err.find("failed   in/e.png: it is damaged"), 0U) << outcome.err;
    EXPECT_EQ(run({"batch", "in", "--print0", "--json"}).code, 2);
    EXPECT_EQ(run({"batch", "in", "--print0", "--plain"}).code, 2);

    ASSERT_EQ(run({"list", "add", "x.ulist", "in/a\n -> b.tga", "in/d.tga", "--height-map"}).code, 0);
    std::string const at = (folder() / "in/").string();
    Outcome const shown = run({"list", "show", "x.ulist", "--print0"});
    EXPECT_EQ(shown.code, 0) << shown.err;
    EXPECT_EQ(shown.out, at + "a\n -> b.tga\0"s + at + "d.tga\0"s);
    EXPECT_EQ(run({"list", "show", "x.ulist", "--print0", "--json"}).code, 2);
    EXPECT_EQ(run({"list", "run", "x.ulist", "--print0", "--overwrite", "--dry-run"}).out,
              at + "a\n -> b.tga\0"s + at + "a\n -> b_Umbrix.tga\0"s + at + "d.tga\0"s + at +
                  "d_Umbrix.tga\0"s);
}

TEST(TimeInWords, IsRoundedUp)
{
    using umbrix_cli::time_in_words;
    EXPECT_EQ(time_in_words(0), "1 s");
    EXPECT_EQ(time_in_words(1.01), "2 s");
    EXPECT_EQ(time_in_words(59), "59 s");
    EXPECT_EQ(time_in_words(59.5), "1 min");
    EXPECT_EQ(time_in_words(61), "2 min");
    EXPECT_EQ(time_in_words(59 * 60), "59 min");
    EXPECT_EQ(time_in_words(3601), "1 h 1 min");
    EXPECT_EQ(time_in_words(1e300), "1000 h 0 min");
}

} // namespace
} // namespace umbrixlib::test
