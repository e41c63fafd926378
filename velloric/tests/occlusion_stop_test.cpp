// SPDX-License-Identifier: MIT

/// A stop of the occlusion kernel, asked for in the number of its progress.

#include "boundary/texture_kernels.h"
#include "common/stop_request.h"
#include "random_image.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <omp.h>
#include <thread>
#include <vector>

namespace {

using umbrixlib::detail::kStopRequest;

constexpr int kSide = 512;
constexpr std::size_t kTexels = std::size_t{kSide} * kSide;
constexpr int kTileTexels = 64 * 128;
constexpr float kUntouched = -7.0f;

class OcclusionStop : public testing::Test {
protected:
    OcclusionStop()
    {
        ray* a = rays_[0].data();
        ray* b = rays_[1].data();
        ray* c = rays_[2].data();
        GenerateRays(kSide, kSide, a, b, c, kRays, 120.0f, 120.0f);
    }

    void run(int* progress)
    {
        Height2DirectionalAO(occlusion_.data(), heights_.data(), kSide, kSide, rays_[0].data(),
                             rays_[1].data(), rays_[2].data(), kRays, 1.0f, 1.0f, true, true, true, progress);
    }

    /// Shares written so far. The kernel may be at work.
    std::ptrdiff_t written()
    {
        auto* const first = &occlusion_[0].x;
        return std::count_if(first, first + 3 * kTexels, [](float& share) {
            return std::atomic_ref(share).load(std::memory_order_relaxed) != kUntouched;
        });
    }

    static constexpr int kRays = 700;
    std::vector<float> heights_ = umbrixlib::test::random_image<float>(kTexels, 5);
    std::vector<ray> rays_[3] = {std::vector<ray>(2 * kRays), std::vector<ray>(2 * kRays),
                                 std::vector<ray>(2 * kRays)};
    std::vector<float3> occlusion_ = std::vector<float3>(kTexels, float3{kUntouched, kUntouched, kUntouched});
};

TEST_F(OcclusionStop, BeforeTheCallLeavesAllTexels)
{
    int progress = kStopRequest;
    run(&progress);
    EXPECT_EQ(progress, kStopRequest);
    EXPECT_EQ(written(), 0);
}

/// A thread looks before each tile of a band, so at most one tile a thread is written after the stop.
TEST_F(OcclusionStop, BetweenTwoLooksAThreadWritesOneTileOfABand)
{
    for (int const threads : {1, 2, 3}) {
        omp_set_num_threads(threads);
        std::fill(occlusion_.begin(), occlusion_.end(), float3{kUntouched, kUntouched, kUntouched});
        int progress = 0;
        std::ptrdiff_t at_stop = 0;
        std::thread front_end([&] {
            while (written() == 0) {
                std::this_thread::yield();
            }
            std::atomic_ref(progress).store(kStopRequest);
            at_stop = written();
        });
        run(&progress);
        front_end.join();
        EXPECT_EQ(progress, kStopRequest);
        EXPECT_GT(written(), 0);
        EXPECT_LE(written() - at_stop, threads * kTileTexels) << threads;
        EXPECT_LT(written(), static_cast<std::ptrdiff_t>(3 * kTexels)) << threads;
    }
    omp_set_num_threads(omp_get_num_procs());
}

TEST_F(OcclusionStop, ANumberBelowZeroIsNoStop)
{
    int progress = -1;
    run(&progress);
    EXPECT_EQ(progress, 1000);
    EXPECT_EQ(written(), static_cast<std::ptrdiff_t>(3 * kTexels));
}

} // namespace
