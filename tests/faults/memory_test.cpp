// SPDX-License-Identifier: MIT
/// Less memory than a command needs, as `ulimit -v` has it.
#include "batch_folder.h"

#include <sys/resource.h>

namespace umbrixlib::test {
namespace {

constexpr double kMegabyte = 1024.0 * 1024.0;

class Memory : public BatchTest {
protected:
    Memory()
    {
        put("in/large.tga", hill(1400));
        put("in/small.tga", hill(32));
        put_text("stack.toml", "[[layer]]\nfile = \"in/large.tga\"\n");
    }

    /// With one pool of memory for all threads: otherwise the C library reserves 64 MiB for each, but does
    /// without where it cannot have them, and there is no one number that is the need.
    Outcome run_within(double megabytes, Arguments const& arguments) const
    {
        std::filesystem::remove_all(folder() / "out");
        std::filesystem::create_directory(folder() / "out");
        return run(arguments, {{"MALLOC_ARENA_MAX", "1"}}, [megabytes] {
            auto const bytes = static_cast<rlim_t>(megabytes * kMegabyte);
            rlimit const limit{bytes, bytes};
            setrlimit(RLIMIT_AS, &limit);
        });
    }

    static bool is_clear(std::string const& text)
    {
        return text.find("memory") != std::string::npos && text.find("damaged") == std::string::npos &&
               text.find("should not happen") == std::string::npos;
    }

    /// What is enough hangs on how threads meet, on a busy machine above all.
    bool is_enough(double megabytes, Arguments const& arguments) const
    {
        for (int i = 0; i < 4; ++i) {
            if (run_within(megabytes, arguments).code == 0) {
                return true;
            }
        }
        return false;
    }

    /// A limit that is enough where one a twentieth below is not.
    double need(Arguments const& arguments) const
    {
        double enough = 2048;
        for (double const step : {0.75, 0.95}) {
            while (is_enough(enough * step, arguments)) {
                enough *= step;
            }
        }
        return enough;
    }

    void expect_a_clear_error_below_the_need(Arguments const& arguments) const
    {
        SCOPED_TRACE(arguments[0]);
        double const megabytes = need(arguments);
        std::printf("%-8s needs %4.0f MiB\n", arguments[0].c_str(), megabytes);
        EXPECT_EQ(run_within(megabytes * 1.1, arguments).code, 0);
        for (double const share : {0.9, 0.8, 0.7, 0.6, 0.5, 0.4}) {
            if (run_within(share * megabytes, {"--version"}).code != 0) {
                EXPECT_LT(share, 0.65) << "the program itself has no room";
                break;
            }
            Outcome const outcome = run_within(share * megabytes, arguments);
            EXPECT_EQ(outcome.code, 1) << share;
            EXPECT_TRUE(complains_about(outcome, "umbrix " + arguments[0], arguments[1]) ||
                        complains_about(outcome, "umbrix " + arguments[0], arguments[3]))
                << share << outcome.err;
            EXPECT_TRUE(is_clear(outcome.err)) << share << ' ' << outcome.err;
            EXPECT_EQ(contents(folder()).size(), 3U) << share;
            EXPECT_TRUE(std::filesystem::is_empty(scratch()));
        }
    }

    static inline Arguments const kMap{"map", "in/large.tga", "-o", "out/map.tga", "--rays", "1"};
};

TEST_F(Memory, ThatIsTooLittleIsToldByEachCommand)
{
    expect_a_clear_error_below_the_need(kMap);
    expect_a_clear_error_below_the_need({"normal", "in/large.tga", "-o", "out/normal.png"});
    expect_a_clear_error_below_the_need({"relight", "in/large.tga", "-o", "out/light.png"});
}

TEST_F(Memory, ThatIsTooLittleIsToldByAStack)
{
    Arguments const stack{"stack", "stack.toml",  "-o",     "out/normal.tga",
                          "--map", "out/map.tga", "--rays", "1"};
    double const megabytes = need(stack);
    std::printf("stack    needs %4.0f MiB\n", megabytes);
    for (double const share : {0.5, 0.4, 0.3}) {
        Outcome const outcome = run_within(share * megabytes, stack);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix stack", "stack.toml") ||
                    complains_about(outcome, "umbrix stack", "stack.toml: layer 1: file: in/large.tga"));
        EXPECT_TRUE(is_clear(outcome.err)) << outcome.err;
        EXPECT_EQ(contents(folder()).size(), 3U);
    }
}

TEST_F(Memory, ThatIsTooLittleForOneFileOfABatchIsEnoughForTheOthers)
{
    double const megabytes = need(kMap);
    Arguments const batch{"batch", "in", "--keep-tree", "out", "--rays", "1", "--jobs", "2", "--json"};
    EXPECT_EQ(run_within(1.1 * megabytes, batch).code, 0);
    EXPECT_EQ(contents(folder() / "out").size(), 2U);
    Outcome const outcome = run_within(0.5 * megabytes, batch);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix batch", "1 of 2 files"));
    auto const all = objects(outcome);
    EXPECT_EQ(all.at("in/small.tga").at("state"), "done");
    EXPECT_EQ(all.at("in/large.tga").at("state"), "failed");
    EXPECT_TRUE(is_clear(all.at("in/large.tga").at("reason").get<std::string>())) << outcome.out;
    EXPECT_EQ(contents(folder() / "out").size(), 1U);
}

} // namespace
} // namespace umbrixlib::test
