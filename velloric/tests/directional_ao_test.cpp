// SPDX-License-Identifier: MIT

/// The occlusion kernel against the ray walk that it stands for. The share of open rays is a whole number
/// over a whole number, so every texel must be equal to the bit: one ray more or less is a failure.

#include "directional_ao_jobs.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace velloric::test;

TEST(DirectionalAO, EqualsTheRayWalkOnRandomMaps)
{
    std::mt19937 random(2024);
    for (int kind = 0; kind < kReliefs; ++kind) {
        for (unsigned flags = 0; flags < 8; ++flags) {
            expect_equal(random_job(static_cast<Relief>(kind), flags, random),
                         "relief " + std::to_string(kind));
        }
    }
}

TEST(DirectionalAO, EqualsTheRayWalkOnMapsOfSeveralTiles)
{
    std::mt19937 random(7);
    for (Relief const kind : {Relief::kHills, Relief::kBricks, Relief::kNoise, Relief::kSpike}) {
        for (unsigned const flags : {0U, 7U}) {
            Job job;
            job.rows = 139;
            job.cols = 271;
            job.heights = relief(kind, job.rows, job.cols, kind == Relief::kHills ? 1.0f : 0.2f, random);
            job.radius = 0.9f;
            set_tiling(job, flags);
            generate_rays(job, 6, 130.0f, 100.0f);
            expect_equal(job, "several tiles");
        }
    }
}

TEST(DirectionalAO, EqualsTheRayWalkWhereTheReachEndsRays)
{
    std::mt19937 random(99);
    for (unsigned flags = 0; flags < 8; ++flags) {
        for (Relief const kind : {Relief::kHills, Relief::kPicture}) {
            Job job = random_job(kind, flags, random);
            for (float& h : job.heights) {
                h *= 4.0f;
            }
            // The reach falls exactly on a step of the first ray of band C, the hardest place for a shortcut.
            job.radius = static_cast<float>(static_cast<double>(job.c[0].z) * 5.0);
            expect_equal(job, "reach on a step");
        }
    }
}

TEST(DirectionalAO, EqualsTheRayWalkWhereClimbsAreWholeLevels)
{
    std::mt19937 random(61);
    for (unsigned flags = 0; flags < 8; ++flags) {
        Job job = random_job(Relief::kPicture, flags, random);
        float const lowest = *std::min_element(job.heights.begin(), job.heights.end());
        float const highest = *std::max_element(job.heights.begin(), job.heights.end());
        float const range = highest - lowest;
        std::size_t const pit = job.heights.size() / 2 | 1U;
        std::fill_n(job.heights.begin() + static_cast<std::ptrdiff_t>(pit - 1), 2, lowest);
        job.heights[pit] = highest;
        // Whole levels at each step, at every third, and next to whole levels; the whole range; level rays.
        float const texel = 1.0f / static_cast<float>(job.cols);
        for (std::vector<ray>* bundle : {&job.a, &job.b, &job.c}) {
            std::size_t number = 0;
            for (ray& step : *bundle) {
                auto const levels = static_cast<float>(random() % 9) / (number % 2 == 0 ? 1.0f : 3.0f);
                float const z = number < 3 ? range : levels * range / 255.0f;
                float const y = number < 3 ? 0.0f : step.y;
                step = {step.x > 0.0f ? texel : -texel, y,
                        number % 3 == 0   ? z
                        : number % 3 == 1 ? std::nextafter(z, 0.0f)
                                          : std::nextafter(z, 2.0f * z)};
                ++number;
            }
        }
        expect_equal(job, "whole levels");
    }
}

TEST(DirectionalAO, EqualsTheRayWalkOnPicturesOfSeveralTiles)
{
    std::mt19937 random(8);
    for (Relief const kind : {Relief::kPicture, Relief::kPictureWithHoles}) {
        for (unsigned const flags : {0U, 7U}) {
            Job job;
            job.rows = 139;
            job.cols = 271;
            job.heights = relief(kind, job.rows, job.cols, 0.2f, random);
            job.radius = 0.9f;
            set_tiling(job, flags);
            generate_rays(job, 6, 130.0f, 100.0f);
            expect_equal(job, "picture of several tiles");
        }
    }
}

TEST(DirectionalAO, EqualsTheRayWalkWithMoreRaysThanNarrowCountersHold)
{
    std::mt19937 random(13);
    Job job = random_job(Relief::kPicture, 7, random);
    generate_rays(job, 700, 130.0f, 20.0f);
    expect_equal(job, "many rays");
}

TEST(DirectionalAO, EqualsTheRayWalkWithMoreRaysThanOneBundleHolds)
{
    std::mt19937 random(41);
    Job job;
    job.rows = 6;
    job.cols = 9;
    job.heights = relief(Relief::kHills, job.rows, job.cols, 1.0f, random);
    job.radius = 1.0f;
    set_tiling(job, 7);
    generate_rays(job, 70000, 80.0f, 60.0f);
    EXPECT_SAME_BITS(expected(job), computed(job));
}

TEST(DirectionalAO, TheNumberOfThreadsDoesNotShow)
{
    std::mt19937 random(5);
    Job const job = random_job(Relief::kHills, 7, random);
    std::vector<float3> const shares = expected(job);
    for (int threads = 1; threads <= 5; ++threads) {
        omp_set_num_threads(threads);
        EXPECT_SAME_BITS(shares, computed(job)) << threads << " threads";
    }
    omp_set_num_threads(omp_get_num_procs());
}

TEST(DirectionalAO, TakesAnyStepVectors)
{
    std::mt19937 random(31);
    for (unsigned flags = 0; flags < 8; ++flags) {
        Job job = random_job(Relief::kHills, flags, random);
        float const texel = 1.0f / static_cast<float>(job.cols);
        job.a = {{texel, 0.01f, -0.001f}, {3 * texel, 0.02f, 0.003f}, {texel, kNaN, 0.01f},
                 {kNaN, 0.1f, 0.01f},     {texel, 0.01f, kNaN},       {kInfinity, 0.1f, 0.1f},
                 {texel, kInfinity, 0},   {1e9f, 0.001f, 0.001f}};
        job.b = {{0.0f, 0.0f, 0.001f},         {0.0f, 0.02f, 0.003f},   {-texel, -0.01f, 0.0f},
                 {-0.3f * texel, 0.1f, 0.01f}, {texel, 0.0f, -kNaN},    {-kInfinity, 0.1f, 0.1f},
                 {texel, -0.5f, 0.00001f},     {-texel, 1e-30f, 1e-30f}};
        job.c = {{texel, -0.0f, 0.0f},   {texel, 0.3f, kInfinity}, {texel, 0.01f, -kInfinity},
                 {-1e20f, 1e-3f, 0.01f}, {1e-20f, 1e-20f, 0.01f},  {texel, 0.9f, 0.1f},
                 {-texel, -0.9f, 1e-6f}, {texel, 1e30f, 0.1f}};
        expect_equal(job, "any steps");
    }
}

TEST(DirectionalAO, OnePastTheEdgeIsTheSecondTexel)
{
    Job job;
    job.rows = 3;
    job.cols = 4;
    job.heights = {0, 9, 0, 0, /**/ 0, 0, 0, 0, /**/ 0, 0, 0, 0};
    job.a = job.b = job.c = {{0.25f, 0.0f, 0.1f}};
    job.radius = 0.25f; // a single step to the right
    std::vector<float3> const shares = computed(job);
    EXPECT_EQ(shares[0].x, 0.0f) << "the peak is the next texel";
    EXPECT_EQ(shares[1].x, 1.0f) << "the peak itself";
    EXPECT_EQ(shares[2].x, 1.0f);
    EXPECT_EQ(shares[3].x, 0.0f) << "column 4 of 4 is column 1, the peak";
    EXPECT_EQ(shares[7].x, 1.0f) << "row 1 has no peak";
}

TEST(DirectionalAO, EachChannelIsItsOwnBand)
{
    Job job;
    job.rows = 3;
    job.cols = 3;
    job.heights = {0, 0, 0, /**/ 0, 0, 1, /**/ 0, 0, 0};
    float const third = 1.0f / 3.0f;
    job.radius = third;
    job.c = {{third, 0.0f, 0.1f}};
    job.b = {{-third, 0.0f, 0.1f}};
    job.a = {{third, third, 0.1f}};
    std::vector<float3> const shares = computed(job);
    EXPECT_EQ(shares[4].x, 0.0f) << "band C looks right, at the peak";
    EXPECT_EQ(shares[4].y, 1.0f) << "band B looks left";
    EXPECT_EQ(shares[4].z, 1.0f) << "band A looks to the corner";
    EXPECT_EQ(shares[1].z, 0.0f) << "from the row before, the corner is the peak";
    EXPECT_EQ(shares[1].x, 1.0f);
}

TEST(DirectionalAO, AFlatMapIsOpen)
{
    Job job;
    job.rows = 20;
    job.cols = 30;
    job.heights.assign(600, 0.25f);
    job.radius = 1.0f;
    set_tiling(job, 7);
    generate_rays(job, 10, 60.0f, 60.0f);
    EXPECT_SAME_BITS(std::vector<float3>(600, float3{1.0f, 1.0f, 1.0f}), computed(job));
}

TEST(DirectionalAO, OpenWhereNoRayCanBeWalked)
{
    std::mt19937 random(3);
    Job const sound = random_job(Relief::kNoise, 7, random);
    auto const expect_open = [](Job const& job) {
        EXPECT_SAME_BITS(std::vector<float3>(job.heights.size(), float3{1.0f, 1.0f, 1.0f}), computed(job));
    };
    for (int const rows : {1, 12}) {
        Job line = sound;
        line.rows = rows;
        line.cols = 13 - rows;
        line.heights.resize(12);
        expect_open(line);
    }
    Job texel = sound;
    texel.rows = texel.cols = 1;
    texel.heights.resize(1);
    expect_open(texel);
    Job no_rays = sound;
    no_rays.a.clear();
    no_rays.b.clear();
    no_rays.c.clear();
    expect_open(no_rays);
    for (float const radius : {0.0f, -1.0f, kNaN, kInfinity, 1e30f}) {
        Job unreaching = sound;
        unreaching.radius = radius;
        expect_open(unreaching);
    }
    Job nothing = sound;
    nothing.heights.assign(nothing.heights.size(), kNaN);
    expect_open(nothing);
}

TEST(DirectionalAO, NoSizeNoWork)
{
    ray step{0.25f, 0.0f, 0.1f};
    int progress = 5;
    for (auto const& [rows, cols] : {std::pair{0, 5}, {5, 0}, {0, 0}, {-1, 5}, {-2, -2}}) {
        Height2DirectionalAO(nullptr, nullptr, rows, cols, &step, &step, &step, 1, 1.0f, 1.0f, true, true,
                             true, &progress);
    }
    EXPECT_EQ(progress, 5);
}

TEST(DirectionalAO, ProgressEndsAtOneThousand)
{
    std::mt19937 random(11);
    for (Relief const kind : {Relief::kHills, Relief::kFlat, Relief::kInfinities}) {
        Job const job = random_job(kind, 7, random);
        int progress = 0;
        computed(job, &progress);
        EXPECT_EQ(progress, 1000);
    }
}

TEST(DirectionalAO, WorksInsideAnotherParallelRegion)
{
    std::mt19937 random(17);
    Job const job = random_job(Relief::kHills, 7, random);
    std::vector<float3> const shares = expected(job);
    std::vector<float3> actual;
    int const levels = omp_get_max_active_levels();
    omp_set_max_active_levels(3);
#pragma omp parallel num_threads(2)
    {
#pragma omp single
        actual = computed(job);
    }
    omp_set_max_active_levels(levels);
    EXPECT_SAME_BITS(shares, actual);
}

} // namespace
