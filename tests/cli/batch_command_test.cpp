// SPDX-License-Identifier: MIT
/// What a batch makes and says.
#include "batch_folder.h"
#include "damaged_files.h"

namespace umbrixlib::test {
namespace {

class BatchCommand : public BatchTest {};

TEST_F(BatchCommand, MakesWhatTheCommandsForOneFileMake)
{
    put("in/hill.tga", hill(32));
    put("in/odd.tga", height_map(13, 7, [](int x, int y) { return x * 9 + y * y; }));
    ASSERT_EQ(run({"map", "in/hill.tga", "-o", "map.tga", "--rays", "9"}).code, 0);
    ASSERT_EQ(run({"normal", "in/odd.tga", "-o", "normal.tga", "--normal-y", "down", "--relief", "0.2"}).code,
              0);
    ASSERT_EQ(run({"batch", "in", "--rays", "9"}).code, 0);
    ASSERT_EQ(run({"batch", "in", "--normal", "--normal-y", "down", "--relief", "0.2"}).code, 0);
    EXPECT_EQ(read("in/hill_Umbrix.tga"), read("map.tga"));
    EXPECT_EQ(read("in/odd_Normal.tga"), read("normal.tga"));
    EXPECT_EQ(tree(), (std::set<std::string>{"map.tga", "normal.tga", "in/hill.tga", "in/odd.tga",
                                             "in/hill_Umbrix.tga", "in/odd_Umbrix.tga", "in/hill_Normal.tga",
                                             "in/odd_Normal.tga"}));
}

TEST_F(BatchCommand, MakesTheSameWithAnyNumberOfJobs)
{
    for (char const* name : {"a", "b", "c", "d", "e"}) {
        put(std::string("in/") + name + ".tga", hill(24 + name[0] - 'a'));
    }
    std::map<std::string, Bytes> first;
    for (char const* jobs : {"1", "2", "3", "50"}) {
        ASSERT_EQ(run({"batch", "in", "--keep-tree", jobs, "--jobs", jobs}).code, 0);
        auto const made = contents(folder() / jobs);
        EXPECT_EQ(made.size(), 5U);
        first = first.empty() ? made : first;
        EXPECT_EQ(made, first) << jobs;
    }
}

TEST_F(BatchCommand, LosesNothingButTheFilesThatFail)
{
    put("in/1 good.tga", hill(16));
    put("in/2 high.psd", photoshop_file(0x80000005U, 7));
    put_text("in/3 letter.png", "this is a letter, not a picture\n");
    put("in/4 empty.tga", {});
    put("in/5 wide.psd", photoshop_file(5, 0x1000));
    put("in/6 good.tga", hill(16));
    std::set<std::string> const before = tree();
    Outcome const outcome = run({"batch", "in", "--jobs", "2"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(tree(), with(before, {"in/1 good_Umbrix.tga", "in/6 good_Umbrix.tga"}));
    for (char const* row :
         {"done     in/1 good.tga -> in/1 good_Umbrix.tga, from a height map, ",
          "failed   in/2 high.psd: its size of 7 x 2147483653 is more than 268435456 texels\n",
          "failed   in/3 letter.png: it is damaged, or not an image of a known format\n",
          "failed   in/4 empty.tga: it is empty\n",
          "failed   in/5 wide.psd: it is damaged, or not an image of a known format\n",
          "\n2 done, 0 skipped, 4 failed; "}) {
        EXPECT_NE(outcome.out.find(row), std::string::npos) << row << outcome.out;
    }
    EXPECT_EQ(outcome.err, "umbrix batch: error: 4 of 6 files: they failed; the results tell why\n");
}

TEST_F(BatchCommand, TellsItsResultsAsJson)
{
    put("in/good.tga", hill(16));
    put("in/made.tga", hill(16));
    put("in/made_Umbrix.tga", {1});
    put_text("in/letter.png", "not a picture");
    Bytes const straight_up{128, 128, 255, 128, 128, 255};
    put("in/no_alpha_normal.png", png_bytes(2, PngColour::kRgb, 8, {straight_up, straight_up}));
    put("in/not \xff utf-8.tga", hill(8));
    Outcome const outcome = run({"batch", "in", "nowhere", "--json"});
    EXPECT_EQ(outcome.code, 1);
    auto const all = objects(outcome);
    ASSERT_EQ(all.size(), 7U) << outcome.out;
    nlohmann::json const& good = all.at("in/good.tga");
    EXPECT_EQ(good.at("state"), "done");
    EXPECT_EQ(good.at("target"), "in/good_Umbrix.tga");
    EXPECT_EQ(good.at("taken_for"), "height map");
    EXPECT_GT(good.at("seconds"), 0.0);
    EXPECT_GT(good.at("peak_kib"), 1000);
    EXPECT_FALSE(good.contains("reason"));
    EXPECT_EQ(all.at("in/made.tga").at("state"), "skipped");
    EXPECT_EQ(all.at("in/made.tga").at("reason"), "its output is already there");
    EXPECT_EQ(all.at("in/letter.png").at("state"), "failed");
    EXPECT_EQ(all.at("in/letter.png").at("reason"), "it is damaged, or not an image of a known format");
    EXPECT_EQ(all.at("in/not \xff utf-8.tga").at("target"), "in/not \xff utf-8_Umbrix.tga");
    EXPECT_EQ(all.at("nowhere").at("state"), "failed");
    EXPECT_EQ(all.at("nowhere").at("reason"), "there is no such file or folder");
    EXPECT_EQ(all.at("in/no_alpha_normal.png").at("notes").size(), 1U);
    nlohmann::json const& summary = all.at("");
    EXPECT_EQ(summary.at("done"), 3);
    EXPECT_EQ(summary.at("skipped"), 1);
    EXPECT_EQ(summary.at("failed"), 2);
    EXPECT_EQ(summary.at("left"), 0);
    EXPECT_EQ(outcome.out.rfind("{\"done\":3", outcome.out.size()), outcome.out.rfind('{'));
}

TEST_F(BatchCommand, NotesWhichReliefWouldHalveTheBlack)
{
    put("in/steep.tga", height_map(64, 64, [](int x, int y) { return (x * 37 + y * 101) % 256; }));
    put("in/flat.tga", hill(64));
    auto const all = objects(run({"batch", "in", "--relief", "1", "--json"}));
    ASSERT_EQ(all.at("in/steep.tga").at("notes").size(), 1U);
    std::string const note = all.at("in/steep.tga").at("notes")[0];
    EXPECT_NE(note.find(" % of the map's samples are black; a relief of 0."), std::string::npos) << note;
    Outcome const outcome = run({"batch", "in", "--relief", "1", "--overwrite"});
    EXPECT_NE(outcome.err.find("umbrix batch: note: in/steep.tga: " + note + "\n"), std::string::npos)
        << outcome.err;
}

TEST_F(BatchCommand, OnlySaysWhatItWouldDoIfAsked)
{
    put("in/a_h.tga", hill(16));
    put("in/deep/b.jpg", {1});
    put("in/done.tga", hill(16));
    put("in/done_Umbrix.tga", {1});
    std::set<std::string> const before = tree();
    Outcome const outcome = run({"batch", "in", "-r", "--dry-run"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out.rfind("skipped  in/done.tga: its output is already there\n"
                                "in/a_h.tga -> in/a_Umbrix.tga\n"
                                "in/deep/b.jpg -> in/deep/b_Umbrix.png\n"
                                "0 done, 1 skipped, 0 failed, 2 to do; ",
                                0),
              0U)
        << outcome.out;
    auto const all = objects(run({"batch", "in", "-r", "--dry-run", "--json", "--keep-tree", "out"}));
    EXPECT_EQ(all.at("in/deep/b.jpg").at("target"), "out/deep/b_Umbrix.png");
    EXPECT_EQ(all.at("in/deep/b.jpg").at("state"), "planned");
    EXPECT_EQ(all.at("").at("planned"), 3);
    EXPECT_EQ(tree(), before);
    EXPECT_FALSE(std::filesystem::exists(folder() / "out"));
}

TEST_F(BatchCommand, WantsSomethingToDo)
{
    put("in/deep/hill.tga", hill(8));
    put("made/hill_Umbrix.tga", hill(8));
    std::filesystem::create_directory(folder() / "empty");
    std::set<std::string> const before = tree();
    for (auto const& [arguments, subject, advice] :
         std::vector<std::tuple<Arguments, char const*, char const*>>{
             {{"in"}, "in", "--recurse"},
             {{"empty", "-r"}, "empty", "--include"},
             {{"in", "empty"}, "input", "--recurse"},
             {{"in", "-r", "--pattern", "*.png"}, "in", "--include"},
             {{"*.bmp"}, "*.bmp", "--recurse"},
             {{"made"}, "made", "--include-outputs"}}) {
        Arguments words{"batch"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 1) << subject;
        EXPECT_TRUE(complains_about(outcome, "umbrix batch", subject));
        EXPECT_NE(outcome.err.find(advice), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(tree(), before);
}

TEST_F(BatchCommand, RefusesWhatMakesNoSense)
{
    put("in/hill.tga", hill(8));
    std::set<std::string> const before = tree();
    std::vector<Arguments> const wrong{
        {},
        {"in", "--map", "--normal"},
        {"in", "--overwrite", "--update"},
        {"in", "--jobs", "0"},
        {"in", "--jobs", "1.5"},
        {"in", "--jobs", "many"},
        {"in", "--suffix", "a/b"},
        {"in", "--normal", "--rays", "9"},
        {"in", "--normal", "--no-light"},
        {"in", "--normal", "--height-map"},
        {"in", "--height-map", "--normal-y", "up"},
        {"in", "--no-light", "--no-occlusion"},
        {"in", "-o", "x.tga"},
    };
    for (Arguments const& each : wrong) {
        Arguments words{"batch"};
        words.insert(words.end(), each.begin(), each.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 2) << testing::PrintToString(words) << outcome.err;
        EXPECT_NE(outcome.err.find("umbrix batch: error: "), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
    EXPECT_EQ(tree(), before);
}

TEST_F(BatchCommand, ShowsProgressAsAsked)
{
    put("in/a.tga", hill(8));
    put("in/" + std::string(60, 'x') + "\u00e9.tga", hill(8));
    auto const progress = [&](char const* style) {
        Outcome const outcome = run({"batch", "in", "--overwrite", "--jobs", "1", "--progress", style});
        EXPECT_EQ(outcome.code, 0);
        return outcome.err;
    };
    EXPECT_EQ(progress("none"), "");
    EXPECT_EQ(progress("auto"), ""); // no terminal here
    EXPECT_EQ(progress("lines"), "1 of 2 a.tga\n2 of 2 ..." + std::string(34, 'x') + "\u00e9.tga 50%\n");
    std::string const bar = progress("bar");
    EXPECT_NE(bar.find("[###############...............]  50% 2 of 2, "), std::string::npos) << bar;
    EXPECT_NE(bar.find(" left: ...xxx"), std::string::npos) << bar;
    EXPECT_EQ(bar.rfind("\r\033[K"), bar.size() - 4); // taken off in the end
}

TEST_F(BatchCommand, ReportsAFileThatVanishesBeforeItsTurn)
{
    put("in/1.tga", hill(256));
    put("in/2.tga", hill(8));
    put("in/3.tga", hill(8));
    RunningTool tool(folder(), {"batch", "in", "--jobs", "1", "--rays", "3000", "--progress", "lines"},
                     with_scratch());
    ASSERT_TRUE(tool.wait_for_text("1 of 3"));
    std::filesystem::remove(folder() / "in/2.tga");
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("failed   in/2.tga: there is no such file\n"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("\n2 done, 0 skipped, 1 failed"), std::string::npos) << outcome.out;
    EXPECT_EQ(tree(), (std::set<std::string>{"in/1.tga", "in/3.tga", "in/1_Umbrix.tga", "in/3_Umbrix.tga"}));
}

TEST_F(BatchCommand, DoesNotDropAnAlphaThatWasAskedFor)
{
    put("in/a.bmp", {1});
    put("in/b.tga", hill(8));
    Outcome const outcome = run({"batch", "in", "--height-in-alpha"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("failed   in/a.bmp: .bmp files hold no alpha\n"), std::string::npos)
        << outcome.out;
    EXPECT_EQ(tga("in/b_Umbrix.tga").channels, 4);
}

} // namespace
} // namespace umbrixlib::test
