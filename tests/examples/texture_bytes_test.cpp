// SPDX-License-Identifier: MIT
#include "texture_bytes.h"

#include <gtest/gtest.h>

namespace umbrixlib::examples {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes texel(Bytes const& normals, int index)
{
    auto const start = normals.begin() + 4 * index;
    return {start, start + 4};
}

TEST(TextureBytes, HeightsRoundToTheNearestGrey)
{
    EXPECT_EQ(height_bytes({0.0f, 0.25f, 0.5f, 1.0f}), (Bytes{0, 64, 128, 255}));
}

// A ridge along the second column. Side 4 and relief 0.5 make a height of 1 two texels high, so the halved
// difference beside the ridge is 1 and the normal (-1, 0, 1) / sqrt(2): 0.1464 and 0.8536 of 255.
TEST(TextureBytes, HeightRisingToTheRightLowersRed)
{
    std::vector<float> const ridge{0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0};
    Bytes const normals = normal_bytes(ridge, 4, 0.5);
    EXPECT_EQ(texel(normals, 0), (Bytes{37, 128, 218, 0}));
    EXPECT_EQ(texel(normals, 1), (Bytes{128, 128, 255, 255}));
    EXPECT_EQ(texel(normals, 2), (Bytes{218, 128, 218, 0}));
}

// The ridge along the lowest row: the row above it falls towards the top, the highest row meets it by
// wrapping.
TEST(TextureBytes, HeightRisingToTheTopLowersGreen)
{
    std::vector<float> const ridge{1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    Bytes const normals = normal_bytes(ridge, 4, 0.5);
    EXPECT_EQ(texel(normals, 4), (Bytes{128, 218, 218, 0}));
    EXPECT_EQ(texel(normals, 12), (Bytes{128, 37, 218, 0}));
}

} // namespace
} // namespace umbrixlib::examples
