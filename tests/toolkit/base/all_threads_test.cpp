// SPDX-License-Identifier: MIT
#include "toolkit/base/all_threads.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>
#include <vector>

namespace umbrixlib::toolkit {
namespace {

class AllThreads : public testing::TestWithParam<int> {
protected:
    AllThreads() { omp_set_num_threads(GetParam()); }
    ~AllThreads() override { omp_set_num_threads(usual_); }

private:
    int usual_ = omp_get_max_threads();
};

TEST_P(AllThreads, TakeEachNumberOnce)
{
    for (std::size_t const count : {0U, 1U, 2U, 1000U}) {
        std::vector<std::atomic<int>> taken(count);
        std::atomic<int> bodies = 0;
        on_all_threads(count, [&](auto next) {
            ++bodies;
            for (std::size_t i = next(); i < count; i = next()) {
                ++taken[i];
            }
            EXPECT_EQ(next(), count);
        });
        EXPECT_TRUE(std::ranges::all_of(taken, [](auto const& times) { return times == 1; })) << count;
        EXPECT_EQ(bodies, std::clamp(static_cast<int>(count), 1, GetParam()));
    }
}

TEST_P(AllThreads, HandOnWhatIsThrown)
{
    std::atomic<int> done = 0;
    auto const run = [&] {
        on_all_threads(std::size_t{100000}, [&](auto next) {
            for (std::size_t i = next(); i < 100000; i = next()) {
                if (i == 7) {
                    throw std::runtime_error("seven");
                }
                ++done;
            }
        });
    };
    EXPECT_THROW(run(), std::runtime_error);
    EXPECT_LT(done, 100000);
}

INSTANTIATE_TEST_SUITE_P(Numbers, AllThreads, testing::Values(1, 2, 3, 8));

TEST(ForPieces, TakesEachNumberOnce)
{
    for (std::size_t const count :
         {std::size_t{0}, std::size_t{1}, std::size_t{65536}, std::size_t{200001}}) {
        for (std::size_t const weight : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 20U}) {
            std::size_t const some = weight > 7 ? std::min<std::size_t>(count, 100) : count;
            std::vector<std::atomic<int>> taken(some);
            for_pieces(
                some,
                [&](std::size_t first, std::size_t end) {
                    for (std::size_t i = first; i < end; ++i) {
                        ++taken[i];
                    }
                },
                weight);
            EXPECT_TRUE(std::ranges::all_of(taken, [](auto const& times) { return times == 1; })) << count;
        }
    }
}

TEST(ForPieces, LeavesAFewNumbersToTheCallingThread)
{
    std::thread::id seen;
    for_pieces(64 * 64, [&](std::size_t, std::size_t) { seen = std::this_thread::get_id(); });
    EXPECT_EQ(seen, std::this_thread::get_id());
}

} // namespace
} // namespace umbrixlib::toolkit
