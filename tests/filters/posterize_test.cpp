// SPDX-License-Identifier: MIT
#include "filters/tone.h"

#include "random_image.h"
#include "same_bits.h"
#include "tone_reference.h"

#include <climits>
#include <gtest/gtest.h>
#include <limits>
#include <omp.h>

namespace {

using umbrixlib::test::random_image;
using umbrixlib::test::Values;
namespace reference = umbrixlib::test::reference;

template <typename Pixel>
class PosterizeOf : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};
using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(PosterizeOf, Pixels);

TYPED_TEST(PosterizeOf, EqualsTheReferenceOnAnyNumberOfThreads)
{
    using limits = std::numeric_limits<float>;
    auto const image = random_image<TypeParam>(37 * 23, 21, Values::kHostile);
    for (float const step : {-1.0f, 0.0f, 0.5f, 1.0f, 1.5f, 2.0f, 37.0f, 1000.0f, limits::denorm_min(),
                             limits::infinity(), limits::quiet_NaN()}) {
        SCOPED_TRACE(step);
        auto expected = image;
        reference::posterize(expected.data(), step, 37, 23);
        for (int const threads : {1, 2, 3}) {
            omp_set_num_threads(threads);
            auto actual = image;
            posterize(actual.data(), step, 37, 23, 5, -5);
            EXPECT_SAME_BITS(expected, actual);
        }
    }
}

/// From 2^24 steps on their number is rounded to float before it is scaled back.
TYPED_TEST(PosterizeOf, EqualsTheReferenceOnLargeValues)
{
    auto image = random_image<TypeParam>(64 * 50, 24, Values::kSigned);
    auto* const floats = reinterpret_cast<float*>(image.data());
    for (std::size_t i = 0; i < image.size() * (sizeof(TypeParam) / sizeof(float)); ++i) {
        floats[i] *= 3e6f;
    }
    for (float const step : {0.7f, 1.0f, 1.3f, 11.0f, 255.0f}) {
        SCOPED_TRACE(step);
        auto expected = image;
        reference::posterize(expected.data(), step, 64, 50);
        auto actual = image;
        posterize(actual.data(), step, 64, 50, 0, 0);
        EXPECT_SAME_BITS(expected, actual);
    }
}

TYPED_TEST(PosterizeOf, SingleLinesAndOneTexelEqualTheReference)
{
    for (auto const& [height, width] : {std::pair{1, 1}, {1, 9}, {9, 1}}) {
        auto const image = random_image<TypeParam>(static_cast<std::size_t>(height * width) + 1, 23);
        auto expected = image;
        reference::posterize(expected.data(), 20.0f, height, width);
        auto actual = image;
        posterize(actual.data(), 20.0f, height, width, 0, 0);
        EXPECT_SAME_BITS(expected, actual);
    }
}

TYPED_TEST(PosterizeOf, AnEmptyImageDoesNothing)
{
    auto const image = random_image<TypeParam>(6, 22);
    auto actual = image;
    posterize(actual.data(), 50.0f, 0, 6, 0, 0);
    posterize(actual.data(), 50.0f, 3, -2, 0, 0);
    EXPECT_SAME_BITS(image, actual);
}

TEST(Posterize, AStepOfOneChangesPixelsAndLeavesFloatsAlone)
{
    std::vector<float> floats{0.3f};
    posterize(floats.data(), 1.0f, 1, 1, 0, 0);
    EXPECT_EQ(floats[0], 0.3f);
    std::vector<float3> pixels{{0.3f, 1.0f, 0.0f}};
    posterize(pixels.data(), 1.0f, 1, 1, 0, 0);
    EXPECT_EQ(pixels[0].x, static_cast<float>(77.0 / 255.0)); // 0.3 * 255 + 0.5 = 77.0, just above
    EXPECT_EQ(pixels[0].y, 1.0f);
    EXPECT_EQ(pixels[0].z, 0.0f);
}

TEST(Posterize, FloatsAreNotScaledBackByTheStep)
{
    std::vector<float> image{1.0f, 0.5f};
    posterize(image.data(), 2.0f, 2, 1, 0, 0);
    EXPECT_EQ(image[0], static_cast<float>(128.0 / 255.0)); // 127.5 + 0.5
    EXPECT_EQ(image[1], static_cast<float>(64.0 / 255.0));  // 63.75 + 0.5
    std::vector<float> finer{1.0f};
    posterize(finer.data(), 1.5f, 1, 1, 0, 0);
    EXPECT_EQ(finer[0], static_cast<float>(170.0 / 255.0)); // 170 + 0.5
}

TEST(Posterize, QuantisesAlphaToo)
{
    std::vector<float4> image{{0.3f, 0.7f, 1.0f, 0.6f}};
    posterize(image.data(), 255.0f, 1, 1, 0, 0);
    EXPECT_SAME_BITS((std::vector<float4>{{0.0f, 1.0f, 1.0f, 1.0f}}), image);
}

TEST(Posterize, ValuesThatFitNoIntegerBecomeTheLowestOne)
{
    std::vector<float3> image{{std::numeric_limits<float>::quiet_NaN(), 1e10f, -1e10f}};
    posterize(image.data(), 1.0f, 1, 1, 0, 0);
    auto const lowest = static_cast<float>(static_cast<double>(INT_MIN) / 255.0);
    EXPECT_SAME_BITS((std::vector<float3>{{lowest, lowest, lowest}}), image);
}

} // namespace
