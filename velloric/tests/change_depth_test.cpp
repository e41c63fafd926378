// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

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

TEST(ChangeDepth, IsTheFormulaInDoubleRoundedOnce)
{
    std::vector<float> const heights = random_image<float>(500, 1, Values::kSigned);
    std::vector<float> const result = changed(heights, 0.37f, 1.7f);
    double const scale = static_cast<double>(1.7f);
    double const exponent = std::pow(2.0, static_cast<double>(0.37f));
    for (std::size_t i = 0; i < heights.size(); ++i) {
        double const u = static_cast<double>(heights[i]) / scale;
        double const sign = u < 0.0 ? -1.0 : 1.0;
        EXPECT_EQ(result[i], static_cast<float>(scale * sign * std::pow(std::fabs(u), exponent)));
    }
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
