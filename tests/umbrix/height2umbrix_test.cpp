// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "umbrix_test_options.h"

#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <vector>

namespace {

using umbrixlib::test::neutral_options;

/// A map with room for the one position behind it that is read and written.
struct Map {
    Map(int map_rows, int map_cols, float fill)
        : rows(map_rows), cols(map_cols),
          heights(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols) +
                      static_cast<std::size_t>(cols) + 1,
                  fill),
          out(heights.size(), float3{-9.0f, -9.0f, -9.0f})
    {
    }

    float& at(int y, int x)
    {
        return heights[static_cast<std::size_t>(y) * static_cast<std::size_t>(cols) +
                       static_cast<std::size_t>(x)];
    }

    /// Flat index of the only element that was written, or -1.
    std::ptrdiff_t run(umbrix_options& options)
    {
        EXPECT_TRUE(height2umbrix(heights.data(), out.data(), rows, cols, options, &progress));
        std::ptrdiff_t written = -1;
        for (std::size_t i = 0; i < out.size(); ++i) {
            if (out[i].x != -9.0f) {
                EXPECT_EQ(written, -1) << "a second element";
                written = static_cast<std::ptrdiff_t>(i);
            }
        }
        return written;
    }

    int rows;
    int cols;
    std::vector<float> heights;
    std::vector<float3> out;
    int progress = 77;
};

class OneThread {
public:
    OneThread() { omp_set_num_threads(1); }
    ~OneThread() { omp_set_num_threads(before_); }
    OneThread(OneThread const&) = delete;
    OneThread& operator=(OneThread const&) = delete;

private:
    int before_ = omp_get_max_threads();
};

TEST(Height2Umbrix, WritesOneElementBehindTheImage)
{
    umbrix_options options = neutral_options();
    Map map(4, 6, 0.25f);
    EXPECT_EQ(map.run(options), 4 * 6 + 6);
    EXPECT_EQ(map.progress, 0);
    EXPECT_EQ(map.out[30].x, 1.0f) << "the position behind the image is as high as the top";
}

TEST(Height2Umbrix, AHeightOfOneEndsTheScanOfItsRow)
{
    umbrix_options options = neutral_options();
    Map map(4, 6, 0.25f);
    map.at(3, 1) = 1.0f;
    EXPECT_EQ(map.run(options), 4 * 6 + 2) << "the scan of the last row stopped behind the 1";
    Map earlier(4, 6, 0.25f);
    earlier.at(0, 3) = 1.0f;
    EXPECT_EQ(earlier.run(options), 4 * 6 + 0);
    // What stands behind the end of the scan does not count as the maximum: the position's own height equals
    // the top.
    Map hidden(4, 6, 0.25f);
    hidden.at(0, 0) = 1.0f;
    hidden.at(1, 3) = 5.0f;
    hidden.heights[24] = 1.0f;
    EXPECT_EQ(hidden.run(options), 24);
    EXPECT_EQ(hidden.out[24].x, 1.0f);
}

TEST(Height2Umbrix, OneThreadBuildsCompleteTables)
{
    OneThread const one_thread;
    umbrix_options options = neutral_options();
    options.rays = 1;
    options.radius = 1.0f;
    options.tile = options.h_tile = options.v_tile = true;
    // The position is row 8, column 8 of an 8 x 8 map. The ray of basis_c walks along x and wraps to column
    // 2, 3, ... of row 1. It gains sqrt(2)/3 of an image width per width.
    Map map(8, 8, 0.0f);
    map.heights[8 * 8 + 8] = 0.0f;
    map.at(1, 4) = 0.17f; // three steps: 3/8 * 0.4714 = 0.1768
    EXPECT_EQ(map.run(options), 72);
    EXPECT_EQ(map.out[72].x, 1.0f);
    map.out[72] = {-9.0f, -9.0f, -9.0f};
    map.at(1, 4) = 0.18f;
    map.run(options);
    EXPECT_EQ(map.out[72].x, 0.0f);
}

TEST(Height2Umbrix, ChannelsFollowTheBands)
{
    OneThread const one_thread;
    umbrix_options options = neutral_options();
    options.rays = 1;
    options.radius = 1.0f;
    options.tile = options.h_tile = options.v_tile = true;
    Map map(9, 9, 0.0f);
    // From row 9 and column 9, the first step of basis_b leads to row 7 and column 8; basis_a leaves in the
    // other direction of y and basis_c along x.
    map.at(7, 8) = 0.9f;
    map.run(options);
    float3 const out = map.out[90];
    EXPECT_EQ(out.y, 0.0f);
    EXPECT_EQ(out.x, 1.0f);
    EXPECT_EQ(out.z, 1.0f);
}

TEST(Height2Umbrix, NoRaysGiveNaN)
{
    umbrix_options options = neutral_options();
    options.rays = 0;
    Map map(3, 3, 0.25f);
    map.at(1, 1) = 0.5f;
    map.run(options);
    EXPECT_TRUE(std::isnan(map.out[12].x));
}

TEST(Height2Umbrix, AReachOfZeroLeavesEveryRayOpen)
{
    umbrix_options options = neutral_options();
    options.radius = 0.0f;
    options.rays = 5;
    Map map(3, 3, 0.25f);
    map.at(1, 1) = 0.5f;
    map.run(options);
    EXPECT_EQ(map.out[12].y, 1.0f);
}

TEST(Height2Umbrix, ABasisWithoutXIsOpen)
{
    OneThread const one_thread;
    umbrix_options options = neutral_options();
    options.radius = 1.0f;
    options.tile = options.h_tile = options.v_tile = true;
    // Walls all around: the other two bands are blocked, the steps of this one are infinite.
    Map map(8, 8, 0.9f);
    map.heights[72] = 0.0f;
    map.run(options);
    EXPECT_EQ(map.out[72].x, 0.0f);
    map.out[72] = {-9.0f, -9.0f, -9.0f};
    options.basis_c = {0.0f, 0.5f, 0.5f};
    EXPECT_EQ(map.run(options), 72);
    EXPECT_EQ(map.out[72].x, 1.0f);
    EXPECT_EQ(map.out[72].y, 0.0f);
    EXPECT_EQ(map.out[72].z, 0.0f);
}

TEST(Height2Umbrix, WideLimitsOfTheAzimuthStayWithinTheMap)
{
    // Under address sanitizer an access outside would end the test: azimuths reach 90 and 270 degrees.
    for (float const theta_limit : {60.0f, 120.0f, 360.0f}) {
        umbrix_options options = neutral_options();
        options.rays = 200;
        options.radius = 1.0f;
        options.theta_limit = theta_limit;
        options.tile = options.h_tile = options.v_tile = theta_limit > 100.0f;
        Map map(8, 8, 0.25f);
        map.at(5, 5) = 0.5f;
        EXPECT_EQ(map.run(options), 72);
        for (float const share : {map.out[72].x, map.out[72].y, map.out[72].z}) {
            EXPECT_GE(share, 0.0f);
            EXPECT_LE(share, 1.0f);
        }
    }
}

TEST(Height2Umbrix, SingleLinesAndOneTexelAreTracedWithinTheirBuffers)
{
    for (auto const& [rows, cols] : {std::pair{1, 1}, {1, 9}, {9, 1}}) {
        for (bool const tile : {false, true}) {
            umbrix_options options = neutral_options();
            options.rays = 20;
            options.radius = 2.0f;
            options.tile = options.h_tile = options.v_tile = tile;
            Map map(rows, cols, 0.25f);
            map.at(0, 0) = 0.5f;
            EXPECT_EQ(map.run(options), rows * cols + cols);
            EXPECT_LE(map.out[static_cast<std::size_t>(rows * cols + cols)].x, 1.0f);
        }
    }
}

TEST(Height2Umbrix, AnEmptyImageTouchesNothing)
{
    umbrix_options options = neutral_options();
    options.rays = 5;
    float3 out = {-9.0f, -9.0f, -9.0f};
    float height = 0.0f;
    for (auto const& [rows, cols] : {std::pair{0, 0}, {0, 4}, {4, 0}, {-1, 4}, {4, -1}, {-2, -2}}) {
        int progress = 5;
        EXPECT_TRUE(height2umbrix(&height, &out, rows, cols, options, &progress));
        EXPECT_EQ(out.x, -9.0f);
        EXPECT_EQ(progress, 0);
    }
}

TEST(Height2Umbrix, ManyThreadsStayWithinTheTables)
{
    umbrix_options options = neutral_options();
    options.rays = 64;
    options.radius = 2.0f;
    omp_set_num_threads(4);
    Map map(32, 32, 0.25f);
    map.at(5, 5) = 0.5f;
    EXPECT_EQ(map.run(options), 32 * 32 + 32);
    omp_set_num_threads(omp_get_num_procs());
    EXPECT_GE(map.out[32 * 32 + 32].x, 0.0f);
    EXPECT_LE(map.out[32 * 32 + 32].x, 1.0f);
}

} // namespace
