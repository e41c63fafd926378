// SPDX-License-Identifier: MIT
/// Bytes of many components at once against those of each by itself.
#include "filters/narrowing_internal.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace umbrixlib {
namespace {

std::vector<float3> random_normals(std::size_t texels, float range)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> spread(-range, range);
    std::vector<float3> normals(texels);
    for (float3& normal : normals) {
        normal.x = spread(random);
        normal.y = spread(random);
        normal.z = spread(random);
    }
    return normals;
}

void expect_bytes_of_each(std::vector<float3> const& normals)
{
    std::vector<unsigned char> bytes(3 * normals.size());
    normals_to_bytes(normals.data(), static_cast<std::ptrdiff_t>(normals.size()), bytes.data());
    for (std::size_t i = 0; i < normals.size(); ++i) {
        float const components[] = {normals[i].x, normals[i].y, normals[i].z};
        for (std::size_t c = 0; c < 3; ++c) {
            ASSERT_EQ(bytes[3 * i + c], detail::normal_byte(components[c])) << i << ' ' << components[c];
        }
    }
}

TEST(NormalBytes, AreThoseOfEachComponent)
{
    for (std::size_t const texels : {0, 1, 2, 255, 256, 257, 5000}) {
        expect_bytes_of_each(random_normals(texels, 1.0f));
        expect_bytes_of_each(random_normals(texels, 999.0f));
        expect_bytes_of_each(random_normals(texels, 1e12f));
    }
}

TEST(NormalBytes, OfWhatFitsNoNumberAreThoseOfEachComponent)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (float const odd : {NAN, kInfinity, -kInfinity, 3e38f, -3e38f, 1000.0f, -1000.0f, 1.7e7f, -1.7e7f}) {
        std::vector<float3> normals = random_normals(900, 1.0f);
        normals[500].y = odd;
        expect_bytes_of_each(normals);
    }
}

TEST(MapBytes, OfThreeChannelsAreThoseOfFourWithoutTheAlpha)
{
    std::vector<float3> const colours = random_normals(1000, 1.5f);
    std::vector<float4> with_alpha;
    for (float3 const& colour : colours) {
        with_alpha.push_back({colour.x, colour.y, colour.z, 0.25f});
    }
    for (std::size_t const texels : {std::size_t{0}, std::size_t{1}, std::size_t{255}, colours.size()}) {
        std::vector<unsigned char> three(3 * texels);
        std::vector<unsigned char> of_four(3 * texels);
        std::vector<unsigned char> four(4 * texels);
        auto const count = static_cast<std::ptrdiff_t>(texels);
        map_to_bytes(colours.data(), count, three.data());
        map_to_bytes(with_alpha.data(), count, 3, of_four.data());
        map_to_bytes(with_alpha.data(), count, 4, four.data());
        EXPECT_EQ(three, of_four);
        for (std::size_t i = 0; i < texels; ++i) {
            ASSERT_EQ(three[3 * i + 1], four[4 * i + 1]) << i;
            ASSERT_EQ(four[4 * i + 3], 63) << i;
        }
    }
}

} // namespace
} // namespace umbrixlib
