// SPDX-License-Identifier: MIT

/// The occlusion kernel compares groups of texels with blocks of steps. Where groups are cut off, lie across
/// the border, or are wider than the map, the result must be that of the ray walk all the same.

#include "directional_ao_jobs.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using namespace velloric::test;

/// Groups have 8 to 64 columns and 8 rows, tiles 128 columns and 64 rows.
constexpr int kWidths[] = {2, 7, 31, 33, 63, 64, 65, 97, 127, 129, 193};
constexpr int kHeights[] = {2, 5, 7, 8, 9, 17, 63, 65};

TEST(OcclusionGroups, EqualTheRayWalkAtAnyCutOff)
{
    std::mt19937 random(150);
    unsigned turn = 0;
    for (int const cols : kWidths) {
        for (int const rows : kHeights) {
            Job job;
            job.rows = rows;
            job.cols = cols;
            bool const picture = turn % 3 != 0;
            job.heights = relief(picture ? Relief::kPicture : Relief::kHills, rows, cols,
                                 turn % 2 == 0 ? 1.0f : 0.1f, random);
            job.radius = turn % 5 == 0 ? 1.4f : 0.6f;
            set_tiling(job, turn % 8);
            generate_rays(job, 7, 120.0f, 120.0f);
            expect_equal(job, "cut off, turn " + std::to_string(turn));
            ++turn;
        }
    }
}

TEST(OcclusionGroups, EqualTheRayWalkWithEveryNumberOfThreads)
{
    std::mt19937 random(151);
    Job job;
    job.rows = 73;
    job.cols = 201;
    job.radius = 0.5f;
    set_tiling(job, 7);
    generate_rays(job, 9, 120.0f, 120.0f);
    for (Relief const kind : {Relief::kPicture, Relief::kHills}) {
        job.heights = relief(kind, job.rows, job.cols, 0.3f, random);
        std::vector<float3> const shares = expected(job);
        umbrixlib::test::for_every_target([&](char const* target) {
            for (int threads = 1; threads <= 3; ++threads) {
                omp_set_num_threads(threads);
                EXPECT_SAME_BITS(shares, computed(job)) << threads << " threads, " << target;
            }
        });
    }
    omp_set_num_threads(omp_get_num_procs());
}

/// A single high texel is met from far, by the last step and the last lane of groups.
TEST(OcclusionGroups, EqualTheRayWalkAroundASpikeAtTheBorder)
{
    std::mt19937 random(152);
    for (int const spike : {0, 63, 64, 127, 128, 150}) {
        for (unsigned const flags : {0U, 3U, 5U, 7U}) {
            Job job;
            job.rows = 21;
            job.cols = 151;
            job.heights = relief(Relief::kPicture, job.rows, job.cols, 0.02f, random);
            job.heights[static_cast<std::size_t>(spike)] = 1.0f;
            job.heights[static_cast<std::size_t>(20 * job.cols + 150 - spike)] = 0.75f;
            job.radius = 1.0f;
            set_tiling(job, flags);
            generate_rays(job, 8, 150.0f, 150.0f);
            expect_equal(job, "spike at " + std::to_string(spike));
        }
    }
}

/// All rays along rows or columns, so that a block's first or last column is its only one.
TEST(OcclusionGroups, EqualTheRayWalkAlongTheAxes)
{
    std::mt19937 random(153);
    for (unsigned flags = 0; flags < 8; ++flags) {
        Job job;
        job.rows = 70;
        job.cols = 140;
        job.heights = relief(Relief::kPicture, job.rows, job.cols, 0.5f, random);
        job.radius = 1.0f;
        set_tiling(job, flags);
        float const right = 1.0f / 140.0f;
        float const down = 1.0f / 70.0f;
        job.a = {{right, 0.0f, 0.0011f}, {-right, 0.0f, 0.0013f}, {right, 0.0f, 0.03f}};
        job.b = {{0.0f, down, 0.0011f}, {0.0f, -down, 0.0013f}, {0.0f, 7 * down, 0.011f}};
        job.c = {{right, down, 0.0017f}, {-right, -down, 0.0019f}, {right, -5 * down, 0.0123f}};
        expect_equal(job, "axes");
    }
}

} // namespace
