// SPDX-License-Identifier: MIT
/// Work lists that are run: files, folders and layers, the log, shares.
#include "tool.h"

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <regex>
#include <sstream>

namespace umbrixlib::test {
namespace {

class ListRun : public ToolTest {
protected:
    ListRun()
    {
        write("a.tga", hill(32));
        write("b.tga", hill(24));
    }

    void add(Arguments const& more) const
    {
        Arguments arguments{"list", "add", "jobs.ulist"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Outcome const outcome = run(arguments);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }

    /// Runs the list and returns what became of each source, by its file name.
    std::map<std::string, std::string> states(Arguments const& more = {}, int code = 0) const
    {
        Arguments arguments{"list", "run", "jobs.ulist", "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.code, code) << outcome.err;
        std::map<std::string, std::string> found;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) {
            nlohmann::json const entry = nlohmann::json::parse(line);
            if (entry.contains("source")) {
                std::filesystem::path const source = entry["source"].get<std::string>();
                found[source.filename().string()] = entry["state"].get<std::string>();
            }
        }
        return found;
    }
    using States = std::map<std::string, std::string>;

    bool exists(std::string const& name) const { return std::filesystem::exists(folder() / name); }
};

TEST_F(ListRun, MakesWhatMapMakesWithTheSameOptions)
{
    add({"a.tga", "--rays", "20", "--relief", "0.2", "--smooth", "1"});
    EXPECT_EQ(states(), (States{{"a.tga", "done"}}));
    ASSERT_EQ(
        run({"map", "a.tga", "-o", "expected.tga", "--rays", "20", "--relief", "0.2", "--smooth", "1"}).code,
        0);
    EXPECT_EQ(read("a_Umbrix.tga"), read("expected.tga"));
}

TEST_F(ListRun, NotesWhichReliefWouldHalveTheBlack)
{
    write("steep.tga", height_map(64, 64, [](int x, int y) { return (x * 37 + y * 101) % 256; }));
    add({"steep.tga", "--relief", "1"});
    Outcome const outcome = run({"list", "run", "jobs.ulist"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(
        std::regex_search(outcome.err, std::regex("^umbrix list run: note: .*/steep\\.tga: [0-9]+ % of the "
                                                  "map's samples are black; an h-scale of 0\\.[0-9]+ "
                                                  "with an n-scale of [0-9.]+ would halve that\n$")))
        << outcome.err;
    ASSERT_EQ(run({"list", "set", "jobs.ulist", "1", "--relief", "0.01", "--n-scale", "auto"}).code, 0);
    EXPECT_EQ(run({"list", "run", "jobs.ulist"}).err, "");
}

TEST_F(ListRun, LeavesOutWhatAnEarlierRunHasMade)
{
    add({"a.tga", "b.tga", "--rays", "4"});
    EXPECT_EQ(states(), (States{{"a.tga", "done"}, {"b.tga", "done"}}));
    Bytes const first = read("b_Umbrix.tga");
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}, {"b.tga", "skipped"}}));
    std::filesystem::remove(folder() / "a_Umbrix.tga");
    EXPECT_EQ(states(), (States{{"a.tga", "done"}, {"b.tga", "skipped"}}));
    EXPECT_EQ(states({"--overwrite"}), (States{{"a.tga", "done"}, {"b.tga", "done"}}));
    EXPECT_EQ(read("b_Umbrix.tga"), first);
}

TEST_F(ListRun, MakesAnewWhatAnotherFormOfTheJobOrOfItsSourceHasMade)
{
    add({"a.tga", "b.tga", "--rays", "4", "--relief", "0.5"});
    states();
    Bytes const before = read("a_Umbrix.tga");
    ASSERT_EQ(run({"list", "set", "jobs.ulist", "1", "--rays", "30"}).code, 0);
    EXPECT_EQ(states(), (States{{"a.tga", "done"}, {"b.tga", "skipped"}}));
    EXPECT_NE(read("a_Umbrix.tga"), before);
    write("b.tga", hill(40));
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}, {"b.tga", "done"}}));
    EXPECT_EQ(tga("b_Umbrix.tga").width, 40);
}

TEST_F(ListRun, KeepsOutputsThatItDidNotMake)
{
    add({"a.tga", "--rays", "4"});
    write("a_Umbrix.tga", {1, 2, 3});
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}}));
    EXPECT_EQ(read("a_Umbrix.tga"), (Bytes{1, 2, 3}));
    EXPECT_EQ(states({"--overwrite"}), (States{{"a.tga", "done"}}));
}

TEST_F(ListRun, WorksOnFolders)
{
    std::filesystem::create_directories(folder() / "rocks/deep");
    write("rocks/x_H.tga", hill(16));
    write("rocks/y.tga", hill(16));
    write("rocks/deep/z_H.tga", hill(16));
    add({"rocks", "--search", "*_h.tga", "--height-map", "--n-scale", "2", "--rays", "4"});
    EXPECT_EQ(states({"--dry-run"}), (States{{"x_H.tga", "planned"}}));
    EXPECT_EQ(states(), (States{{"x_H.tga", "done"}}));
    EXPECT_EQ(states({"--recurse"}), (States{{"x_H.tga", "skipped"}, {"z_H.tga", "done"}}));
    EXPECT_TRUE(exists("rocks/x_Umbrix.tga"));
    EXPECT_TRUE(exists("rocks/deep/z_Umbrix.tga"));
    EXPECT_FALSE(exists("rocks/y_Umbrix.tga"));
}

TEST_F(ListRun, TakesHeightsFromLayers)
{
    write("flat.tga", height_map(32, 32, [](int, int) { return 100; }));
    write("wave.tga", height_map(32, 32, [](int x, int) { return 100 + 12 * (x % 8); }));
    std::ofstream(folder() / "stack.toml") << "[[layer]]\nfile = \"wave.tga\"\n";
    add({"flat.tga", "--height-map", "--rays", "16", "--relief", "0.3", "--layers", "stack.toml"});
    EXPECT_EQ(states(), (States{{"flat.tga", "done"}}));
    Bytes const layered = tga("flat_Umbrix.tga").pixels;
    EXPECT_NE(layered, Bytes(layered.size(), layered[0])) << "the layer has relief, the source has none";
}

TEST_F(ListRun, GoesOnPastFailuresAndTriesThemAgain)
{
    add({"a.tga", "b.tga", "--rays", "4"});
    write("a.tga", {'n', 'o'});
    EXPECT_EQ(states({}, 1), (States{{"a.tga", "failed"}, {"b.tga", "done"}}));
    std::filesystem::remove(folder() / "a.tga");
    EXPECT_EQ(states({}, 1), (States{{"a.tga", "failed"}, {"b.tga", "skipped"}}));
    write("a.tga", hill(32));
    EXPECT_EQ(states(), (States{{"a.tga", "done"}, {"b.tga", "skipped"}}));
}

TEST_F(ListRun, RefusesNumbersThatNoOptionCouldHaveGiven)
{
    add({"a.tga", "b.tga", "--rays", "4"});
    ASSERT_EQ(run({"list", "export", "jobs.ulist", "-o", "jobs.toml"}).code, 0);
    Bytes const toml = read("jobs.toml");
    std::string text(toml.begin(), toml.end());
    std::size_t const at = text.find("rays = 4");
    ASSERT_NE(at, std::string::npos) << text;
    text.replace(at, 8, "rays = -5");
    write("jobs.toml", Bytes(text.begin(), text.end()));
    ASSERT_EQ(run({"list", "import", "jobs.toml", "-o", "jobs.ulist", "--overwrite"}).code, 0);
    EXPECT_EQ(states({}, 1), (States{{"a.tga", "failed"}, {"b.tga", "done"}}));
}

TEST_F(ListRun, ARunOnAGraphicsDeviceMakesOtherOutputsAnew)
{
    add({"a.tga", "--rays", "4", "--height-map"});
    EXPECT_EQ(states(), (States{{"a.tga", "done"}}));
    Bytes const before = read("a_Umbrix.tga");
    EXPECT_EQ(states({"--gpu"}), (States{{"a.tga", "done"}}));
    EXPECT_NE(read("a_Umbrix.tga"), before) << "heights are inverted there";
    EXPECT_EQ(states({"--gpu"}), (States{{"a.tga", "skipped"}}));
    EXPECT_EQ(states(), (States{{"a.tga", "done"}}));
    EXPECT_EQ(read("a_Umbrix.tga"), before);
}

TEST_F(ListRun, SharesHoldEachJobOnce)
{
    for (char const* name : {"1.tga", "2.tga", "3.tga", "4.tga", "5.tga"}) {
        write(name, hill(16));
        add({name, "--rays", "4"});
    }
    EXPECT_EQ(states({"--shard", "2/3"}), (States{{"2.tga", "done"}, {"5.tga", "done"}}));
    EXPECT_EQ(states({"--shard", "1/3"}), (States{{"1.tga", "done"}, {"4.tga", "done"}}));
    EXPECT_EQ(states({"--shard", "3/3"}), (States{{"3.tga", "done"}}));
    EXPECT_TRUE(exists("jobs.ulist.2of3.log"));
    EXPECT_EQ(states({"--shard", "1/2"}),
              (States{{"1.tga", "skipped"}, {"3.tga", "skipped"}, {"5.tga", "skipped"}}))
        << "other shares' logs count, too";
    for (char const* shard : {"0/3", "4/3", "1", "1/0", "a/b", "1/3x"}) {
        EXPECT_EQ(run({"list", "run", "jobs.ulist", "--shard", shard}).code, 2) << shard;
    }
}

TEST_F(ListRun, RefusesTwoJobsWithOneOutput)
{
    write("r_N.tga", hill(16));
    write("r_H.tga", hill(16));
    add({"r_N.tga", "r_H.tga", "--height-map", "--n-scale", "2"});
    Outcome const outcome = run({"list", "run", "jobs.ulist"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_NE(outcome.err.find("r_N.tga"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("r_H.tga"), std::string::npos);
    EXPECT_FALSE(exists("r_Umbrix.tga"));
}

TEST_F(ListRun, ReadsALogThatAKilledRunLeftHalfWritten)
{
    add({"a.tga", "b.tga", "--rays", "4"});
    states();
    std::ofstream(folder() / "jobs.ulist.log", std::ios::app) << "{\"target\": \"half";
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}, {"b.tga", "skipped"}}));
    ASSERT_EQ(run({"list", "set", "jobs.ulist", "2", "--rays", "5"}).code, 0);
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}, {"b.tga", "done"}}));
    EXPECT_EQ(states(), (States{{"a.tga", "skipped"}, {"b.tga", "skipped"}})) << "its line is whole";
}

TEST_F(ListRun, GoesOnWhereAKilledRunStopped)
{
    for (int i = 0; i < 6; ++i) {
        std::string const name = "k" + std::to_string(i) + ".tga";
        write(name, hill(64));
        add({name, "--rays", "100"});
    }
    std::mt19937 random(5);
    for (int kill = 0; kill < 4; ++kill) {
        RunningTool tool(folder(), {"list", "run", "jobs.ulist", "--jobs", "1"}, with_scratch());
        usleep(static_cast<useconds_t>(20000 + random() % 200000));
        tool.send(kill % 2 == 0 ? SIGKILL : SIGTERM);
        tool.finish();
    }
    EXPECT_EQ(run({"list", "run", "jobs.ulist"}).code, 0);
    for (int i = 0; i < 6; ++i) {
        std::string const name = "k" + std::to_string(i);
        ASSERT_EQ(run({"map", name + ".tga", "-o", "expected.tga", "--rays", "100", "--overwrite"}).code, 0);
        EXPECT_EQ(read(name + "_Umbrix.tga"), read("expected.tga")) << name;
    }
    for (std::string const& name : files()) {
        EXPECT_NE(name[0], '.') << name;
        EXPECT_NE(name.rfind("umbrix-", 0), 0U) << name;
    }
}

} // namespace
} // namespace umbrixlib::test
