// SPDX-License-Identifier: MIT

/// The two kernels that reshape normals in place.

#include "boundary/texture_kernels.h"
#include "every_target.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::test::for_every_target;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;
using velloric::test::Size;
using velloric::test::sizes;

/// The slope of @p normal times @p factor, at unit length.
float3 with_slope(float3 normal, double factor)
{
    double const x = static_cast<double>(normal.x) * factor;
    double const y = static_cast<double>(normal.y) * factor;
    double const z = static_cast<double>(normal.z);
    double const length = std::sqrt(y * y + x * x + z * z);
    return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

std::vector<float3> scaled(std::vector<float3> normals, float scale)
{
    NormalScale(normals.data(), 1, static_cast<int>(normals.size()), scale);
    return normals;
}

std::vector<float3> edged(std::vector<float3> normals, std::vector<float> heights, Size size, float edge_a,
                          float edge_b)
{
    NormalEdges(normals.data(), heights.data(), size.height, size.width, edge_a, edge_b);
    return normals;
}

void expect_unit(float3 const& normal)
{
    EXPECT_NEAR(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z, 1.0f, 1e-6f);
}

TEST(NormalScale, MultipliesTheSlopeAndMakesUnitVectors)
{
    auto const normals = random_image<float3>(300, 1, Values::kSigned);
    for (float const scale : {-2.0f, 0.0f, 0.5f, 1.0f, 10.0f}) {
        std::vector<float3> const result = scaled(normals, scale);
        for (std::size_t i = 0; i < normals.size(); ++i) {
            float3 const expected = with_slope(normals[i], static_cast<double>(scale));
            EXPECT_TRUE(umbrixlib::test::same_bits(&expected.x, &result[i].x, 3));
            expect_unit(result[i]);
        }
    }
}

TEST(NormalScale, EqualsItsDefinitionOnEveryTarget)
{
    for_every_target([&](char const* target) {
        for (std::size_t const count : {1U, 3U, 4U, 5U, 7U, 8U, 9U, 17U, 5000U}) {
            auto const normals = random_image<float3>(count, 5, Values::kHostile);
            for (float const scale : {0.0f, 0.7f, -3.0f, 1e-30f}) {
                std::vector<float3> expected;
                for (float3 const& normal : normals) {
                    double const x = static_cast<double>(normal.x) * static_cast<double>(scale);
                    double const y = static_cast<double>(normal.y) * static_cast<double>(scale);
                    bool const has_length = !(x == 0.0 && y == 0.0 && normal.z == 0.0f);
                    expected.push_back(has_length
                                           ? with_slope(normal, static_cast<double>(scale))
                                           : float3{static_cast<float>(x), static_cast<float>(y), normal.z});
                }
                EXPECT_SAME_BITS(expected, scaled(normals, scale)) << target << ", " << count;
            }
        }
    });
}

TEST(NormalScale, WorkedOutByHand)
{
    EXPECT_SAME_BITS((std::vector<float3>{{0.6f, 0.0f, 0.8f}, {0.0f, -0.8f, 0.6f}}),
                     scaled({{3.0f, 0.0f, 8.0f}, {0.0f, -2.0f, 3.0f}}, 2.0f));
}

TEST(NormalScale, AFlatNormalStaysFlat)
{
    EXPECT_SAME_BITS((std::vector<float3>{{0.0f, 0.0f, 1.0f}}), scaled({{0.0f, 0.0f, 1.0f}}, 5.0f));
}

TEST(NormalScale, AVectorWithoutALengthStaysAndMakesNoNaN)
{
    EXPECT_SAME_BITS((std::vector<float3>{{0.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.0f}}),
                     scaled({{0.0f, 0.0f, 0.0f}, {1.0f, 0.0f, 0.0f}}, 0.0f));
}

TEST(NormalScale, NaNPassesThrough)
{
    EXPECT_TRUE(std::isnan(scaled({{kNaN, 0.0f, 1.0f}}, 2.0f)[0].z));
    EXPECT_TRUE(std::isnan(scaled({{0.1f, 0.0f, 1.0f}}, kNaN)[0].z));
}

TEST(NormalScale, IsTheSameForEveryTeam)
{
    auto const normals = random_image<float3>(500, 2, Values::kHostile);
    std::vector<float3> const one = scaled(normals, 1.3f);
    for_every_team([&](int) { EXPECT_SAME_BITS(one, scaled(normals, 1.3f)); });
}

TEST(NormalScale, NoSizeNoWork)
{
    NormalScale(nullptr, 0, 5, 1.0f);
    NormalScale(nullptr, 5, 0, 1.0f);
    NormalScale(nullptr, -1, -1, 1.0f);
}

TEST(NormalEdges, ScalesTheSlopeByTheWrappedLaplacian)
{
    for (Size const size : sizes()) {
        std::vector<float> const heights = random_image<float>(size.texels(), 3, Values::kSigned);
        auto const normals = random_image<float3>(size.texels(), 4, Values::kSigned);
        std::vector<float3> const result = edged(normals, heights, size, 0.7f, 2.5f);
        auto const height_at = [&](int y, int x) {
            int const row = (y + size.height) % size.height;
            int const column = (x + size.width) % size.width;
            return static_cast<double>(
                heights[static_cast<std::size_t>(row) * static_cast<std::size_t>(size.width) +
                        static_cast<std::size_t>(column)]);
        };
        std::size_t texel = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x, ++texel) {
                double const c = height_at(y + 1, x) + height_at(y - 1, x) + height_at(y, x - 1) +
                                 height_at(y, x + 1) - 4.0 * height_at(y, x);
                double const k = std::fabs(c) / (1.0 + std::fabs(c));
                double const edge = static_cast<double>(c < 0.0 ? 0.7f : 2.5f);
                float3 const expected = with_slope(normals[texel], 1.0 + edge * k);
                ASSERT_TRUE(umbrixlib::test::same_bits(&expected.x, &result[texel].x, 3));
                expect_unit(result[texel]);
            }
        }
    }
}

TEST(NormalEdges, TheFirstStrengthIsForPeaksAndTheSecondForPits)
{
    std::vector<float3> const normals(9, float3{0.6f, 0.0f, 0.8f});
    std::vector<float> relief(9, 0.0f);
    relief[4] = 0.25f; // a Laplacian of -1, so half of the strength
    EXPECT_FLOAT_EQ(edged(normals, relief, {3, 3}, 2.0f, 0.0f)[4].x, 1.2f / std::sqrt(1.2f * 1.2f + 0.64f));
    EXPECT_FLOAT_EQ(edged(normals, relief, {3, 3}, 0.0f, 2.0f)[4].x, 0.6f);
    relief[4] = -0.25f;
    EXPECT_FLOAT_EQ(edged(normals, relief, {3, 3}, 0.0f, 2.0f)[4].x, 1.2f / std::sqrt(1.2f * 1.2f + 0.64f));
    EXPECT_FLOAT_EQ(edged(normals, relief, {3, 3}, 2.0f, 0.0f)[4].x, 0.6f);
}

TEST(NormalEdges, FlatGroundAndEvenSlopesStay)
{
    std::vector<float3> const normals(25, float3{0.6f, 0.0f, 0.8f});
    std::vector<float> slope;
    for (int i = 0; i < 25; ++i) {
        slope.push_back(static_cast<float>(i % 5) * 0.25f);
    }
    EXPECT_SAME_BITS(normals, edged(normals, std::vector<float>(25, 0.4f), {5, 5}, 3.0f, 3.0f));
    std::vector<float3> const result = edged(normals, slope, {5, 5}, 3.0f, 3.0f);
    for (std::size_t i = 0; i < 25; ++i) {
        bool const is_border = i % 5 == 0 || i % 5 == 4;
        EXPECT_EQ(result[i].x == 0.6f, !is_border);
    }
}

TEST(NormalEdges, AVectorWithoutALengthMakesNoNaN)
{
    EXPECT_SAME_BITS(
        (std::vector<float3>(2, float3{0.0f, 0.0f, 0.0f})),
        edged(std::vector<float3>(2, float3{0.0f, 0.0f, 0.0f}), {0.0f, 1.0f}, {1, 2}, 1.0f, 1.0f));
}

TEST(NormalEdges, NaNReachesTheFourNeighboursAndNoFarther)
{
    std::vector<float> heights(49, 0.5f);
    heights[24] = kNaN;
    std::vector<float3> const result =
        edged(std::vector<float3>(49, float3{0.6f, 0.0f, 0.8f}), heights, {7, 7}, 1.0f, 1.0f);
    for (std::size_t i = 0; i < 49; ++i) {
        bool const is_near = i == 24 || i == 23 || i == 25 || i == 17 || i == 31;
        EXPECT_EQ(std::isnan(result[i].x), is_near);
    }
}

TEST(NormalEdges, IsTheSameForEveryTeamAndLeavesTheHeightsAlone)
{
    Size const size = {31, 17};
    auto const heights = random_image<float>(size.texels(), 5, Values::kHostile);
    auto const normals = random_image<float3>(size.texels(), 6, Values::kHostile);
    std::vector<float3> const one = edged(normals, heights, size, 1.0f, 2.0f);
    for_every_team([&](int) {
        auto used = heights;
        std::vector<float3> result = normals;
        NormalEdges(result.data(), used.data(), size.height, size.width, 1.0f, 2.0f);
        EXPECT_SAME_BITS(one, result);
        EXPECT_SAME_BITS(heights, used);
    });
}

TEST(NormalEdges, NoSizeNoWork)
{
    NormalEdges(nullptr, nullptr, 0, 5, 1.0f, 1.0f);
    NormalEdges(nullptr, nullptr, 5, 0, 1.0f, 1.0f);
    NormalEdges(nullptr, nullptr, -1, -1, 1.0f, 1.0f);
}

} // namespace
