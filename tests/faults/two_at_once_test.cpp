// SPDX-License-Identifier: MIT
/// Several processes of the tool in one folder at the same time.
#include "batch_folder.h"

#include <sys/file.h>
#include <thread>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

class TwoAtOnce : public BatchTest {
protected:
    static constexpr int kFiles = 6;

    TwoAtOnce()
    {
        for (int i = 0; i < kFiles; ++i) {
            put("in/" + std::to_string(i) + ".tga", hill(24 + i));
        }
    }

    /// Starts a process for each and waits for all of them.
    std::vector<Outcome> run_together(std::vector<Arguments> const& all) const
    {
        std::vector<std::unique_ptr<RunningTool>> running;
        for (Arguments const& arguments : all) {
            running.push_back(std::make_unique<RunningTool>(folder(), arguments, with_scratch()));
        }
        std::vector<Outcome> outcomes;
        for (auto const& each : running) {
            outcomes.push_back(each->finish());
        }
        EXPECT_TRUE(fs::is_empty(scratch()));
        return outcomes;
    }

    static void expect_done(std::vector<Outcome> const& outcomes)
    {
        for (Outcome const& outcome : outcomes) {
            EXPECT_EQ(outcome.code, 0) << outcome.err << outcome.out;
        }
    }

    std::size_t jobs_in(std::string const& list) const
    {
        Outcome const shown = run({"list", "show", list, "--json"});
        EXPECT_EQ(shown.code, 0) << shown.err;
        return nlohmann::json::parse(shown.out).at("jobs").size();
    }

    std::map<std::string, Bytes> maps() const
    {
        auto files = contents(folder() / "in");
        std::erase_if(files,
                      [](auto const& file) { return file.first.find("_Umbrix.") == std::string::npos; });
        return files;
    }

    void remove_maps() const
    {
        for (auto const& [name, bytes] : maps()) {
            fs::remove(folder() / "in" / name);
        }
    }
};

TEST_F(TwoAtOnce, BatchesMakeEachFile)
{
    Arguments const batch{"batch", "in", "--rays", "60", "--jobs", "2", "--json"};
    expect_done({run(batch)});
    auto const whole = maps();
    ASSERT_EQ(whole.size(), static_cast<std::size_t>(kFiles));
    for (bool const overwrite : {false, true, false, true, false, true}) {
        if (!overwrite) {
            remove_maps();
        }
        Arguments arguments = batch;
        if (overwrite) {
            arguments.emplace_back("--overwrite");
        }
        std::vector<Outcome> const outcomes = run_together({arguments, arguments});
        expect_done(outcomes);
        EXPECT_EQ(contents(folder()).size(), 2U * kFiles);
        EXPECT_EQ(maps(), whole);
        int done = 0;
        for (Outcome const& outcome : outcomes) {
            auto const all = objects(outcome);
            done += all.at("").at("done").get<int>();
            EXPECT_EQ(all.at("").at("done").get<int>() + all.at("").at("skipped").get<int>(), kFiles);
        }
        EXPECT_EQ(done, overwrite ? 2 * kFiles : kFiles);
    }
}

TEST_F(TwoAtOnce, MapsOfOneNameLeaveOneOfThem)
{
    Arguments const flat{"map", "in/0.tga", "-o", "out.png", "--relief", "0.1"};
    Arguments const steep{"map", "in/0.tga", "-o", "out.png", "--relief", "0.9"};
    expect_done({run(flat)});
    Bytes const with_flat = read("out.png");
    fs::remove(folder() / "out.png");
    expect_done({run(steep)});
    Bytes const with_steep = read("out.png");
    ASSERT_NE(with_flat, with_steep);
    for (int round = 0; round < 10; ++round) {
        fs::remove(folder() / "out.png");
        std::vector<Outcome> const outcomes = run_together({flat, steep});
        // The first keeps the name, and the other one says that it was too late.
        EXPECT_EQ(outcomes[0].code + outcomes[1].code, 1);
        EXPECT_TRUE(complains_about(outcomes[outcomes[0].code == 1 ? 0 : 1], "umbrix map", "out.png") ||
                    complains_about(outcomes[outcomes[0].code == 1 ? 0 : 1], "umbrix map", "./out.png"));
        EXPECT_EQ(read("out.png"), outcomes[0].code == 0 ? with_flat : with_steep);
        Arguments replace_flat = flat;
        Arguments replace_steep = steep;
        replace_flat.emplace_back("--overwrite");
        replace_steep.emplace_back("--overwrite");
        expect_done(run_together({replace_flat, replace_steep}));
        EXPECT_TRUE(read("out.png") == with_flat || read("out.png") == with_steep);
        EXPECT_EQ(contents(folder()).size(), kFiles + 1U);
    }
}

TEST_F(TwoAtOnce, ChangesOfOneListAreAllInIt)
{
    for (int round = 0; round < 5; ++round) {
        std::error_code ignored;
        fs::remove(folder() / "jobs.ulist", ignored);
        std::vector<Arguments> adding;
        for (int i = 0; i < kFiles; ++i) {
            adding.push_back({"list", "add", "jobs.ulist", "in/" + std::to_string(i) + ".tga"});
        }
        expect_done(run_together(adding));
        EXPECT_EQ(jobs_in("jobs.ulist"), static_cast<std::size_t>(kFiles));
        expect_done(run_together({{"list", "set", "jobs.ulist", "1", "--rays", "77"},
                                  {"list", "remove", "jobs.ulist", "6"},
                                  {"list", "add", "jobs.ulist", "in/0.tga", "in/1.tga"},
                                  {"list", "set", "jobs.ulist", "2", "--rays", "78"}}));
        EXPECT_EQ(jobs_in("jobs.ulist"), kFiles + 1U);
        std::string const shown = run({"list", "export", "jobs.ulist"}).out;
        EXPECT_NE(shown.find("\nrays = 77\n"), std::string::npos);
        EXPECT_NE(shown.find("\nrays = 78\n"), std::string::npos);
        EXPECT_EQ(contents(folder()).size(), kFiles + 1U) << "something stays beside the list";
    }
}

TEST_F(TwoAtOnce, ALinkToAListIsThatList)
{
    fs::create_directory(folder() / "links");
    fs::create_symlink(folder() / "jobs.ulist", folder() / "links" / "mine.ulist");
    expect_done({run({"list", "add", "jobs.ulist", "in/0.tga"})});
    for (int round = 0; round < 5; ++round) {
        expect_done(run_together(
            {{"list", "add", "jobs.ulist", "in/1.tga"}, {"list", "add", "links/mine.ulist", "in/2.tga"}}));
    }
    EXPECT_EQ(jobs_in("jobs.ulist"), 11U);
    EXPECT_TRUE(fs::is_symlink(folder() / "links" / "mine.ulist"));
}

TEST_F(TwoAtOnce, AChangeOfAListWaitsAndSaysSo)
{
    int const held = open(folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    Arguments const adding{"list", "add", "jobs.ulist", "in/0.tga"};
    std::string const note =
        "umbrix list add: note: jobs.ulist: another command is changing a list in its folder; waiting\n";
    RunningTool interrupted(folder(), adding, with_scratch());
    ASSERT_TRUE(interrupted.wait_for_text(note));
    interrupted.send(SIGINT);
    EXPECT_EQ(interrupted.finish().code, 130);
    RunningTool waiting(folder(), adding, with_scratch());
    ASSERT_TRUE(waiting.wait_for_text(note));
    EXPECT_FALSE(fs::exists(folder() / "jobs.ulist"));
    close(held);
    EXPECT_EQ(waiting.finish().code, 0);
    EXPECT_EQ(jobs_in("jobs.ulist"), 1U);
}

TEST_F(TwoAtOnce, RunsOfOneListMakeEachFile)
{
    expect_done({run({"list", "add", "jobs.ulist", "in", "--height-map", "--n-scale", "3", "--rays", "60"})});
    Arguments const running{"list", "run", "jobs.ulist", "--jobs", "2", "--json"};
    expect_done({run(running)});
    auto const whole = maps();
    ASSERT_EQ(whole.size(), static_cast<std::size_t>(kFiles));
    for (bool const overwrite : {false, true, false, true}) {
        if (!overwrite) {
            remove_maps();
        }
        Arguments arguments = running;
        if (overwrite) {
            arguments.emplace_back("--overwrite");
        }
        expect_done(run_together({arguments, arguments}));
        EXPECT_EQ(maps(), whole);
        EXPECT_EQ(contents(folder() / "in").size(), 2U * kFiles);
        auto const again = objects(run(running));
        EXPECT_EQ(again.at("").at("skipped").get<int>(), kFiles);
    }
}

TEST_F(TwoAtOnce, ALookAtWhatIsToDoLeavesNoLog)
{
    expect_done({run({"list", "add", "jobs.ulist", "in/0.tga"})});
    auto const before = tree();
    expect_done({run({"list", "run", "jobs.ulist", "--dry-run"})});
    EXPECT_EQ(tree(), before);
}

} // namespace
} // namespace umbrixlib::test
