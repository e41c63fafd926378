// SPDX-License-Identifier: MIT
/// Brightness, contrast and limits. Rounding is part of the contract: a differing last bit is a failure.
#include "filters/tone.h"

#include "every_target.h"
#include "random_image.h"
#include "same_bits.h"
#include "tone_reference.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>

namespace {

using umbrixlib::test::for_every_target;
using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
namespace reference = umbrixlib::test::reference;

struct Size {
    int height, width;

    std::size_t pixels() const { return static_cast<std::size_t>(height) * static_cast<std::size_t>(width); }
};

constexpr Size kSizes[] = {{1, 1}, {1, 7}, {3, 5}, {16, 1}, {31, 2}, {17, 33}, {67, 61}, {130, 65}};
constexpr float kAmounts[] = {0.0f, -0.0f, 0.3f, -0.7f, 1.0f, -1.0f, 7.0f, -kInfinity, kNaN};

/// Calls of one operator in its three forms: reference, plain, one share.
template <typename Pixel>
struct Brighten {
    float amount;
    template <typename... Share>
    void expected(Pixel* p, Size s, Share... share) const
    {
        reference::brighten(p, s.height, s.width, amount, share...);
    }
    template <typename... Share>
    void actual(Pixel* p, Size s, Share... share) const
    {
        brighten(p, s.height, s.width, amount, share...);
    }
};

template <typename Pixel>
struct ChangeContrast {
    float amount;
    template <typename... Share>
    void expected(Pixel* p, Size s, Share... share) const
    {
        reference::change_contrast(p, s.height, s.width, amount, share...);
    }
    template <typename... Share>
    void actual(Pixel* p, Size s, Share... share) const
    {
        change_contrast(p, s.height, s.width, amount, share...);
    }
};

template <typename Pixel>
struct LimitColor {
    int low, high;
    template <typename... Share>
    void expected(Pixel* p, Size s, Share... share) const
    {
        reference::limit_color(p, s.height, s.width, low, high, share...);
    }
    template <typename... Share>
    void actual(Pixel* p, Size s, Share... share) const
    {
        limit_color(p, s.height, s.width, low, high, share...);
    }
};

/// Runs @p body with every operator, each with usual and with unusual arguments.
template <typename Pixel, typename Body>
void for_every_operator(Body&& body)
{
    for (float const amount : kAmounts) {
        SCOPED_TRACE(amount);
        body(Brighten<Pixel>{amount});
        body(ChangeContrast<Pixel>{amount});
    }
    for (auto const& [low, high] :
         {std::pair{0, 255}, {10, 240}, {300, -1}, {INT_MIN, INT_MAX}, {128, 127}}) {
        body(LimitColor<Pixel>{low, high});
    }
}

template <typename Pixel>
class ToneOperators : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};
using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(ToneOperators, Pixels);

TYPED_TEST(ToneOperators, EqualTheReferenceUnderEveryInstructionSet)
{
    for (Size const size : kSizes) {
        auto const image = random_image<TypeParam>(size.pixels(), 11, Values::kHostile);
        for_every_operator<TypeParam>([&](auto const& tone) {
            auto expected = image;
            tone.expected(expected.data(), size);
            for_every_target([&](char const* target) {
                SCOPED_TRACE(target);
                auto actual = image;
                tone.actual(actual.data(), size);
                EXPECT_SAME_BITS(expected, actual);
                actual = image;
                tone.actual(actual.data(), size, 0, 1);
                EXPECT_SAME_BITS(expected, actual);
            });
        });
    }
}

TYPED_TEST(ToneOperators, GiveTheSameBitsOnAnyNumberOfThreads)
{
    constexpr Size kSize{123, 201};
    auto const image = random_image<TypeParam>(kSize.pixels(), 12, Values::kSigned);
    for_every_operator<TypeParam>([&](auto const& tone) {
        auto expected = image;
        tone.expected(expected.data(), kSize);
        for (int const threads : {1, 2, 3}) {
            omp_set_num_threads(threads);
            auto actual = image;
            tone.actual(actual.data(), kSize);
            EXPECT_SAME_BITS(expected, actual);
        }
    });
}

TYPED_TEST(ToneOperators, AShareChangesItsOwnPixelsOnlyAndAllSharesMakeTheWhole)
{
    constexpr Size kSize{41, 37};
    auto const image = random_image<TypeParam>(kSize.pixels(), 13, Values::kHostile);
    for_every_operator<TypeParam>([&](auto const& tone) {
        auto whole = image;
        tone.expected(whole.data(), kSize);
        for (int const threads : {1, 2, 3, 7, 2000}) {
            auto united = image;
            for (int thread = 0; thread < threads; ++thread) {
                tone.actual(united.data(), kSize, thread, threads);
                if (thread == 1) {
                    auto first_two = image;
                    tone.expected(first_two.data(), kSize, 0, threads);
                    tone.expected(first_two.data(), kSize, 1, threads);
                    EXPECT_SAME_BITS(first_two, united);
                }
            }
            EXPECT_SAME_BITS(whole, united);
        }
    });
}

TYPED_TEST(ToneOperators, ASharePastTheEndOrOfNoThreadsDoesNothing)
{
    constexpr Size kSize{4, 4};
    auto const image = random_image<TypeParam>(kSize.pixels(), 14);
    for_every_operator<TypeParam>([&](auto const& tone) {
        auto actual = image;
        tone.actual(actual.data(), kSize, 16, 2);
        tone.actual(actual.data(), kSize, INT_MAX, INT_MAX);
        tone.actual(actual.data(), kSize, 0, 0);
        tone.actual(actual.data(), kSize, 0, -1);
        tone.actual(actual.data(), kSize, -1, 2);
        EXPECT_SAME_BITS(image, actual);
    });
}

TYPED_TEST(ToneOperators, LeaveAnEmptyImageAlone)
{
    auto const image = random_image<TypeParam>(8, 15);
    auto actual = image;
    for (Size const size : {Size{0, 5}, Size{0, 0}, Size{-2, 4}}) {
        for_every_operator<TypeParam>([&](auto const& tone) {
            tone.actual(actual.data(), size);
            tone.actual(actual.data(), size, 0, 2);
        });
    }
    EXPECT_SAME_BITS(image, actual);
}

TEST(Brighten, OnFloatsReachesTheFirstHeightElementsOnly)
{
    for (bool const as_share : {false, true}) {
        std::vector<float> image(400, 0.25f);
        as_share ? brighten(image.data(), 4, 100, 0.5f, 0, 1) : brighten(image.data(), 4, 100, 0.5f);
        std::vector<float> expected(400, 0.25f);
        std::fill_n(expected.begin(), 4, 0.75f);
        EXPECT_SAME_BITS(expected, image);
    }
}

TEST(Brighten, AddsAndStaysWithinZeroAndOne)
{
    std::vector<float3> image{{0.25f, 0.75f, -3.0f}};
    brighten(image.data(), 1, 1, 0.5f);
    EXPECT_SAME_BITS((std::vector<float3>{{0.75f, 1.0f, 0.0f}}), image);
}

TEST(Brighten, AmountsBeyondOneCountAsOne)
{
    std::vector<float3> up{{-0.5f, 0.25f, 0.0f}};
    brighten(up.data(), 1, 1, 5.0f);
    EXPECT_SAME_BITS((std::vector<float3>{{0.5f, 1.0f, 1.0f}}), up);
    std::vector<float3> down{{1.5f, 0.25f, 1.0f}};
    brighten(down.data(), 1, 1, -5.0f);
    EXPECT_SAME_BITS((std::vector<float3>{{0.5f, 0.0f, 0.0f}}), down);
}

TEST(Brighten, LeavesAlphaAlone)
{
    std::vector<float4> image(9, float4{0.25f, 0.25f, 0.25f, 7.0f});
    brighten(image.data(), 3, 3, 0.5f);
    EXPECT_SAME_BITS((std::vector<float4>(9, float4{0.75f, 0.75f, 0.75f, 7.0f})), image);
}

TEST(ChangeContrast, MovesValuesAwayFromMidGreyOrTowardsIt)
{
    std::vector<float> image{0.75f, 0.25f, 0.5f, 1.0f, 0.0f};
    change_contrast(image.data(), 5, 1, 0.5f);
    EXPECT_SAME_BITS((std::vector<float>{0.875f, 0.125f, 0.5f, 1.0f, 0.0f}), image);
    change_contrast(image.data(), 5, 1, -0.5f);
    EXPECT_SAME_BITS((std::vector<float>{0.6875f, 0.3125f, 0.5f, 0.75f, 0.25f}), image);
}

TEST(ChangeContrast, AmountsBeyondOneCountAsOne)
{
    auto const image = random_image<float3>(50, 16);
    for (float const sign : {1.0f, -1.0f}) {
        auto expected = image;
        change_contrast(expected.data(), 5, 10, sign);
        auto actual = image;
        change_contrast(actual.data(), 5, 10, 5.0f * sign);
        EXPECT_SAME_BITS(expected, actual);
    }
}

TEST(ChangeContrast, LeavesMidGreyAtAnyAmount)
{
    for (float const amount : {-1.0f, -0.3f, 0.0f, 0.7f, 1.0f}) {
        std::vector<float> image(3, 0.5f);
        change_contrast(image.data(), 3, 1, amount);
        EXPECT_SAME_BITS(std::vector<float>(3, 0.5f), image);
    }
}

TEST(ChangeContrast, OfMinusOneTurnsEverythingInRangeIntoMidGrey)
{
    auto image = random_image<float>(200, 17);
    change_contrast(image.data(), 200, 1, -1.0f);
    EXPECT_SAME_BITS(std::vector<float>(200, 0.5f), image);
}

TEST(LimitColor, BeyondBothEndsInverts)
{
    auto image = random_image<float>(100, 18);
    auto expected = image;
    for (float& v : expected) {
        v = 1.0f - v;
    }
    limit_color(image.data(), 10, 10, 300, -1);
    EXPECT_SAME_BITS(expected, image);
}

TEST(LimitColor, FromZeroTo255IsTheIdentity)
{
    auto const image = random_image<float3>(100, 19);
    auto actual = image;
    limit_color(actual.data(), 10, 10, 0, 255);
    EXPECT_SAME_BITS(image, actual);
}

TEST(LimitColor, MapsTheRangeAndDoesNotClamp)
{
    std::vector<float> image{0.0f, 1.0f, 0.5f, 2.0f};
    limit_color(image.data(), 2, 2, 51, 204);
    EXPECT_FLOAT_EQ(image[0], 0.2f);
    EXPECT_FLOAT_EQ(image[1], 0.8f);
    EXPECT_FLOAT_EQ(image[2], 0.5f);
    EXPECT_FLOAT_EQ(image[3], 1.4f);
}

TEST(LimitColor, RoundsTheShareOfTheLowLevelBeforeTheSum)
{
    // One of the rare values whose last bit shows whether the product is fused with the sum.
    for_every_target([](char const* target) {
        SCOPED_TRACE(target);
        std::vector<float> image(9, 0x1.fffe02p-12f);
        limit_color(image.data(), 3, 3, 153, 173);
        EXPECT_SAME_BITS(std::vector<float>(9, 0x1.33383ap-1f), image);
    });
}

TEST(LimitColor, LeavesAlphaAlone)
{
    std::vector<float4> image(5, float4{0.0f, 0.0f, 0.0f, 0.25f});
    limit_color(image.data(), 5, 1, 255, 0);
    EXPECT_SAME_BITS((std::vector<float4>(5, float4{1.0f, 1.0f, 1.0f, 0.25f})), image);
}

} // namespace
