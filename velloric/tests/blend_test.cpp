// SPDX-License-Identifier: MIT
#include "blend_reference.h"
#include "boundary/texture_kernels.h"
#include "every_target.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;

using Image = std::vector<float3>;

/// An image of one row in three equal channels.
Image grey(std::vector<float> const& values)
{
    Image image;
    for (float const value : values) {
        image.push_back({value, value, value});
    }
    return image;
}

Image blended(BlendType type, float opacity, Image first, Image second)
{
    Image result(first.size());
    Blend(type, opacity, first.data(), second.data(), result.data(), 1, static_cast<int>(first.size()));
    return result;
}

Image normals_blended(float opacity, Image first, Image second)
{
    Image result(first.size());
    BlendNormal(opacity, first.data(), second.data(), result.data(), 1, static_cast<int>(first.size()));
    return result;
}

TEST(Blend, NoneGivesTheFirstAndAllTheSecond)
{
    auto const first = random_image<float3>(200, 1, Values::kSigned);
    auto const second = random_image<float3>(200, 2, Values::kSigned);
    EXPECT_SAME_BITS(first, blended(BlendType_Blend, 0.0f, first, second));
    EXPECT_SAME_BITS(second, blended(BlendType_Blend, 100.0f, first, second));
    EXPECT_SAME_BITS(first, blended(BlendType_Overlay, 0.0f, first, second));
}

TEST(Blend, CrossFadesInProportion)
{
    EXPECT_SAME_BITS(grey({0.25f, 1.0f, -1.5f}),
                     blended(BlendType_Blend, 25.0f, grey({0.0f, 1.0f, -2.0f}), grey({1.0f, 1.0f, 0.0f})));
}

TEST(Blend, RoundsTheShareAndThenTheSum)
{
    auto const first = random_image<float3>(200, 3, Values::kSigned);
    auto const second = random_image<float3>(200, 4, Values::kSigned);
    double const t = static_cast<double>(static_cast<float>(static_cast<double>(37.7f) / 100.0));
    Image const result = blended(BlendType_Blend, 37.7f, first, second);
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_EQ(result[i].y, static_cast<float>(static_cast<double>(second[i].y) * t +
                                                  static_cast<double>(first[i].y) * (1.0 - t)));
    }
}

TEST(Blend, TheOpacityIsClampedAndNaNIsNone)
{
    Image const first = grey({0.2f, 0.9f});
    Image const second = grey({0.7f, 0.1f});
    for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
        Image const none = blended(type, 0.0f, first, second);
        Image const all = blended(type, 100.0f, first, second);
        for (float const opacity : {-1.0f, -kInfinity, kNaN}) {
            EXPECT_SAME_BITS(none, blended(type, opacity, first, second));
        }
        for (float const opacity : {100.5f, kInfinity}) {
            EXPECT_SAME_BITS(all, blended(type, opacity, first, second));
        }
    }
}

TEST(Blend, OverlayMultipliesBelowTheMiddleAndScreensAboveIt)
{
    EXPECT_SAME_BITS(grey({0.0f, 0.125f, 0.25f, 0.75f, 0.625f, 1.0f}),
                     blended(BlendType_Overlay, 100.0f, grey({0.0f, 0.25f, 0.5f, 0.75f, 0.75f, 1.0f}),
                             grey({0.9f, 0.25f, 0.25f, 0.5f, 0.25f, 0.3f})));
}

TEST(Blend, AGreyOfOneHalfOverlaysNothing)
{
    auto const first = random_image<float3>(200, 5);
    Image const result = blended(BlendType_Overlay, 100.0f, first, Image(200, float3{0.5f, 0.5f, 0.5f}));
    EXPECT_SAME_BITS(first, result);
}

TEST(Blend, OverlayFadesFromTheFirst)
{
    // All of the overlay makes 0.25 * 0.25 * 2 = 0.125 of 0.25; half of it lies in the middle.
    EXPECT_SAME_BITS(grey({0.1875f}), blended(BlendType_Overlay, 50.0f, grey({0.25f}), grey({0.25f})));
}

TEST(Blend, TheResultMayBeEitherInput)
{
    auto const first = random_image<float3>(97, 6);
    auto const second = random_image<float3>(97, 7);
    for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
        Image const expected = blended(type, 40.0f, first, second);
        Image a = first;
        Image b = second;
        Blend(type, 40.0f, a.data(), b.data(), a.data(), 1, 97);
        EXPECT_SAME_BITS(expected, a);
        EXPECT_SAME_BITS(second, b);
        a = first;
        Blend(type, 40.0f, a.data(), b.data(), b.data(), 1, 97);
        EXPECT_SAME_BITS(expected, b);
        Image both = first;
        Blend(type, 40.0f, both.data(), both.data(), both.data(), 1, 97);
        EXPECT_SAME_BITS(blended(type, 40.0f, first, first), both);
    }
}

TEST(Blend, SlicesAreTheTexelsOfTheirThread)
{
    auto first = random_image<float3>(5 * 7, 8, Values::kHostile);
    auto second = random_image<float3>(5 * 7, 9, Values::kHostile);
    float3 const untouched = {-7.0f, -7.0f, -7.0f};
    for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
        Image const whole = blended(type, 60.0f, first, second);
        for (int const threads : {1, 2, 3, 40}) {
            for (int thread = 0; thread < threads; ++thread) {
                Image expected(35, untouched);
                for (int i = thread; i < 35; i += threads) {
                    expected[static_cast<std::size_t>(i)] = whole[static_cast<std::size_t>(i)];
                }
                Image result(35, untouched);
                Blend(type, 60.0f, first.data(), second.data(), result.data(), 5, 7, thread, threads);
                EXPECT_SAME_BITS(expected, result);
            }
        }
    }
}

TEST(Blend, EqualsItsDefinitionOnEverySetOfInstructions)
{
    for (std::size_t const count : {1U, 2U, 3U, 5U, 8U, 13U, 500U, 4097U}) {
        for (Values const values : {Values::kUnit, Values::kHostile}) {
            auto const first = random_image<float3>(count, 20, values);
            auto const second = random_image<float3>(count, 21, values);
            for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
                for (float const opacity : {0.0f, 33.0f, 100.0f}) {
                    Image expected;
                    for (std::size_t i = 0; i < count; ++i) {
                        auto const of = [&](float a, float b) {
                            return velloric::reference::blended(type, opacity, a, b);
                        };
                        expected.push_back({of(first[i].x, second[i].x), of(first[i].y, second[i].y),
                                            of(first[i].z, second[i].z)});
                    }
                    umbrixlib::test::for_every_target([&](char const* target) {
                        EXPECT_SAME_BITS(expected, blended(type, opacity, first, second))
                            << target << ", " << count << " texels, type " << type << ", " << opacity;
                        if (type == BlendType_Blend) {
                            EXPECT_SAME_BITS(expected, normals_blended(opacity, second, first)) << target;
                        }
                    });
                }
            }
        }
    }
}

TEST(Blend, IsTheSameForEveryTeam)
{
    auto const first = random_image<float3>(500, 10, Values::kHostile);
    auto const second = random_image<float3>(500, 11, Values::kHostile);
    Image const one = blended(BlendType_Overlay, 33.0f, first, second);
    for_every_team([&](int) { EXPECT_SAME_BITS(one, blended(BlendType_Overlay, 33.0f, first, second)); });
}

TEST(Blend, NoSizeNoWork)
{
    Blend(BlendType_Blend, 50.0f, nullptr, nullptr, nullptr, 0, 5);
    Blend(BlendType_Overlay, 50.0f, nullptr, nullptr, nullptr, 5, -1);
    Blend(BlendType_Blend, 50.0f, nullptr, nullptr, nullptr, -1, -1, 0, 1);
}

TEST(BlendNormal, OpacityIsTheWeightOfFirst)
{
    auto const first = random_image<float3>(200, 12, Values::kSigned);
    auto const second = random_image<float3>(200, 13, Values::kSigned);
    EXPECT_SAME_BITS(first, normals_blended(100.0f, first, second));
    EXPECT_SAME_BITS(second, normals_blended(0.0f, first, second));
    EXPECT_SAME_BITS(grey({0.25f}), normals_blended(25.0f, grey({1.0f}), grey({0.0f})));
}

TEST(BlendNormal, TheOpacityIsClampedAndNaNIsNone)
{
    Image const first = grey({0.2f, 0.9f});
    Image const second = grey({0.7f, 0.1f});
    for (float const opacity : {-1.0f, -kInfinity, kNaN}) {
        EXPECT_SAME_BITS(second, normals_blended(opacity, first, second));
    }
    for (float const opacity : {100.5f, kInfinity}) {
        EXPECT_SAME_BITS(first, normals_blended(opacity, first, second));
    }
}

TEST(BlendNormal, NothingIsNormalised)
{
    EXPECT_SAME_BITS((Image{{2.0f, 0.0f, 1.0f}}),
                     normals_blended(50.0f, {{4.0f, 1.0f, 1.0f}}, {{0.0f, -1.0f, 1.0f}}));
}

TEST(BlendNormal, TheResultMayBeEitherInput)
{
    auto const first = random_image<float3>(97, 14, Values::kSigned);
    auto const second = random_image<float3>(97, 15, Values::kSigned);
    Image const expected = normals_blended(40.0f, first, second);
    Image a = first;
    Image b = second;
    BlendNormal(40.0f, a.data(), b.data(), a.data(), 1, 97);
    EXPECT_SAME_BITS(expected, a);
    a = first;
    BlendNormal(40.0f, a.data(), b.data(), b.data(), 1, 97);
    EXPECT_SAME_BITS(expected, b);
}

TEST(BlendNormal, IsTheSameForEveryTeam)
{
    auto const first = random_image<float3>(500, 16, Values::kHostile);
    auto const second = random_image<float3>(500, 17, Values::kHostile);
    Image const one = normals_blended(33.0f, first, second);
    for_every_team([&](int) { EXPECT_SAME_BITS(one, normals_blended(33.0f, first, second)); });
}

TEST(BlendNormal, NoSizeNoWork)
{
    BlendNormal(50.0f, nullptr, nullptr, nullptr, 0, 5);
    BlendNormal(50.0f, nullptr, nullptr, nullptr, 5, -1);
}

TEST(Blend, AThreadThatIsNoneOfThemHasNoShare)
{
    auto first = random_image<float3>(35, 18);
    auto second = random_image<float3>(35, 19);
    for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
        for (int const thread : {-1, 3, 4, 34}) {
            Image result(35, float3{-1.0f, -1.0f, -1.0f});
            Blend(type, 50.0f, first.data(), second.data(), result.data(), 5, 7, thread, 3);
            EXPECT_SAME_BITS(Image(35, float3{-1.0f, -1.0f, -1.0f}), result);
        }
    }
}

} // namespace
