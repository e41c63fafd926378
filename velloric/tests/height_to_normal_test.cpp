// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "every_target.h"
#include "height_to_normal_reference.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

using umbrixlib::test::for_every_target;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;
using velloric::test::Size;
using velloric::test::sizes;

std::vector<float3> normals_of(std::vector<float> heights, Size size)
{
    std::vector<float3> normals(heights.size());
    Height2Normal(heights.data(), normals.data(), size.height, size.width);
    return normals;
}

void expect_definition(std::vector<float> const& heights, Size size)
{
    SCOPED_TRACE(testing::Message() << size.height << " x " << size.width);
    std::vector<float3> definition(heights.size());
    velloric::reference::height_to_normal(heights.data(), definition.data(), size.height, size.width);
    for_every_target([&](char const* target) {
        SCOPED_TRACE(target);
        EXPECT_SAME_BITS(definition, normals_of(heights, size));
    });
}

TEST(Height2Normal, EqualsItsDefinitionOnEverySize)
{
    for (Values const values : {Values::kUnit, Values::kSigned, Values::kHostile}) {
        for (Size const size : sizes()) {
            expect_definition(random_image<float>(size.texels(), 1, values), size);
        }
    }
}

/// Slopes whose squares are near to 1, where both roundings of the sum show.
TEST(Height2Normal, RoundsTheLengthAsItsDefinitionDoes)
{
    Size const size = {301, 333};
    std::vector<float> heights = random_image<float>(size.texels(), 2, Values::kSigned);
    std::mt19937 generator(3);
    for (float& height : heights) {
        height = std::ldexp(height, static_cast<int>(generator() % 29) - 26);
    }
    expect_definition(heights, size);
}

/// Slopes whose squares add up to nearly the middle of two floats. Adding 1 to the square in x first tips the
/// sum to the other float, and all of the normal shows it.
TEST(Height2Normal, AddsTheOneLast)
{
    struct Case {
        float y_slope, x_slope, z;
    };
    for (Case const& each : {Case{0x1.ce57ep+26f, 0x1.d39174p+14f, 0x1.1b7eb6p-27f},
                             Case{0x1.add222p+26f, 0x1.e33e2p+14f, 0x1.30f216p-27f},
                             Case{0x1.89599ep+26f, 0x1.e033dap+14f, 0x1.4d384p-27f},
                             Case{0x1.d94474p+26f, 0x1.be54c2p+14f, 0x1.14f386p-27f}}) {
        std::vector<float> const heights = {0.0f, each.y_slope, 0.0f, each.x_slope, 0.0f,
                                            0.0f, 0.0f,         0.0f, 0.0f};
        EXPECT_EQ(normals_of(heights, {3, 3})[4].z, each.z);
        expect_definition(heights, {3, 3});
    }
}

TEST(Height2Normal, EqualsItsDefinitionOnFloatsOfAnyMagnitude)
{
    Size const size = {97, 203};
    std::mt19937 generator(4);
    std::vector<float> heights(size.texels());
    for (float& height : heights) {
        auto const bits = static_cast<std::uint32_t>(generator());
        std::memcpy(&height, &bits, sizeof height);
    }
    expect_definition(heights, size);
}

TEST(Height2Normal, FlatGroundPointsUpExactly)
{
    for (float const height : {0.0f, 0.3f, -1e6f}) {
        for (float3 const& normal : normals_of(std::vector<float>(7 * 19, height), {7, 19})) {
            EXPECT_EQ(normal.x, 0.0f);
            EXPECT_EQ(normal.y, 0.0f);
            EXPECT_EQ(normal.z, 1.0f);
        }
    }
}

TEST(Height2Normal, LeansAwayFromRisingGroundAndDoesNotHalveTheSlope)
{
    // Columns rise by 1; texel (1, 1) has -1 to the left and 1 to the right.
    float3 const along_x = normals_of({-1, 0, 1, -1, 0, 1, -1, 0, 1}, {3, 3})[4];
    EXPECT_FLOAT_EQ(along_x.x, -2.0f / std::sqrt(5.0f));
    EXPECT_EQ(along_x.y, 0.0f);
    EXPECT_FLOAT_EQ(along_x.z, 1.0f / std::sqrt(5.0f));
    // Rows rise by 1, and rows go up with y.
    float3 const along_y = normals_of({-1, -1, -1, 0, 0, 0, 1, 1, 1}, {3, 3})[4];
    EXPECT_EQ(along_y.x, 0.0f);
    EXPECT_FLOAT_EQ(along_y.y, -2.0f / std::sqrt(5.0f));
}

TEST(Height2Normal, NeighboursWrapAroundWithTheFullPeriod)
{
    // The texel left of column 0 is the last one, 5; the one to the right is 2.
    EXPECT_FLOAT_EQ(normals_of({1, 2, 3, 5}, {1, 4})[0].x, 3.0f / std::sqrt(10.0f));
    EXPECT_FLOAT_EQ(normals_of({1, 2, 3, 5}, {1, 4})[3].x, 2.0f / std::sqrt(5.0f));
    EXPECT_FLOAT_EQ(normals_of({1, 2, 3, 5}, {4, 1})[0].y, 3.0f / std::sqrt(10.0f));
    EXPECT_FLOAT_EQ(normals_of({1, 2, 3, 5}, {4, 1})[3].y, 2.0f / std::sqrt(5.0f));
}

TEST(Height2Normal, MakesUnitVectors)
{
    for (float3 const& n : normals_of(random_image<float>(64 * 64, 5, Values::kSigned), {64, 64})) {
        EXPECT_NEAR(n.x * n.x + n.y * n.y + n.z * n.z, 1.0f, 1e-6f);
        EXPECT_GT(n.z, 0.0f);
    }
}

TEST(Height2Normal, IsTheSameForEveryTeam)
{
    Size const size = {53, 61};
    std::vector<float> const heights = random_image<float>(size.texels(), 6);
    std::vector<float3> const one = normals_of(heights, size);
    for_every_team([&](int threads) {
        SCOPED_TRACE(threads);
        EXPECT_SAME_BITS(one, normals_of(heights, size));
    });
}

TEST(Height2Normal, TakesTheMeanOfAColourTimesTheScaleInPlace)
{
    for (Values const values : {Values::kUnit, Values::kHostile}) {
        for (Size const size : sizes()) {
            auto image = random_image<float3>(size.texels(), 7, values);
            std::vector<float> heights;
            for (float3 const& colour : image) {
                double const sum = static_cast<double>(colour.x) + static_cast<double>(colour.y) +
                                   static_cast<double>(colour.z);
                heights.push_back(static_cast<float>(sum / 3.0 * static_cast<double>(12.5f)));
            }
            Height2Normal(image.data(), size.height, size.width, 12.5f);
            EXPECT_SAME_BITS(normals_of(heights, size), image);
        }
    }
}

TEST(Height2Normal, NoSizeNoWork)
{
    for (Size const size : {Size{0, 5}, Size{5, 0}, Size{-1, 5}, Size{-2, -2}}) {
        Height2Normal(nullptr, nullptr, size.height, size.width);
        Height2Normal(nullptr, size.height, size.width, 1.0f);
    }
}

} // namespace
