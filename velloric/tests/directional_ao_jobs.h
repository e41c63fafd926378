// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Maps and rays for the tests of the occlusion kernel, and the comparison with the plain ray walk.

#include "boundary/texture_kernels.h"
#include "directional_ao_reference.h"
#include "every_target.h"
#include "random_image.h"
#include "same_bits.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>
#include <string>
#include <vector>

namespace velloric::test {

using reference::Occlusion;
using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;

/// Everything that the kernel is told, but for the number of rays, which is that of the bundles.
struct Job {
    int rows = 0;
    int cols = 0;
    std::vector<float> heights;
    std::vector<ray> a;
    std::vector<ray> b;
    std::vector<ray> c;
    float radius = 0;
    bool tile = false;
    bool h_tile = false;
    bool v_tile = false;
};

inline void generate_rays(Job& job, int rays, float theta_limit, float alpha_limit)
{
    for (std::vector<ray>* bundle : {&job.a, &job.b, &job.c}) {
        bundle->resize(static_cast<std::size_t>(rays) * 2);
    }
    ray* a = job.a.data();
    ray* b = job.b.data();
    ray* c = job.c.data();
    GenerateRays(job.rows, job.cols, a, b, c, rays, theta_limit, alpha_limit);
    for (std::vector<ray>* bundle : {&job.a, &job.b, &job.c}) {
        bundle->resize(static_cast<std::size_t>(rays));
    }
}

inline std::vector<float3> expected(Job const& job)
{
    Occlusion const walk(job.heights, job.rows, job.cols, job.a.data(), job.b.data(), job.c.data(),
                         static_cast<int>(job.a.size()), job.radius, job.tile, job.h_tile, job.v_tile);
    std::vector<float3> shares;
    for (int y = 0; y < job.rows; ++y) {
        for (int x = 0; x < job.cols; ++x) {
            shares.push_back(walk.at(y, x));
        }
    }
    return shares;
}

inline std::vector<float3> computed(Job job, int* progress = nullptr)
{
    std::vector<float3> shares(job.heights.size(), float3{kNaN, kNaN, kNaN});
    Height2DirectionalAO(shares.data(), job.heights.data(), job.rows, job.cols, job.a.data(), job.b.data(),
                         job.c.data(), static_cast<int>(job.a.size()), kNaN, job.radius, job.tile, job.h_tile,
                         job.v_tile, progress);
    return shares;
}

/// Equality under every instruction set; the number of threads changes with it.
inline void expect_equal(Job const& job, std::string const& what)
{
    std::vector<float3> const shares = expected(job);
    int turn = 0;
    umbrixlib::test::for_every_target([&](char const* target) {
        constexpr int kThreads[] = {1, 2, 3, 8};
        int const threads = kThreads[turn++ % 4];
        omp_set_num_threads(threads);
        EXPECT_SAME_BITS(shares, computed(job))
            << what << ", " << job.rows << " rows, " << job.cols << " columns, " << job.a.size()
            << " rays, radius " << job.radius << ", tiling " << job.tile << job.h_tile << job.v_tile << ", "
            << threads << " threads, " << target;
    });
    omp_set_num_threads(omp_get_num_procs());
}

enum class Relief {
    kNoise,
    kTerraces,
    kRamp,
    kFlat,
    kSunkenPlain,
    kNegative,
    kBelowZero,
    kHighAboveZero,
    kNotNumbers,
    kInfinities,
    kDenormals,
    kBricks,
    kHills,
    kHuge,
    kSpike,
    kPicture,
    kPictureWithHoles,
    kPictureOutOfLine,
    kPictureBelowZero,
    kDenormalSteps,
};
constexpr int kReliefs = 20;

inline std::vector<float> relief(Relief kind, int rows, int cols, float scale, std::mt19937& random)
{
    auto const unit = [&] { return static_cast<float>(random() >> 8) * (1.0f / 16777216.0f); };
    std::vector<float> heights;
    float const slope_x = unit() - 0.5f;
    float const slope_y = unit() - 0.5f;
    int const brick = 3 + static_cast<int>(random() % 14);
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < cols; ++x) {
            float const u = static_cast<float>(x) / static_cast<float>(cols);
            float const v = static_cast<float>(y) / static_cast<float>(rows);
            float const wave =
                0.5f + 0.25f * std::sin(7.0f * u + 3.0f * v) + 0.25f * std::cos(11.0f * v - 5.0f * u);
            float h = unit();
            switch (kind) {
            case Relief::kNoise:
                break;
            case Relief::kTerraces:
                h = std::floor(wave * 6.0f) / 6.0f;
                break;
            case Relief::kRamp:
                h = slope_x * u + slope_y * v + 0.5f;
                break;
            case Relief::kFlat:
                h = 0.37f;
                break;
            case Relief::kSunkenPlain:
                h = -0.37f;
                break;
            case Relief::kNegative:
                h = h * 2.0f - 1.5f;
                break;
            case Relief::kBelowZero:
                h = -3.0f - h * 0.1f;
                break;
            case Relief::kHighAboveZero:
                h = 300.0f + wave * 0.5f;
                break;
            case Relief::kNotNumbers:
                h = random() % 5 == 0 ? kNaN : wave;
                break;
            case Relief::kInfinities:
                h = random() % 9 == 0 ? (random() % 2 == 0 ? kInfinity : -kInfinity) : h;
                break;
            case Relief::kDenormals:
                h = h * 1e-40f - (random() % 3 == 0 ? 1e-41f : 0.0f);
                break;
            case Relief::kBricks:
                h = x % brick == 0 || (y + x / brick * 3) % brick < 2 ? 0.1f + 0.05f * h : 0.9f + 0.02f * h;
                break;
            case Relief::kHills:
                h = wave;
                break;
            case Relief::kHuge:
                h = (h - 0.5f) * 3e38f;
                break;
            case Relief::kSpike:
                h = x == cols / 2 && y == rows / 2 ? 1.0f : 0.01f * h;
                break;
            case Relief::kPicture: // 8 bits, of which a smooth picture may use a few
            case Relief::kPictureWithHoles:
            case Relief::kPictureOutOfLine:
                h = std::round((random() % 4 == 0 ? h : wave) * 255.0f) / 255.0f;
                if (kind == Relief::kPictureWithHoles && random() % 7 == 0) {
                    h = kNaN;
                } else if (kind == Relief::kPictureOutOfLine && random() % 50 == 0) {
                    h = std::nextafter(h, 2.0f) + (random() % 20 == 0 ? 1e-4f : 0.0f);
                }
                break;
            case Relief::kPictureBelowZero:
                h = std::round(h * 100.0f) / 100.0f - 1.75f;
                break;
            case Relief::kDenormalSteps:
                h = std::round(h * 200.0f) * 1.4e-45f;
                break;
            }
            bool const scaled = kind != Relief::kDenormals && kind != Relief::kHuge &&
                                kind != Relief::kHighAboveZero && kind != Relief::kDenormalSteps;
            heights.push_back(scaled ? h * scale : h);
        }
    }
    return heights;
}

inline void set_tiling(Job& job, unsigned flags)
{
    job.tile = (flags & 1) != 0;
    job.h_tile = (flags & 2) != 0;
    job.v_tile = (flags & 4) != 0;
}

inline Job random_job(Relief kind, unsigned flags, std::mt19937& random)
{
    auto const between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() >> 8) * (1.0f / 16777216.0f);
    };
    Job job;
    job.rows = 2 + static_cast<int>(random() % 66);
    job.cols = 2 + static_cast<int>(random() % 66);
    constexpr float kScales[] = {1.0f, 0.3f, 0.1f, 0.02f, 3.0f};
    job.heights = relief(kind, job.rows, job.cols, kScales[random() % 5], random);
    job.radius = std::max(between(0.02f, 1.5f), 1.0f / static_cast<float>(job.cols)); // at least one step
    set_tiling(job, flags);
    generate_rays(job, 1 + static_cast<int>(random() % 40), between(0.0f, 150.0f), between(0.0f, 150.0f));
    return job;
}

} // namespace velloric::test
