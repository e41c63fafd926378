// SPDX-License-Identifier: MIT
#include "filters/high_fidelity.h"

#include "random_image.h"
#include "same_bits.h"

namespace {

using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::same_bits;
using umbrixlib::test::Values;

testing::AssertionResult gives(float3 vector, float3 colour)
{
    float3 const actual = HighFidelity(vector);
    return same_bits(&colour.x, &actual.x, 3);
}

TEST(HighFidelity, AxesHaveTheirColours)
{
    EXPECT_TRUE(gives({0, 0, 1}, {0.5f, 0.5f, 1.0f}));
    EXPECT_TRUE(gives({0, 0, -1}, {0.5f, 0.5f, 0.5f}));
    EXPECT_TRUE(gives({2, -2, 0}, {1.0f, 0.0f, 0.5f}));
    EXPECT_TRUE(gives({-0.5f, 0.25f, 0.5f}, {0.25f, 0.625f, 0.75f}));
}

TEST(HighFidelity, AnInfiniteComponentTurnsTheOtherChannelsIntoNaN)
{
    EXPECT_TRUE(gives({kInfinity, 0, 0}, {1.0f, kNaN, kNaN}));
    EXPECT_TRUE(gives({0, -kInfinity, 0}, {kNaN, 0.0f, kNaN}));
    EXPECT_TRUE(gives({0, 0, kInfinity}, {kNaN, kNaN, 1.0f}));
}

TEST(HighFidelity, EqualsTheDotProductsWithTheAxesBitForBit)
{
    auto const sat = [](double e) {
        float const v = static_cast<float>(e);
        return v > 1.0f ? 1.0 : v < 0.0f ? 0.0 : double(v);
    };
    for (float3 const v : random_image<float3>(5000, 1, Values::kHostile)) {
        double const x = double(v.x);
        double const y = double(v.y);
        double const z = double(v.z);
        auto red = static_cast<float>(sat(x + y * 0.0 + z * 0.0) * 0.5 + 0.5);
        red = static_cast<float>(double(red) - sat(y * 0.0 - x * 1.0 + z * 0.0) * 0.5);
        auto green = static_cast<float>(sat(y + x * 0.0 + z * 0.0) * 0.5 + 0.5);
        green = static_cast<float>(double(green) - sat(x * 0.0 - y * 1.0 + z * 0.0) * 0.5);
        auto const blue = static_cast<float>(sat(x * 0.0 + y * 0.0 + z) * 0.5 + 0.5);
        ASSERT_TRUE(gives(v, {red, green, blue})) << v.x << " " << v.y << " " << v.z;
    }
}

} // namespace
