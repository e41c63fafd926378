// SPDX-License-Identifier: MIT
#include "filters/tile_height.h"

#include "random_image.h"
#include "same_bits.h"

#include <numeric>

namespace {

using umbrixlib::test::random_image;
using umbrixlib::test::Values;

std::vector<float> tiled_plainly(std::vector<float> heights, int height, int width)
{
    auto const at = [&](int y, int x) -> float& {
        return heights[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                       static_cast<std::size_t>(x)];
    };
    float left = 0.0f;
    float right = 0.0f;
    for (int y = 0; y < height; ++y) {
        left = float(double(left) + double(at(y, 0)));
        right = float(double(right) + double(at(y, width - 1)));
    }
    left = float(double(left) / double(float(height)));
    right = float(double(right) / double(float(height)));
    float offset = float((double(right) - double(left)) * 0.5);
    float const step = float(double(offset) / (double(float(width)) * 0.5));
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) {
            at(y, x) = float(double(at(y, x)) + double(offset));
        }
        offset = float(double(offset) - double(step));
    }
    return heights;
}

TEST(TileHeight, EqualsTheReferenceBitForBit)
{
    for (auto const& [height, width] : {std::pair{1, 1}, {1, 9}, {9, 1}, {17, 33}, {64, 64}, {3, 500}}) {
        for (Values const values : {Values::kUnit, Values::kHostile}) {
            auto heights = random_image<float>(static_cast<std::size_t>(height * width), 4, values);
            auto const expected = tiled_plainly(heights, height, width);
            TileHeight(heights.data(), height, width);
            EXPECT_SAME_BITS(expected, heights);
        }
    }
}

TEST(TileHeight, TheRightEdgeEndsOneStepAboveTheLeft)
{
    // Two rows, edge means 0 and 8: offset 4, step 2, ramp 4 2 0 -2.
    std::vector<float> heights = {1, 0, 0, 9, -1, 0, 0, 7};
    TileHeight(heights.data(), 2, 4);
    EXPECT_EQ(heights, (std::vector<float>{5, 2, 0, 7, 3, 2, 0, 5}));
    EXPECT_EQ((heights[3] + heights[7]) / 2, (heights[0] + heights[4]) / 2 + 2);
}

TEST(TileHeight, EqualEdgesAddNothing)
{
    std::vector<float> heights = {0.5f, 0.9f, 0.25f, 0.25f, 0.1f, 0.5f};
    auto const before = heights;
    TileHeight(heights.data(), 2, 3);
    EXPECT_EQ(heights, before);
}

TEST(TileHeight, OneColumnIsItsOwnNeighbour)
{
    std::vector<float> heights = {0.5f, 0.9f, 0.25f};
    auto const before = heights;
    TileHeight(heights.data(), 3, 1);
    EXPECT_EQ(heights, before);
}

TEST(TileHeight, SizesBelowOneTouchNothing)
{
    float height = 0.5f;
    TileHeight(&height, 0, 7);
    TileHeight(&height, 7, 0);
    TileHeight(&height, -1, -1);
    EXPECT_EQ(height, 0.5f);
}

} // namespace
