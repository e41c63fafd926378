// SPDX-License-Identifier: MIT
/// Which files a batch takes, and where their outputs go.
#include "batch_folder.h"

#include <climits>
#include <sys/stat.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

class BatchFiles : public BatchTest {
protected:
    /// Sources and targets as a dry run with @p arguments has them.
    std::map<std::string, std::string> planned(Arguments const& arguments) const
    {
        Arguments words{"batch", "--dry-run", "--json"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::map<std::string, std::string> all;
        for (auto const& [source, object] : objects(run(words))) {
            if (object.value("state", "") == "planned") {
                all[source] = object.at("target");
            }
        }
        return all;
    }

    std::set<std::string> sources(Arguments const& arguments) const
    {
        std::set<std::string> all;
        for (auto const& [source, target] : planned(arguments)) {
            all.insert(source);
        }
        return all;
    }

    void expect_refusal(Arguments const& arguments, std::string const& subject,
                        std::vector<std::string> const& named) const
    {
        std::set<std::string> const before = tree();
        for (bool const dry : {true, false}) {
            Arguments words{"batch"};
            words.insert(words.end(), arguments.begin(), arguments.end());
            if (dry) {
                words.emplace_back("--dry-run");
            }
            Outcome const outcome = run(words);
            EXPECT_EQ(outcome.code, 2);
            EXPECT_TRUE(complains_about(outcome, "umbrix batch", subject));
            for (std::string const& name : named) {
                EXPECT_NE(outcome.err.find(name), std::string::npos) << name << "\n" << outcome.err;
            }
            EXPECT_EQ(outcome.out, "");
        }
        EXPECT_EQ(tree(), before);
    }
};

TEST_F(BatchFiles, AreAllPicturesOfATreeWithOddNames)
{
    std::map<std::string, std::string> const wanted{
        {"in/plain.tga", "in/plain_Umbrix.tga"},
        {"in/UPPER_N.TGA", "in/UPPER_Umbrix.TGA"},
        {"in/two words.tga", "in/two words_Umbrix.tga"},
        {"in/stone_N.tga/wet_HEIGHT.tga", "in/stone_N.tga/wet_Umbrix.tga"},
        {"in/Höhe/über Grund_h.tga", "in/Höhe/über Grund_Umbrix.tga"},
        {"in/高さ/深/岩.tga", "in/高さ/深/岩_Umbrix.tga"},
        {"in/a.b/c.d/e.f.tga", "in/a.b/c.d/e.f_Umbrix.tga"},
        {"in/a.b/_h.tga", "in/a.b/_h_Umbrix.tga"},
        {"in/a.b/not \xff utf-8.tga", "in/a.b/not \xff utf-8_Umbrix.tga"},
        {"in/a.b/-dash.tga", "in/a.b/-dash_Umbrix.tga"},
    };
    std::set<std::string> all;
    for (auto const& [source, target] : wanted) {
        put(source, hill(8));
        all.insert(source);
    }
    for (char const* name : {"in/nodot", "in/Höhe/nodot_N", "in/notes.txt", "in/.hidden.tga",
                             "in/.thumbnails/small.tga", "in/a.b/c.d/tga"}) {
        put(name, hill(8));
        all.insert(name);
    }
    ASSERT_EQ(run({"batch", "in", "--recurse", "--rays", "2"}).code, 0);
    for (auto const& [source, target] : wanted) {
        all.insert(target);
        EXPECT_EQ(tga(target).width, 8) << target;
    }
    EXPECT_EQ(tree(), all);
    EXPECT_EQ(run({"batch", "in", "--recurse"}).out.rfind("skipped  in/-dash", 0), std::string::npos);
    EXPECT_EQ(tree(), all);
}

TEST_F(BatchFiles, LieInTheFolderItselfUnlessItRecurses)
{
    put("in/a.tga", {1});
    put("in/deep/b.tga", {1});
    put("in/deep/deeper/c.tga", {1});
    EXPECT_EQ(sources({"in"}), (std::set<std::string>{"in/a.tga"}));
    EXPECT_EQ(sources({"in/"}), (std::set<std::string>{"in/a.tga"}));
    EXPECT_EQ(sources({"-r", "."}),
              (std::set<std::string>{"./in/a.tga", "./in/deep/b.tga", "./in/deep/deeper/c.tga"}));
}

TEST_F(BatchFiles, MatchAPatternInAnyLetterCase)
{
    for (char const* name : {"in/a.tga", "in/B.TGA", "in/c.png", "in/.d.tga", "in/nodot", "in/deep/e.Tga",
                             "in/a.tga.meta", "in/b.txt"}) {
        put(name, {1});
    }
    EXPECT_EQ(sources({"in"}), (std::set<std::string>{"in/a.tga", "in/B.TGA", "in/c.png"}));
    EXPECT_EQ(sources({"in", "--pattern", "*.tga", "-r"}),
              (std::set<std::string>{"in/a.tga", "in/B.TGA", "in/deep/e.Tga"}));
    EXPECT_EQ(sources({"in", "--pattern", "[ab].*"}), (std::set<std::string>{"in/a.tga", "in/B.TGA"}));
    EXPECT_EQ(sources({"in", "--pattern", "?.TXT"}), (std::set<std::string>{"in/b.txt"}));
    EXPECT_EQ(sources({"in", "--pattern", "NO*"}), (std::set<std::string>{"in/nodot"}));
    EXPECT_EQ(sources({"in", "--pattern", ".*"}), (std::set<std::string>{"in/.d.tga"}));
}

TEST_F(BatchFiles, AreChosenByPatternsOfTheirNames)
{
    for (char const* name : {"in/a_h.tga", "in/b_h.tga", "in/c.tga", "in/b_rough.tga"}) {
        put(name, {1});
    }
    using Names = std::set<std::string>;
    EXPECT_EQ(sources({"--include", "*_h.*", "in"}), (Names{"in/a_h.tga", "in/b_h.tga"}));
    EXPECT_EQ(sources({"--include=C*", "--pattern", "a*", "in"}), (Names{"in/a_h.tga", "in/c.tga"}));
    EXPECT_EQ(sources({"in", "--exclude", "B*", "--exclude", "c*"}), (Names{"in/a_h.tga"}));
    EXPECT_EQ(sources({"in", "in/c.tga", "--include", "*.tga", "--exclude", "*_h*"}), (Names{"in/c.tga"}));
    EXPECT_EQ(sources({"in", "--include", "b*rough*"}), (Names{"in/b_rough.tga"}));
    EXPECT_EQ(sources({"in/b_rough.tga"}), (Names{"in/b_rough.tga"}));
}

TEST_F(BatchFiles, OfColoursAndTheLikeAreLeftAlone)
{
    Bytes const tilted{128, 160, 248, 128, 96, 248};
    Bytes const normals = png_bytes(2, PngColour::kRgb, 8, {tilted, tilted});
    put("in/rock_Displacement.tga", hill(8));
    put("in/rock_NormalGL.png", normals);
    put("in/rock_nor_dx_2k.png", normals);
    for (char const* ending :
         {"albedo",    "BaseColor", "diffuse",   "diff",    "Color",    "col",       "ao",
          "Occlusion", "rough",     "ROUGHNESS", "metal",   "metallic", "metalness", "spec",
          "specular",  "gloss",     "mask",      "opacity", "emissive", "orm",       "arm"}) {
        put(std::string("in/rock_") + ending + ".tga", hill(8));
    }
    Outcome const outcome = run({"batch", "in"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("in/rock_Displacement_Umbrix.tga, from a height map, "), std::string::npos);
    EXPECT_NE(outcome.out.find("from a normal map, green up (its name says so), "), std::string::npos);
    EXPECT_NE(outcome.out.find("from a normal map, green down (its name says so), "), std::string::npos);
    EXPECT_NE(outcome.out.find("\n3 done, 0 skipped, 0 failed, 21 left alone; "), std::string::npos)
        << outcome.out;
    EXPECT_EQ(outcome.err.find("rock_ao"), std::string::npos) << outcome.err;
    EXPECT_NE(read("in/rock_NormalGL_Umbrix.png"), read("in/rock_nor_dx_2k_Umbrix.png"));
    ASSERT_EQ(run({"batch", "in", "--normal-y", "up", "--overwrite"}).code, 0);
    EXPECT_EQ(read("in/rock_NormalGL_Umbrix.png"), read("in/rock_nor_dx_2k_Umbrix.png"));

    auto const told = objects(run({"batch", "in", "--json", "--overwrite"}));
    EXPECT_EQ(told.at("").at("left_alone"), 21);
    EXPECT_EQ(told.at("in/rock_nor_dx_2k.png").at("green"), "down");
    EXPECT_FALSE(told.at("in/rock_Displacement.tga").contains("green"));
    Outcome const verbose = run({"batch", "in", "-v", "--dry-run"});
    EXPECT_NE(
        verbose.err.find("umbrix batch: note: in/rock_ao.tga: it is left alone, as its name ends in _ao\n"),
        std::string::npos)
        << verbose.err;
    Outcome const nothing = run({"batch", "in", "--include", "rock_a?.tga"});
    EXPECT_EQ(nothing.code, 1);
    EXPECT_NE(
        nothing.err.find("in: what is found there is left alone for its name, such as rock_ao.tga; take "
                         "them with --include '*_ao*'\n"),
        std::string::npos)
        << nothing.err;
    EXPECT_EQ(sources({"in", "--normal"}), (std::set<std::string>{"in/rock_Displacement.tga"}));
}

TEST_F(BatchFiles, AreExpandedFromPatternsThatTheShellLeft)
{
    for (char const* name : {"x1/a.tga", "x1/B.TGA", "x1/deep/c.tga", "x2/d.tga", "y/e.tga", "f[1].tga"}) {
        put(name, {1});
    }
    EXPECT_EQ(sources({"x?/*.tga"}), (std::set<std::string>{"x1/a.tga", "x1/B.TGA", "x2/d.tga"}));
    EXPECT_EQ(sources({(folder() / "x*/d.tga").string()}),
              (std::set<std::string>{(folder() / "x2/d.tga").string()}));
    EXPECT_EQ(sources({"x*"}), (std::set<std::string>{"x1/a.tga", "x1/B.TGA", "x2/d.tga"})); // folders
    EXPECT_EQ(sources({"f[1].tga"}), (std::set<std::string>{"f[1].tga"}));                   // is there
    EXPECT_EQ(sources({"[x]*/deep/*", "y"}), (std::set<std::string>{"x1/deep/c.tga", "y/e.tga"}));
}

TEST_F(BatchFiles, CountOnceHoweverOftenTheyAreFound)
{
    put("in/a.tga", {1});
    fs::create_directory_symlink("in", folder() / "link");
    EXPECT_EQ(sources({"in", "in/a.tga", "./in/../in", "link", "*/a.tga"}).size(), 1U);
}

TEST_F(BatchFiles, AreFoundOnceInFoldersThatLinkToEachOther)
{
    put("in/a/one.tga", {1});
    put("in/b/two.tga", {1});
    put("elsewhere/three.tga", {1});
    fs::create_directory_symlink("..", folder() / "in/a/up");
    fs::create_directory_symlink("../b", folder() / "in/a/aside");
    fs::create_directory_symlink("self", folder() / "in/self");
    fs::create_directory_symlink("../elsewhere", folder() / "in/far");
    EXPECT_EQ(sources({"in", "-r"}),
              (std::set<std::string>{"in/a/one.tga", "in/b/two.tga", "in/far/three.tga"}));
}

TEST_F(BatchFiles, ThatCannotBeReachedAreReportedOneByOne)
{
    put("in/good.tga", hill(8));
    fs::create_symlink("nowhere", folder() / "in/broken.tga");
    ASSERT_EQ(mkfifo((folder() / "in/pipe.tga").c_str(), 0600), 0);
    std::string const too_long(NAME_MAX + 1, 'x');
    Outcome const outcome = run({"batch", "in", "gone", too_long});
    EXPECT_EQ(outcome.code, 1);
    for (std::string const line :
         {"failed   in/broken.tga: there is no such file\n", "failed   in/pipe.tga: it is not a plain file\n",
          "failed   gone: there is no such file or folder\n"}) {
        EXPECT_NE(outcome.out.find(line), std::string::npos) << outcome.out;
    }
    EXPECT_NE(outcome.out.find("failed   " + too_long + ": "), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("\n1 done, 0 skipped, 4 failed; "), std::string::npos) << outcome.out;
    EXPECT_TRUE(fs::exists(folder() / "in/good_Umbrix.tga"));
}

TEST_F(BatchFiles, InAFolderThatCannotBeReadAreAFailureOfTheFolder)
{
    put("in/good.tga", hill(8));
    // Whoever runs the test, a folder whose path is too long cannot be reached.
    std::string const name(200, 'd');
    fs::path deep = folder() / "in";
    int at = open(deep.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::vector<int> open_folders{at};
    for (int depth = 0; depth < PATH_MAX / 200 + 1; ++depth) {
        ASSERT_EQ(mkdirat(at, name.c_str(), 0700), 0);
        at = openat(at, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        open_folders.push_back(at);
    }
    if (getuid() != 0) {
        fs::create_directory(folder() / "in/locked");
        fs::permissions(folder() / "in/locked", fs::perms::none);
    }
    Outcome const outcome = run({"batch", "in", "--recurse"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("done     in/good.tga"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("failed   in/" + name), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("it cannot be looked at: File name too long"), std::string::npos);
    EXPECT_EQ(outcome.out.find("failed   in/locked") != std::string::npos, getuid() != 0) << outcome.out;
    for (std::size_t i = open_folders.size(); i > 0; --i) {
        if (i > 1) {
            unlinkat(open_folders[i - 2], name.c_str(), AT_REMOVEDIR);
        }
        close(open_folders[i - 1]);
    }
}

TEST_F(BatchFiles, AreNoOutputsOfEarlierRunsUnlessAskedFor)
{
    for (char const* name : {"in/a.tga", "in/b_Umbrix.tga", "in/c_UMBRIX.png", "in/d_Normal.tga",
                             "in/e_Lit.tga", "in/.umbrix-0000000a-abcdef.tga"}) {
        put(name, {1});
    }
    using Names = std::set<std::string>;
    EXPECT_EQ(sources({"in"}), (Names{"in/a.tga", "in/d_Normal.tga", "in/e_Lit.tga"}));
    EXPECT_EQ(sources({"in", "--normal"}), (Names{"in/a.tga", "in/e_Lit.tga"}));
    EXPECT_EQ(sources({"in", "--suffix", "_Lit"}), (Names{"in/a.tga", "in/d_Normal.tga"}));
    EXPECT_EQ(sources({"in/b_Umbrix.tga", "in/a.tga"}), (Names{"in/a.tga"})); // as the shell expands
    EXPECT_EQ(sources({"in", "--include-outputs"}),
              (Names{"in/a.tga", "in/b_Umbrix.tga", "in/c_UMBRIX.png", "in/d_Normal.tga", "in/e_Lit.tga"}));
    EXPECT_EQ(sources({"in", "--include-outputs", "--pattern", ".*"}), Names{});
}

TEST_F(BatchFiles, WithOneOutputNameAreRefusedBeforeAnythingIsWritten)
{
    put("in/good.tga", hill(8));
    put("in/rock_N.tga", hill(8));
    put("in/rock_H.tga", hill(8));
    expect_refusal({"in"}, "in/rock_Umbrix.tga", {"in/rock_N.tga", "in/rock_H.tga", "--include"});
    EXPECT_EQ(sources({"in", "--pattern", "*_h.tga"}), (std::set<std::string>{"in/rock_H.tga"}));
    put("in/wall.jpg", hill(8));
    put("in/wall.png", hill(8));
    expect_refusal({"in"}, "in/rock_Umbrix.tga", {"in/rock_N.tga", "in/rock_H.tga", "and 1 more"});

    put("x/same.tga", hill(8));
    put("y/same.tga", hill(8));
    EXPECT_EQ(sources({"x", "y"}).size(), 2U);
    expect_refusal({"x", "y", "--keep-tree", "out"}, "out/same_Umbrix.tga", {"x/same.tga", "y/same.tga"});
    EXPECT_FALSE(fs::exists(folder() / "out"));
}

TEST_F(BatchFiles, AreNeverReplacedByAnOutput)
{
    put("in/wall.tga", hill(8));
    expect_refusal({"in", "--suffix", ""}, "in/wall.tga", {"--suffix", "--keep-tree"});
    EXPECT_EQ(planned({"in", "--suffix", "", "--keep-tree", "out"}),
              (std::map<std::string, std::string>{{"in/wall.tga", "out/wall.tga"}}));

    put("two/wall.tga", hill(8));
    put("two/wall_Umbrix.tga", hill(16));
    expect_refusal({"two", "--include-outputs", "--overwrite"}, "two/wall.tga", {"two/wall_Umbrix.tga"});
    expect_refusal({"two", "--include-outputs", "--update"}, "two/wall.tga", {"two/wall_Umbrix.tga"});
    EXPECT_EQ(sources({"two", "--include-outputs"}), (std::set<std::string>{"two/wall_Umbrix.tga"}));
}

TEST_F(BatchFiles, KeepTheirTreeInAnotherFolder)
{
    put("in/a.tga", hill(8));
    put("in/deep/b.tga", hill(8));
    put("in/deep/down/c_N.tga", hill(8));
    ASSERT_EQ(run({"batch", "in", "-r", "--keep-tree", "in/new/out", "--suffix", ""}).code, 0);
    std::set<std::string> const made{
        "in/a.tga",         "in/deep/b.tga",         "in/deep/down/c_N.tga",
        "in/new/out/a.tga", "in/new/out/deep/b.tga", "in/new/out/deep/down/c.tga"};
    EXPECT_EQ(tree(), made);
    // The folder lies in the tree, and what is in it is not worked on.
    Outcome const again = run({"batch", "in", "-r", "--keep-tree", "in/new/out", "--suffix", ""});
    EXPECT_NE(again.out.find("0 done, 3 skipped, 0 failed; "), std::string::npos) << again.out;
    EXPECT_EQ(tree(), made);

    using Plan = std::map<std::string, std::string>;
    EXPECT_EQ(planned({"i?/deep/*", "--keep-tree", "o"}),
              (Plan{{"in/deep/b.tga", "o/in/deep/b_Umbrix.tga"},
                    {"in/deep/down/c_N.tga", "o/in/deep/down/c_Umbrix.tga"}}));
    EXPECT_EQ(planned({"in/*/b.tga", "--keep-tree", "o"}), (Plan{{"in/deep/b.tga", "o/deep/b_Umbrix.tga"}}));
    EXPECT_EQ(planned({"in/deep/b.tga", "--keep-tree", "o"}), (Plan{{"in/deep/b.tga", "o/b_Umbrix.tga"}}));
    EXPECT_EQ(planned({(folder() / "in/deep").string(), "--keep-tree", "o"}),
              (Plan{{(folder() / "in/deep/b.tga").string(), "o/b_Umbrix.tga"}}));
}

TEST_F(BatchFiles, FailOneByOneIfTheirFolderCannotBeMade)
{
    put("in/a.tga", hill(8));
    put("in/deep/b.tga", hill(8));
    put("out/deep", {1});
    Outcome const outcome = run({"batch", "in", "-r", "--keep-tree", "out"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.out.find("failed   in/deep/b.tga: out/deep: the folder cannot be made: "),
              std::string::npos)
        << outcome.out;
    EXPECT_TRUE(fs::exists(folder() / "out/a_Umbrix.tga"));
}

TEST_F(BatchFiles, HaveTheSuffixThatWasAskedFor)
{
    put("in/wall_h.tga", hill(8));
    ASSERT_EQ(run({"batch", "in", "--normal", "--suffix", ".normals"}).code, 0);
    ASSERT_EQ(run({"batch", "in", "--pattern", "*_h*", "--suffix", "_Lit"}).code, 0);
    EXPECT_EQ(tree(), (std::set<std::string>{"in/wall_h.tga", "in/wall.normals.tga", "in/wall_Lit.tga"}));
}

TEST_F(BatchFiles, AreSkippedIfTheirOutputIsThere)
{
    put("in/a.tga", hill(8));
    put("in/a_Umbrix.tga", {1, 2, 3});
    put("in/b.tga", hill(8));
    fs::create_directory(folder() / "in/c_Umbrix.tga");
    put("in/c.tga", hill(8));
    Outcome const outcome = run({"batch", "in"});
    EXPECT_EQ(outcome.code, 1);
    for (char const* row :
         {"skipped  in/a.tga: its output is already there\n", "\ndone     in/b.tga -> in/b_Umbrix.tga, ",
          "\nfailed   in/c.tga: it is a folder\n", "\n1 done, 1 skipped, 1 failed; "}) {
        EXPECT_NE(outcome.out.find(row), std::string::npos) << row << outcome.out;
    }
    EXPECT_EQ(read("in/a_Umbrix.tga"), (Bytes{1, 2, 3}));
}

TEST_F(BatchFiles, ReplaceTheirOutputsIfAsked)
{
    put("in/a.tga", hill(8));
    put("in/a_Umbrix.tga", {1, 2, 3});
    ASSERT_EQ(run({"batch", "in", "--overwrite"}).code, 0);
    EXPECT_EQ(tga("in/a_Umbrix.tga").width, 8);
    put("in/a.tga", height_map(4, 4, [](int, int) { return 9; }));
    ASSERT_EQ(run({"batch", "in", "--overwrite"}).code, 0);
    EXPECT_EQ(tga("in/a_Umbrix.tga").width, 4);
}

TEST_F(BatchFiles, ReplaceTheirOutputsIfTheyAreNewer)
{
    for (char const* name : {"older", "newer", "same", "fresh"}) {
        put(std::string("in/") + name + ".tga", hill(8));
    }
    auto const now = fs::last_write_time(folder() / "in/same.tga");
    for (char const* name : {"older", "newer", "same"}) {
        put(std::string("in/") + name + "_Umbrix.tga", {1});
        fs::last_write_time(folder() / "in" / (std::string(name) + "_Umbrix.tga"), now);
    }
    fs::last_write_time(folder() / "in/older.tga", now - std::chrono::seconds(1));
    fs::last_write_time(folder() / "in/same.tga", now);
    fs::last_write_time(folder() / "in/newer.tga", now + std::chrono::nanoseconds(1000000));
    auto const all = objects(run({"batch", "in", "--update", "--json"}));
    EXPECT_EQ(all.at("in/older.tga").at("reason"), "its output is up to date");
    EXPECT_EQ(all.at("in/same.tga").at("state"), "skipped");
    EXPECT_EQ(all.at("in/newer.tga").at("state"), "done");
    EXPECT_EQ(all.at("in/fresh.tga").at("state"), "done");
    EXPECT_EQ(read("in/older_Umbrix.tga"), (Bytes{1}));
    EXPECT_EQ(tga("in/newer_Umbrix.tga").width, 8);
}

} // namespace
} // namespace umbrixlib::test
