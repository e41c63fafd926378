// SPDX-License-Identifier: MIT
// The blends that the library computes itself. Those that it hands to a kernel: blend_calls_test.cpp.
#include "filters/blend.h"

#include "random_image.h"
#include "same_bits.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <limits>
#include <omp.h>

namespace {

using testing::Each;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;

constexpr int kHeight = 37;
constexpr int kWidth = 29;
constexpr std::size_t kTexels = std::size_t{kHeight} * kWidth;

float faded(float first, float second, float percent)
{
    double const t = double(static_cast<float>(double(std::clamp(percent, 0.0f, 100.0f)) / 100.0));
    return static_cast<float>(double(second) * t + double(first) * (1.0 - t));
}

TEST(Blend, FadesHeightsBitForBit)
{
    auto const second = random_image<float>(kTexels, 2, Values::kHostile);
    for (float const percent : {0.0f, 12.5f, 33.3f, 99.9f, 100.0f, 150.0f, -5.0f}) {
        auto first = random_image<float>(kTexels, 1, Values::kSigned);
        std::vector<float> expected(kTexels);
        for (std::size_t i = 0; i < kTexels; ++i) {
            expected[i] = faded(first[i], second[i], percent);
        }
        auto other = second;
        blend(first.data(), other.data(), percent, kHeight, kWidth);
        EXPECT_SAME_BITS(expected, first);
        EXPECT_SAME_BITS(second, other);
    }
}

TEST(Blend, AHundredPercentGivesTheSecondAndNoneTheFirst)
{
    std::vector<float> first = {0.25f, 0.75f};
    std::vector<float> second = {0.5f, 0.1f};
    blend(first.data(), second.data(), 0.0f, 1, 2);
    EXPECT_EQ(first, (std::vector<float>{0.25f, 0.75f}));
    blend(first.data(), second.data(), 100.0f, 1, 2);
    EXPECT_EQ(first, second);
}

TEST(Blend, TheLongFormsBlendTheWholeImage)
{
    auto const second = random_image<float>(kTexels, 2);
    auto expected = random_image<float>(kTexels, 1);
    auto first = expected;
    auto other = second;
    blend(expected.data(), other.data(), 40.0f, kHeight, kWidth);
    blend(first.data(), other.data(), 40.0f, kHeight, kWidth, 1, 4);
    EXPECT_SAME_BITS(expected, first);

    auto white = random_image<float3>(kTexels, 3);
    auto whitened = white;
    blend(white.data(), 40.0f, kHeight, kWidth);
    blend(whitened.data(), 40.0f, kHeight, kWidth, 1, 4);
    EXPECT_SAME_BITS(white, whitened);
}

TEST(Blend, TowardsWhiteKeepsTheImageAtAHundredPercent)
{
    for (float const percent : {0.0f, 20.0f, 62.5f, 100.0f, 150.0f, -5.0f}) {
        auto image = random_image<float3>(kTexels, 1, Values::kSigned);
        std::vector<float3> expected(kTexels);
        std::transform(image.begin(), image.end(), expected.begin(), [&](float3 v) {
            return float3{faded(1.0f, v.x, percent), faded(1.0f, v.y, percent), faded(1.0f, v.z, percent)};
        });
        blend(image.data(), percent, kHeight, kWidth);
        EXPECT_SAME_BITS(expected, image);
    }
    float3 colour{0.5f, 0.25f, 0.0f};
    blend(&colour, 0.0f, 1, 1);
    EXPECT_EQ(colour.x, 1.0f);
    EXPECT_EQ(colour.y, 1.0f);
    EXPECT_EQ(colour.z, 1.0f);
}

TEST(Blend, ANaNPercentSpreadsToEveryPixel)
{
    std::vector<float> first(4, 0.5f);
    std::vector<float> second(4, 0.25f);
    blend(first.data(), second.data(), kNaN, 2, 2);
    EXPECT_THAT(first, Each(testing::IsNan()));
    float3 colour{0.5f, 0.25f, 0.0f};
    blend(&colour, kNaN, 1, 1);
    EXPECT_THAT(colour.z, testing::IsNan());
}

TEST(Blend, SizesBelowOneChangeNothing)
{
    float first = 0.5f;
    float second = 0.25f;
    float3 colour{0.5f, 0.25f, 0.0f};
    for (auto const& [height, width] : {std::pair{0, 5}, {5, 0}, {-1, 5}}) {
        blend(&first, &second, 100.0f, height, width);
        blend(&colour, 0.0f, height, width);
    }
    EXPECT_EQ(first, 0.5f);
    EXPECT_EQ(colour.y, 0.25f);
}

TEST(Blend, SingleLinesAndOneTexelAreBlendedWhole)
{
    for (auto const& [height, width] : {std::pair{1, 1}, {1, 9}, {9, 1}}) {
        auto const texels = static_cast<std::size_t>(height * width);
        auto const before = random_image<float>(texels + 1, 4);
        auto first = before;
        auto second = random_image<float>(texels + 1, 5);
        blend(first.data(), second.data(), 25.0f, height, width);
        auto const white_before = random_image<float3>(texels + 1, 6);
        auto white = white_before;
        blend(white.data(), 25.0f, height, width);
        for (std::size_t i = 0; i < texels; ++i) {
            EXPECT_EQ(first[i], faded(before[i], second[i], 25.0f));
            EXPECT_EQ(white[i].z, faded(1.0f, white_before[i].z, 25.0f));
        }
        EXPECT_EQ(first[texels], before[texels]) << "behind the image";
        EXPECT_EQ(white[texels].x, white_before[texels].x);
    }
}

TEST(Blend, AnImageMayBeBlendedWithItself)
{
    auto image = random_image<float>(kTexels, 1);
    auto expected = image;
    for (float& v : expected) {
        v = faded(v, v, 30.0f);
    }
    blend(image.data(), image.data(), 30.0f, kHeight, kWidth);
    EXPECT_SAME_BITS(expected, image);
}

TEST(Blend, TheNumberOfThreadsDoesNotShow)
{
    auto second = random_image<float>(kTexels, 2);
    auto one = random_image<float>(kTexels, 1);
    auto many = one;
    omp_set_num_threads(1);
    blend(one.data(), second.data(), 70.0f, kHeight, kWidth);
    omp_set_num_threads(7);
    blend(many.data(), second.data(), 70.0f, kHeight, kWidth);
    omp_set_num_threads(omp_get_num_procs());
    EXPECT_SAME_BITS(one, many);
}

TEST(Blend, MultiplyAndScreenRoundOnceAndDoNotClamp)
{
    EXPECT_EQ(multiply(3.0f, -2.0f), -6.0f);
    EXPECT_EQ(multiply(0.1f, 0.3f), static_cast<float>(double(0.1f) * double(0.3f)));
    for (float const b : {123.0f, -0.3f, 0.0f, std::numeric_limits<float>::max(),
                          -std::numeric_limits<float>::denorm_min()}) {
        EXPECT_EQ(multiply(0.0f, b), 0.0f);
    }
    EXPECT_EQ(screen(0.5f, 0.5f), 0.75f);
    EXPECT_EQ(screen(2.0f, 2.0f), 0.0f);
    EXPECT_EQ(screen(0.1f, 0.3f), static_cast<float>(1.0 - (1.0 - double(0.1f)) * (1.0 - double(0.3f))));
    for (float const b : {0.0f, 0.3f, -4.0f, 1e30f}) {
        EXPECT_EQ(screen(1.0f, b), 1.0f);
    }
}

} // namespace
