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

} // namespace
} // namespace umbrixlib
