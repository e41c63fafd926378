// SPDX-License-Identifier: MIT
/// SIGINT, SIGTERM and SIGKILL at random moments of the commands that work for long.
#include "batch_folder.h"

#include <random>
#include <thread>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Files = std::map<std::string, Bytes>;
using Seconds = std::chrono::duration<double>;

#if defined(__SANITIZE_ADDRESS__)
constexpr int kKills = 40; ///< A run takes several times as long.
#else
constexpr int kKills = 200;
#endif
constexpr unsigned kSeed = 20261121;

/// A command in a folder of its own.
struct Victim {
    std::string name;
    Arguments arguments;
    Files before{}; ///< The folder with old outputs,
    Files after{};  ///< and after a run that nobody disturbs.
    Seconds duration{};
    std::array<int, 2> counts{}; ///< Runs that were ended, and runs that had ended before the signal.
};

bool is_temporary(std::string const& name)
{
    return fs::path(name).filename().string().starts_with(".umbrix-");
}

class Kills : public BatchTest {
protected:
    fs::path home(Victim const& victim) const { return folder() / victim.name; }

    Outcome run_in(Victim const& victim, Arguments const& arguments) const
    {
        return RunningTool(home(victim), arguments, with_scratch()).finish();
    }

    void must(Victim const& victim, Arguments const& arguments) const
    {
        Outcome const outcome = run_in(victim, arguments);
        ASSERT_EQ(outcome.code, 0) << outcome.err << outcome.out;
    }

    /// The log of a list is no output.
    Files files_of(Victim const& victim) const
    {
        Files files = contents(home(victim));
        std::erase_if(files, [](auto const& file) { return file.first.ends_with(".log"); });
        return files;
    }

    /// Makes the outputs the old ones again, and leaves the inputs and their times as they are.
    void restore(Victim const& victim) const
    {
        for (auto const& [name, bytes] : contents(home(victim))) {
            if (!victim.before.contains(name)) {
                fs::remove(home(victim) / name);
            }
        }
        for (auto const& [name, bytes] : victim.before) {
            if (!victim.after.contains(name) || victim.after.at(name) != bytes) {
                fs::path const file = home(victim) / name;
                write_file(file, bytes);
                fs::last_write_time(file, fs::file_time_type::clock::now() - 1h);
            }
        }
    }

    /// Old outputs by the arguments @p old, new ones by those of the victim.
    void prepare(Victim& victim, std::vector<Arguments> const& old)
    {
        for (Arguments const& arguments : old) {
            must(victim, arguments);
        }
        victim.before = contents(home(victim));
        for (auto const& [name, bytes] : victim.before) {
            if (name.find("_Umbrix") != std::string::npos) {
                fs::last_write_time(home(victim) / name, fs::file_time_type::clock::now() - 1h);
            }
        }
        auto const start = std::chrono::steady_clock::now();
        must(victim, victim.arguments);
        victim.duration = std::chrono::steady_clock::now() - start;
        victim.after = files_of(victim);
        EXPECT_NE(victim.before, victim.after);
    }

    std::vector<Victim> make_victims()
    {
        std::vector<Victim> all;
        Arguments const rays{"--rays", "160", "--relief", "1"};
        auto const with = [](Arguments arguments, Arguments const& more) {
            arguments.insert(arguments.end(), more.begin(), more.end());
            return arguments;
        };
        auto const sources = [&](std::string const& name) {
            for (int i = 0; i < 6; ++i) {
                put(name + "/in/" + std::to_string(i) + ".tga", hill(64 + i));
            }
        };
        put("map/hill.tga", hill(160));
        all.push_back({"map", with({"map", "hill.tga", "-o", "out.png", "--overwrite"}, rays)});
        prepare(all.back(), {{"map", "hill.tga", "-o", "out.png", "--rays", "4"}});

        put("stack/hill.tga", hill(160));
        put_text("stack/stack.toml", "[[layer]]\nfile = \"hill.tga\"\n");
        all.push_back({"stack", with({"stack", "stack.toml", "-o", "normals.tga", "--height", "heights.png",
                                      "--map", "map.tga", "--overwrite"},
                                     rays)});
        prepare(all.back(), {{"normal", "hill.tga", "-o", "normals.tga", "--relief", "2"},
                             {"normal", "hill.tga", "-o", "heights.png"},
                             {"normal", "hill.tga", "-o", "map.tga", "--relief", "2"}});

        sources("batch");
        all.push_back({"batch", with({"batch", "in", "--update", "--jobs", "2"}, rays)});
        prepare(all.back(), {{"batch", "in", "--pattern", "[0-3].tga", "--rays", "4"}});

        sources("list");
        all.push_back({"list", {"list", "run", "jobs.ulist", "--jobs", "2"}});
        prepare(all.back(),
                {with({"list", "add", "jobs.ulist", "in", "--height-map", "--n-scale", "3"}, {"--rays", "4"}),
                 {"list", "run", "jobs.ulist"},
                 with({"list", "set", "jobs.ulist", "1"}, {"--rays", "160"})});
        return all;
    }

    /// What is there is old or new and whole; what was there is still there.
    void expect_whole_files(Victim const& victim, bool temporaries_allowed) const
    {
        Files const now = files_of(victim);
        for (auto const& [name, bytes] : now) {
            if (is_temporary(name)) {
                EXPECT_TRUE(temporaries_allowed) << name;
                continue;
            }
            bool const is_old = victim.before.contains(name) && victim.before.at(name) == bytes;
            bool const is_new = victim.after.contains(name) && victim.after.at(name) == bytes;
            EXPECT_TRUE(is_old || is_new) << name;
        }
        for (auto const& [name, bytes] : victim.before) {
            EXPECT_TRUE(now.contains(name) || name.ends_with(".log")) << name << " is gone";
        }
        EXPECT_TRUE(temporaries_allowed || fs::is_empty(scratch()));
    }

    void kill_once(Victim& victim, int signal, Seconds delay)
    {
        adopt_workers();
        RunningTool tool(home(victim), victim.arguments, with_scratch());
        std::this_thread::sleep_for(delay);
        tool.send(signal);
        Outcome const outcome = tool.finish();
        EXPECT_TRUE(adopted_workers_end());
        // A signal that comes before the tool watches for it ends it as it ends any program.
        EXPECT_TRUE(outcome.code == 0 || outcome.code == -signal ||
                    (outcome.code == 128 + signal && signal != SIGKILL))
            << outcome.code << '\n'
            << outcome.err;
        bool const came_too_late = outcome.code == 0;
        victim.counts[came_too_late ? 1 : 0] += 1;
        victim.duration *= came_too_late ? 0.8 : 1.2; // the machine may be faster or slower by now
    }

    std::size_t temporaries(Victim const& victim) const
    {
        std::size_t count = 0;
        for (auto const& [name, bytes] : contents(home(victim))) {
            count += is_temporary(name) ? 1 : 0;
        }
        return count;
    }
};

TEST_F(Kills, LeaveOldOrNewFilesAndNothingElse)
{
    std::vector<Victim> victims = make_victims();
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    constexpr int kSignals[] = {SIGINT, SIGTERM, SIGKILL};
    std::size_t left_behind = 0;
    for (int kills = 0; kills < kKills;) {
        Victim& victim = victims[random() % victims.size()];
        SCOPED_TRACE(victim.name + " after " + std::to_string(kills) + " kills");
        restore(victim);
        bool killed_hard = false;
        for (auto in_a_row = 1 + random() % 3; in_a_row > 0 && kills < kKills; --in_a_row) {
            int const signal = kSignals[random() % 3];
            kill_once(victim, signal, victim.duration * share(random));
            killed_hard = killed_hard || signal == SIGKILL;
            expect_whole_files(victim, killed_hard);
            ++kills;
        }
        left_behind += temporaries(victim);
        Outcome const outcome = run_in(victim, victim.arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err << outcome.out;
        EXPECT_EQ(files_of(victim), victim.after);
        EXPECT_TRUE(fs::is_empty(scratch()));
        ASSERT_FALSE(HasFailure());
    }
    std::printf("%d kills, seed %u, %zu files left for the next run to remove\n", kKills, kSeed, left_behind);
    for (Victim const& victim : victims) {
        std::printf("%-6s %3d runs ended by the signal, %3d before it; kills in the end within %.2f s\n",
                    victim.name.c_str(), victim.counts[0], victim.counts[1], victim.duration.count());
        EXPECT_GT(victim.counts[0], 0) << victim.name;
    }
    EXPECT_GT(left_behind, 0U);
}

TEST_F(Kills, OfTheReaderOfTheResultsDoNotEndABatch)
{
    Victim victim{"batch", {"batch", "in", "--rays", "40", "--jobs", "2", "--json"}};
    for (int i = 0; i < 4; ++i) {
        put("batch/in/" + std::to_string(i) + ".tga", hill(32));
    }
    adopt_workers();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    RunningTool tool(home(victim), victim.arguments, with_scratch(), [&] {
        dup2(ends[1], STDOUT_FILENO);
        std::signal(SIGPIPE, SIG_DFL);
    });
    close(ends[1]);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix batch", "standard output"));
    EXPECT_EQ(contents(home(victim)).size(), 8U);
    EXPECT_EQ(temporaries(victim), 0U);
    EXPECT_TRUE(fs::is_empty(scratch()));
    EXPECT_TRUE(adopted_workers_end());
}

} // namespace
} // namespace umbrixlib::test
