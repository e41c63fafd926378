// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "float_bits.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;

/// A map, one ray and the limits of its walk.
struct Walk {
    std::vector<float> heights;
    int rows = 0;
    int cols = 0;
    int y = 0;
    int x = 0;
    std::vector<float3> entries;
    float scale = 1.0f;
    float max_height = 1.0f;
    float reach = 10.0f;
    bool tile = false;
    bool h_tile = false;
    bool v_tile = false;

    float share(int ray_count = 1)
    {
        std::vector<float3*> table(static_cast<std::size_t>(std::max(ray_count, 1)), entries.data());
        return trace_rays(heights.data(), rows, cols, y, x, ray_count, scale, max_height, reach, table.data(),
                          static_cast<int>(entries.size()), tile, h_tile, v_tile);
    }
};

/// A row of @p cols texels of height 0 in the middle of three, with one wall of height 1 at column @p wall.
Walk row_with_wall(int cols, int wall)
{
    Walk walk;
    walk.rows = 3;
    walk.cols = cols;
    walk.y = 1;
    walk.heights.assign(static_cast<std::size_t>(3 * cols), 0.0f);
    walk.heights[static_cast<std::size_t>(cols + wall)] = 1.0f;
    return walk;
}

/// @p steps entries along x by @p dx texels each, climbing by @p dz.
std::vector<float3> along_x(int steps, float dx, float dz)
{
    std::vector<float3> entries;
    for (int j = 1; j <= steps; ++j) {
        entries.push_back({float(j) * dx + (dx > 0.0f ? 0.5f : -0.5f), -0.5f, float(j) * dz});
    }
    return entries;
}

TEST(TraceRays, AFlatMapIsOpenWithoutAWalk)
{
    Walk walk = row_with_wall(8, 4);
    walk.heights.assign(24, 0.0f);
    walk.max_height = 0.0f;
    EXPECT_EQ(walk.share(), 1.0f) << "no table was there to read";
    walk.heights.assign(24, 0.75f);
    walk.max_height = 0.75f;
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, AWallBlocksUntilTheRayIsAboveIt)
{
    Walk walk = row_with_wall(8, 4);
    walk.entries = along_x(7, 1.0f, 0.25f);
    EXPECT_EQ(walk.share(), 0.0f) << "the fourth step is at exactly the wall's height";
    walk.entries = along_x(7, 1.0f, 0.26f);
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, ARayThatRunsItsLengthIsOpen)
{
    Walk walk = row_with_wall(8, 4);
    walk.entries = along_x(3, 1.0f, 0.0625f);
    walk.heights[8 + 0] = -0.5f; // so that the flat ground does not block
    EXPECT_EQ(walk.share(), 0.0f) << "flat ground at 0 is above the ray";
    walk.heights.assign(24, -1.0f);
    walk.heights[8 + 4] = 1.0f;
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, TheReachCapsTheClimb)
{
    Walk walk = row_with_wall(8, 4);
    walk.entries = along_x(7, 1.0f, 0.125f);
    EXPECT_EQ(walk.share(), 0.0f);
    walk.reach = 0.375f;
    EXPECT_EQ(walk.share(), 1.0f) << "open after the third step, at the ceiling";
}

TEST(TraceRays, SharesCountTheOpenRays)
{
    Walk walk = row_with_wall(8, 4);
    std::vector<float3> low = along_x(7, 1.0f, 0.1f);
    std::vector<float3> high = along_x(7, 1.0f, 0.5f);
    float3* table[] = {low.data(), high.data(), high.data()};
    EXPECT_EQ(
        trace_rays(walk.heights.data(), 3, 8, 1, 0, 3, 1.0f, 1.0f, 10.0f, table, 7, false, false, false),
        float(2.0 / 3.0));
}

TEST(TraceRays, NoRaysGiveNaN)
{
    Walk walk = row_with_wall(8, 4);
    EXPECT_TRUE(std::isnan(walk.share(0)));
}

TEST(TraceRays, AnEmptyTableIsOpen)
{
    Walk walk = row_with_wall(8, 4);
    walk.entries.clear();
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, WrapsWithAPeriodOfOneLessThanTheSide)
{
    // From column 6 of 8, step 2 arrives at 8, which is column 1; with the side as the period it would be
    // column 0.
    Walk walk = row_with_wall(8, 1);
    walk.x = 6;
    walk.entries = along_x(2, 1.0f, 0.1f);
    walk.tile = walk.h_tile = true;
    EXPECT_EQ(walk.share(), 0.0f);
    walk.heights[8 + 1] = 0.0f;
    walk.heights[8 + 0] = 1.0f;
    EXPECT_EQ(walk.share(), 1.0f);
    // Downwards, step 2 from column 1 arrives at -1, which is column 6.
    Walk back = row_with_wall(8, 6);
    back.x = 1;
    back.entries = along_x(2, -1.0f, 0.1f);
    back.tile = back.h_tile = true;
    EXPECT_EQ(back.share(), 0.0f);
}

TEST(TraceRays, WithoutTilingAPositionEqualToTheSideWrapsToOne)
{
    Walk walk = row_with_wall(8, 1);
    walk.x = 6;
    walk.entries = along_x(2, 1.0f, 0.1f);
    EXPECT_EQ(walk.share(), 0.0f);
    walk.entries = along_x(3, 1.0f, 0.1f);
    walk.x = 7;
    walk.heights[8 + 1] = 0.0f;
    walk.heights[8 + 2] = 1.0f;
    EXPECT_EQ(walk.share(), 1.0f) << "column 9 has left the map";
    walk.tile = walk.h_tile = true;
    EXPECT_EQ(walk.share(), 0.0f);
}

TEST(TraceRays, RowsFollowTheSameRules)
{
    Walk walk;
    walk.rows = 8;
    walk.cols = 3;
    walk.x = 1;
    walk.y = 6;
    walk.heights.assign(24, 0.0f);
    walk.heights[1 * 3 + 1] = 1.0f;
    walk.entries = {{0.5f, 1.5f, 0.1f}, {0.5f, 2.5f, 0.2f}};
    EXPECT_EQ(walk.share(), 0.0f) << "row 8 is row 1";
    walk.y = 7;
    EXPECT_EQ(walk.share(), 0.0f) << "row 8 at the first step";
    walk.heights[1 * 3 + 1] = 0.0f;
    walk.heights[2 * 3 + 1] = 1.0f;
    EXPECT_EQ(walk.share(), 1.0f) << "row 9 has left the map";
    walk.tile = walk.v_tile = true;
    EXPECT_EQ(walk.share(), 0.0f);
}

TEST(TraceRays, TheMasterSwitchAloneWrapsNothing)
{
    Walk walk = row_with_wall(8, 2);
    walk.x = 7;
    walk.entries = along_x(3, 1.0f, 0.1f);
    walk.tile = true;
    EXPECT_EQ(walk.share(), 1.0f);
    walk.tile = false;
    walk.h_tile = walk.v_tile = true;
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, ARowOffsetBeyondTheRaysLengthIsOpen)
{
    Walk walk = row_with_wall(8, 4);
    walk.tile = walk.h_tile = walk.v_tile = true;
    walk.heights.assign(24, 0.9f);
    walk.heights[8] = 0.0f;
    walk.entries = {{1.5f, 2.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 1.0f) << "two rows with a length of one step";
    walk.entries[0].y = -2.5f;
    EXPECT_EQ(walk.share(), 1.0f);
    walk.entries[0].y = 1.5f;
    EXPECT_EQ(walk.share(), 0.0f);
}

TEST(TraceRays, AnInfiniteOffsetIsOpen)
{
    Walk walk = row_with_wall(8, 4);
    walk.tile = walk.h_tile = walk.v_tile = true;
    walk.heights.assign(24, 0.9f);
    walk.heights[8] = 0.0f;
    for (float const offset : {kInfinity, -kInfinity, kNaN, 1e20f}) {
        walk.entries = {{1.5f, offset, 0.1f}};
        EXPECT_EQ(walk.share(), 1.0f);
        walk.entries = {{offset, 0.5f, 0.1f}};
        EXPECT_EQ(walk.share(), 1.0f);
    }
}

TEST(TraceRays, ASteepStepLeavesTheMapAtOnce)
{
    // Next to 90 degrees a step of one texel in x passes far more rows than the map has.
    auto const row_entry = [](double degrees) {
        double const azimuth = degrees * 3.141592653589793 / 180.0;
        return static_cast<float>(std::tan(azimuth)) - 0.5f; // of a map as high as it is wide
    };
    Walk walk = row_with_wall(8, 4);
    walk.heights.assign(24, 0.9f);
    walk.heights[8] = 0.0f;
    walk.entries = {{-1.5f, row_entry(120.0), 0.1f}};
    walk.tile = walk.h_tile = walk.v_tile = true;
    EXPECT_EQ(walk.share(), 1.0f) << "two rows with a length of one step";
    walk.entries = {{-1.5f, -0.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 0.0f);
    for (double const degrees : {89.0, 90.0, 91.0, 269.0, 270.0, 271.0}) {
        walk.entries = {{-1.5f, row_entry(degrees), 0.1f}};
        EXPECT_EQ(walk.share(), 1.0f) << degrees;
    }
}

TEST(TraceRays, ARayHeightThatIsNotANumberIsOpen)
{
    Walk walk = row_with_wall(8, 1);
    walk.entries = {{1.5f, 0.5f, kNaN}};
    EXPECT_EQ(walk.share(), 1.0f);
    walk.entries = along_x(1, 1.0f, 0.1f);
    walk.heights[8] = kNaN;
    EXPECT_EQ(walk.share(), 1.0f) << "the own height is not a number";
}

TEST(TraceRays, AHeightThatIsNotANumberNeverBlocks)
{
    Walk walk = row_with_wall(8, 1);
    walk.heights[8 + 1] = kNaN;
    walk.entries = along_x(1, 1.0f, 0.1f);
    EXPECT_EQ(walk.share(), 1.0f);
}

TEST(TraceRays, TheScaleActsOnTheOwnHeightTheTopAndTheSamples)
{
    Walk walk = row_with_wall(8, 4);
    walk.scale = 0.5f;
    walk.entries = along_x(7, 1.0f, 0.126f);
    EXPECT_EQ(walk.share(), 1.0f) << "the wall is half as high";
    walk.entries = along_x(7, 1.0f, 0.124f);
    EXPECT_EQ(walk.share(), 0.0f);
    walk.x = 4;
    EXPECT_EQ(walk.share(), 1.0f) << "the wall itself is at the top";
}

TEST(TraceRays, ARayThatWouldWrapOverASingleTexelIsOpen)
{
    Walk walk;
    walk.rows = 1;
    walk.cols = 4;
    walk.heights = {0.0f, 1.0f, 1.0f, 1.0f};
    walk.tile = walk.h_tile = walk.v_tile = true;
    walk.entries = {{1.5f, 1.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 1.0f);
    walk.tile = false;
    EXPECT_EQ(walk.share(), 1.0f);
    walk.entries = {{1.5f, 0.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 0.0f) << "along the row it still walks";
    walk.rows = 4;
    walk.cols = 1;
    walk.tile = true;
    walk.entries = {{1.5f, 1.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 1.0f);
    walk.tile = false;
    EXPECT_EQ(walk.share(), 1.0f);
    walk.entries = {{0.5f, 1.5f, 0.1f}};
    EXPECT_EQ(walk.share(), 0.0f) << "along the column it still walks";
    walk.rows = 1;
    walk.heights = {0.0f};
    for (bool const tile : {false, true}) {
        walk.tile = tile;
        for (float3 const entry : {float3{1.5f, 0.5f, 0.1f}, {0.5f, 1.5f, 0.1f}, {-1.5f, -0.5f, 0.1f}}) {
            walk.entries = {entry};
            EXPECT_EQ(walk.share(), 1.0f) << "from the only texel";
        }
    }
}

} // namespace
