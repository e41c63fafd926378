// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;

std::vector<float> changed(std::vector<float> heights, float depth, float n_scale)
{
    ChangeDepth(heights.data(), 1, static_cast<int>(heights.size()), depth, n_scale);
    return heights;
}

TEST(ChangeDepth, OneStepSquaresAndOneStepBackTakesTheRoot)
{
    EXPECT_EQ(changed({0.0f, 2.0f, 4.0f, 8.0f}, 1.0f, 4.0f), (std::vector<float>{0.0f, 1.0f, 4.0f, 16.0f}));
    EXPECT_EQ(changed({0.0f, 1.0f, 4.0f, 16.0f}, -1.0f, 4.0f), (std::vector<float>{0.0f, 2.0f, 4.0f, 8.0f}));
}

/// The formula in more bits than double has, rounded once.
float expected(float height, float depth, float n_scale)
{
    auto const scale = static_cast<long double>(n_scale);
    long double const u = static_cast<long double>(height) / scale;
    long double const power = std::pow(std::fabs(u), std::exp2(static_cast<long double>(depth)));
    return static_cast<float>(scale * std::copysign(power, u));
}

std::vector<float> expected(std::vector<float> heights, float depth, float n_scale)
{
    for (float& height : heights) {
        height = expected(height, depth, n_scale);
    }
    return heights;
}

constexpr float kDepths[] = {-4.0f, -2.5f, -1.0f, -0.75f, -0.3f, -0.01f, 0.001f,
                             0.1f,  0.37f, 0.5f,  1.0f,   1.7f,  2.0f,   3.9f};

TEST(ChangeDepth, IsTheFormulaRoundedOnce)
{
    std::vector<float> const heights = random_image<float>(2000, 1, Values::kSigned);
    for (float const depth : kDepths) {
        for (float const n_scale : {0.02f, 0.9f, 1.7f, -3.0f, 51.2f}) {
            SCOPED_TRACE(testing::Message() << "depth " << depth << ", n_scale " << n_scale);
            EXPECT_SAME_BITS(expected(heights, depth, n_scale), changed(heights, depth, n_scale));
        }
    }
}

TEST(ChangeDepth, IsTheFormulaRoundedOnceOnAllHeightsOfEightBits)
{
    for (float const depth : kDepths) {
        for (int step = 1; step <= 24; ++step) {
            float const n_scale = static_cast<float>(step * step) * 0.09f;
            std::vector<float> heights(256);
            for (std::size_t i = 0; i < heights.size(); ++i) {
                heights[i] = static_cast<float>(i) / 255.0f * n_scale;
            }
            ASSERT_TRUE(umbrixlib::test::same_bits(expected(heights, depth, n_scale),
                                                   changed(heights, depth, n_scale)))
                << "depth " << depth << ", n_scale " << n_scale;
        }
    }
}

TEST(ChangeDepth, IsTheFormulaRoundedOnceFromTheSmallestToTheLargestFloats)
{
    std::mt19937 random(6);
    std::uniform_int_distribution<int> powers(-149, 127);
    std::uniform_real_distribution<float> fraction(1.0f, 2.0f);
    std::uniform_real_distribution<float> depths(-8.0f, 8.0f);
    for (int i = 0; i < 20000; ++i) {
        float const height = std::ldexp(fraction(random), powers(random));
        float const n_scale = std::ldexp(fraction(random), powers(random));
        float const depth = depths(random);
        ASSERT_EQ(changed({height}, depth, n_scale)[0], expected(height, depth, n_scale))
            << std::hexfloat << "height " << height << ", depth " << depth << ", n_scale " << n_scale;
    }
}

/// Values so close to the middle between two floats that the formula in double may round to the other one.
/// Results are those of the formula in 113 bits.
TEST(ChangeDepth, IsRoundedOnceNextToTheMiddleOfTwoFloats)
{
    struct Case {
        float height, depth, n_scale, result;
    };
    constexpr Case kCases[] = {
        {0x1.d26556p+3f, 0x1.968d7p+1f, 0x1.1edb62p+5f, 0x1.57892cp-7f},
        {0x1.18dc02p+3f, 0x1.f35434p+0f, 0x1.7f47a6p+4f, 0x1.fa2aeep-2f},
        {0x1.c4287ap+5f, 0x1.e7c7dap-2f, 0x1.d91c24p+5f, 0x1.bc375ap+5f},
        {0x1.6f915ep+2f, 0x1.d94454p-1f, 0x1.e2e9fep+4f, 0x1.4b756ap+0f},
        {0x1.1d605ap+1f, 0x1.70c6e6p+1f, 0x1.b461cap+5f, 0x1.b9edd2p-29f},
        {0x1.a16f38p+3f, 0x1.8c2414p+0f, 0x1.53b5e8p+4f, 0x1.4733d6p+2f},
        {0x1.3f6672p-4f, -0x1.2a852p-2f, 0x1.8376b6p+5f, 0x1.03027cp-2f},
    };
    for (Case const& each : kCases) {
        EXPECT_EQ(changed({each.height, -each.height}, each.depth, each.n_scale),
                  (std::vector<float>{each.result, -each.result}))
            << std::hexfloat << each.height;
    }
}

/// Results of 25 bits, of which a float holds 24.
TEST(ChangeDepth, TheMiddleOfTwoFloatsGoesToTheEvenOne)
{
    EXPECT_EQ(changed({4097.0f, -4097.0f}, 1.0f, 1.0f), (std::vector<float>{16785408.0f, -16785408.0f}));
    EXPECT_EQ(changed({3 * 2365.0f}, 1.0f, 3.0f)[0], 16779676.0f) << "from 16779675";
    EXPECT_EQ(changed({0x1p-75f, 0x1.8p-75f}, 1.0f, 1.0f), (std::vector<float>{0.0f, 0x1p-149f}));
    // No float or double holds the quotients of these heights and scales.
    for (int a = 4097; a < 4300; a += 2) {
        ASSERT_EQ(changed({3.0f * static_cast<float>(a)}, 1.0f, 9.0f)[0], static_cast<float>(a * a - 1)) << a;
    }
    for (int a = 2365; a < 2800; a += 2) {
        if (a % 3 != 0) {
            ASSERT_EQ(changed({9.0f * static_cast<float>(a)}, 1.0f, 27.0f)[0],
                      static_cast<float>(3 * a * a + 1))
                << a;
        }
    }
}

TEST(ChangeDepth, BeyondTheFloatsItIsInfiniteOrZero)
{
    EXPECT_SAME_BITS(changed({3.0f, -3.0f, 0.5f, -0.5f}, 10.0f, 1.0f),
                     (std::vector<float>{kInfinity, -kInfinity, 0.0f, -0.0f}));
    EXPECT_SAME_BITS(changed({3.0f, -3.0f, 0.5f, 2.0f, -2.0f}, kInfinity, 2.0f),
                     (std::vector<float>{kInfinity, -kInfinity, 0.0f, 2.0f, -2.0f}));
    EXPECT_SAME_BITS(changed({3.0f, -0.5f, 1e30f, kInfinity}, -kInfinity, 2.0f),
                     (std::vector<float>{2.0f, -2.0f, 2.0f, 2.0f}));
    EXPECT_SAME_BITS(changed({kInfinity, -kInfinity}, -3.0f, 2.0f),
                     (std::vector<float>{kInfinity, -kInfinity}));
    EXPECT_SAME_BITS(changed({3.0f, 0.0f}, 1.0f, kInfinity), (std::vector<float>{3.0f, 0.0f}));
}

TEST(ChangeDepth, KeepsTheSignOfEveryHeightRelativeToTheScale)
{
    EXPECT_EQ(changed({-2.0f, 2.0f, -0.5f}, 1.0f, 1.0f), (std::vector<float>{-4.0f, 4.0f, -0.25f}));
    EXPECT_EQ(changed({-2.0f, 2.0f, -0.5f}, 1.0f, -1.0f), (std::vector<float>{-4.0f, 4.0f, -0.25f}));
    for (float const depth : {-3.0f, -0.5f, 0.25f, 2.0f}) {
        for (float const result : changed(random_image<float>(100, 2), depth, 3.0f)) {
            EXPECT_GE(result, 0.0f);
        }
    }
}

TEST(ChangeDepth, DeepensBetweenThePeaksOrFills)
{
    float const middle = 0.5f * 6.0f;
    EXPECT_LT(changed({middle}, 0.5f, 6.0f)[0], middle);
    EXPECT_GT(changed({middle}, -0.5f, 6.0f)[0], middle);
    EXPECT_EQ(changed({6.0f}, 0.5f, 6.0f)[0], 6.0f);
}

TEST(ChangeDepth, WithoutAScaleNothingChanges)
{
    auto const heights = random_image<float>(100, 3, Values::kHostile);
    EXPECT_SAME_BITS(heights, changed(heights, 1.0f, 0.0f));
    EXPECT_SAME_BITS(heights, changed(heights, 1.0f, -0.0f));
}

TEST(ChangeDepth, ZeroHeightsStayForEveryDepth)
{
    for (float const depth : {-kInfinity, -2000.0f, -1.0f, 1.0f, 2000.0f, kInfinity}) {
        EXPECT_SAME_BITS((std::vector<float>{0.0f, -0.0f}), changed({0.0f, -0.0f}, depth, 2.0f));
    }
}

TEST(ChangeDepth, NaNPassesThrough)
{
    EXPECT_TRUE(std::isnan(changed({kNaN}, 1.0f, 2.0f)[0]));
    EXPECT_TRUE(std::isnan(changed({0.5f}, kNaN, 2.0f)[0]));
    EXPECT_TRUE(std::isnan(changed({0.5f}, 1.0f, kNaN)[0]));
    EXPECT_TRUE(std::isnan(changed({kNaN}, -kInfinity, 2.0f)[0]));
    EXPECT_TRUE(std::isnan(changed({kInfinity}, 1.0f, kInfinity)[0]));
}

TEST(ChangeDepth, IsTheSameForEveryTeam)
{
    std::vector<float> const heights = random_image<float>(1000, 4, Values::kSigned);
    std::vector<float> const one = changed(heights, 0.3f, 0.9f);
    for_every_team([&](int) { EXPECT_SAME_BITS(one, changed(heights, 0.3f, 0.9f)); });
}

TEST(ChangeDepth, NoSizeNoWork)
{
    ChangeDepth(nullptr, 0, 5, 1.0f, 1.0f);
    ChangeDepth(nullptr, 5, 0, 1.0f, 1.0f);
    ChangeDepth(nullptr, -1, -1, 1.0f, 1.0f);
}

} // namespace
