// SPDX-License-Identifier: MIT
#include "c_objects.h"
#include "process_threads.h"

#include <omp.h>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kSide = 256;

struct Seen {
    std::set<std::string> stages;
    std::set<std::thread::id> threads;
    int calls = 0;
    int stop_at = -1;

    static int take(void* user, char const* stage, double share)
    {
        auto& seen = *static_cast<Seen*>(user);
        EXPECT_GE(share, 0.0);
        EXPECT_LE(share, 1.0);
        seen.stages.insert(stage);
        seen.threads.insert(std::this_thread::get_id());
        return ++seen.calls == seen.stop_at ? 0 : 1;
    }
};

std::vector<float> map_of(Calls& calls, std::vector<float> const& heights, int side,
                          umbrix_code* code = nullptr)
{
    std::vector<float> map;
    umbrix_code const made =
        umbrix_make_map(calls, calls.wrap(heights.data(), Calls::floats(side, side, 1, UMBRIX_HEIGHTS)),
                        calls.with({{"rays", "256"}}), calls.over(map, side, side, 3));
    if (code != nullptr) {
        *code = made;
    } else {
        EXPECT_EQ(made, UMBRIX_OK) << calls.sentence();
    }
    return map;
}

TEST(CRuns, TellTheirProgressOnTheCallingThread)
{
    Calls calls;
    Seen seen;
    umbrix_on_progress(calls, &Seen::take, &seen);
    map_of(calls, hills(1024, 1024), 1024);
    EXPECT_GT(seen.calls, 1);
    EXPECT_EQ(seen.threads, std::set<std::thread::id>{std::this_thread::get_id()});
    EXPECT_TRUE(seen.stages.contains("making"));
}

TEST(CRuns, EndAsSoonAsTheProgressFunctionSaysSo)
{
    Calls calls;
    Seen seen;
    seen.stop_at = 1;
    umbrix_on_progress(calls, &Seen::take, &seen);
    umbrix_code code = UMBRIX_OK;
    map_of(calls, hills(1024, 1024), 1024, &code);
    EXPECT_EQ(code, UMBRIX_STOPPED);
    EXPECT_EQ(calls.sentence(), "it was stopped");
    EXPECT_EQ(seen.calls, 1); // nothing is told behind the stop
    umbrix_on_progress(calls, nullptr, nullptr);
    map_of(calls, hills(64, 64), 64);
}

TEST(CRuns, OfSeveralThreadsAtOnceGiveTheSameBits)
{
    std::vector<float> const heights = hills(kSide, kSide);
    Calls alone;
    std::vector<float> const expected = map_of(alone, heights, kSide);
    std::vector<std::vector<float>> made(4);
    std::vector<std::thread> threads;
    for (auto& map : made) {
        threads.emplace_back([&] {
            Calls calls;
            for (int i = 0; i < 3; ++i) {
                map = map_of(calls, heights, kSide);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (auto const& map : made) {
        EXPECT_EQ(map, expected);
    }
}

TEST(CRuns, OfSmallAndLargePicturesAgreeWhereTheyMeet)
{
    Calls calls;
    std::vector<float> const small = hills(64, 64);
    std::vector<float> repeated;
    for (int y = 0; y < 128; ++y) {
        for (int x = 0; x < 128; ++x) {
            repeated.push_back(small[static_cast<std::size_t>(y % 64 * 64 + x % 64)]);
        }
    }
    std::vector<float> few, many;
    ASSERT_EQ(umbrix_make_normals(calls, calls.wrap(small.data(), Calls::floats(64, 64, 1)),
                                  calls.with({{"n-scale", "3"}}), calls.over(few, 64, 64, 3)),
              UMBRIX_OK);
    ASSERT_EQ(umbrix_make_normals(calls, calls.wrap(repeated.data(), Calls::floats(128, 128, 1)),
                                  calls.with({{"n-scale", "3"}}), calls.over(many, 128, 128, 3)),
              UMBRIX_OK);
    for (std::size_t i = 0; i < many.size(); ++i) {
        std::size_t const x = i / 3 % 128 % 64;
        std::size_t const y = i / 3 / 128 % 64;
        ASSERT_EQ(many[i], few[(y * 64 + x) * 3 + i % 3]) << i;
    }
}

TEST(CRuns, WorkInAProcessThatWasForkedAfterOthers)
{
    std::vector<float> const heights = hills(kSide, kSide);
    Calls calls;
    std::vector<float> const expected = map_of(calls, heights, kSide);
    // A thread that is ending may hold a lock of the address sanitizer, which would be held in the child for
    // ever.
    omp_pause_resource_all(omp_pause_hard); // ends the team of this thread
    umbrixlib::test::wait_for_teams_to_go(1);
    pid_t const child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        alarm(60); // a hang is an end by a signal
        Calls own;
        _exit(map_of(own, heights, kSide) == expected ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

} // namespace
