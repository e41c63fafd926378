// SPDX-License-Identifier: MIT
#include "umbrix/map_bytes_internal.h"

#include "random_image.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using umbrixlib::detail::MapShape;
using umbrixlib::detail::RowsFrom;
using umbrixlib::detail::store_bytes;
using umbrixlib::detail::store_bytes_reversed;
using Bytes = std::vector<unsigned char>;

Bytes stored(std::vector<float4> const& map, MapShape shape, int threads)
{
    Bytes bytes(static_cast<std::size_t>(shape.texels()) * 4 + 8, 0xEE);
    for (int thread = threads - 1; thread >= 0; --thread) {
        store_bytes(map.data(), shape, bytes.data(), thread, threads);
    }
    return bytes;
}

TEST(UmbrixFileStoring, ClampsAndTruncates)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float4> const map = {{1.5f, -0.5f, 0.999f, nan}};
    Bytes const bytes = stored(map, {1, 1, 4}, 1);
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2], 254);
    EXPECT_EQ(bytes[3], 0);
    EXPECT_EQ(bytes[4], 0xEE);
}

TEST(UmbrixFileStoring, WritesThreeBytesATexelBelowFourChannels)
{
    std::vector<float4> const map = {{0.0f, 0.2f, 0.4f, 1.0f}, {0.6f, 0.8f, 1.0f, 1.0f}};
    Bytes const bytes = stored(map, {1, 2, 3}, 1);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 7), (Bytes{0, 51, 102, 153, 204, 255, 0xEE}));
}

TEST(UmbrixFileStoring, DoesNotDependOnTheThreads)
{
    auto const map = umbrixlib::test::random_image<float4>(5 * 7, 1, umbrixlib::test::Values::kHostile);
    for (int channels : {0, 1, 2, 3, 4, 6, 8, 12}) {
        MapShape const shape{5, 7, channels};
        Bytes one(35 * 12 + 8, 0xEE);
        Bytes many = one;
        store_bytes(map.data(), shape, one.data(), 0, 1);
        for (int thread : {2, 0, 3, 1}) {
            store_bytes(map.data(), shape, many.data(), thread, 4);
        }
        EXPECT_EQ(one, many) << channels;
        Bytes team(35 * 12 + 8, 0xEE);
        store_bytes(map.data(), shape, team.data());
        EXPECT_EQ(one, team) << channels;
    }
}

TEST(UmbrixFileStoring, AVtfPictureCountsItsRowsFromTheWidth)
{
    // Four rows of two texels: output rows 0 and 1 come from rows 1 and 0, rows 2 and 3 from outside the map.
    std::vector<float4> map(8, float4{1.0f, 1.0f, 1.0f, 1.0f});
    map[0].x = 0.2f;
    map[2].x = 0.4f;
    Bytes bytes(8 * 3, 0xEE);
    int progress = 0;
    store_bytes_reversed(map.data(), {4, 2, 3}, RowsFrom::kWidth, bytes.data(), &progress);
    EXPECT_EQ(bytes[0], 102);
    EXPECT_EQ(bytes[6], 51);
    EXPECT_EQ(Bytes(bytes.begin() + 12, bytes.end()), Bytes(12, 0)) << "black";
    EXPECT_EQ(progress, 750);
}

TEST(UmbrixFileStoring, AWideVtfPictureLeavesItsFirstRowsUnread)
{
    // Two rows of four texels: the sources are rows 3 and 2, both outside.
    std::vector<float4> const map(8, float4{1.0f, 1.0f, 1.0f, 1.0f});
    Bytes bytes(8 * 3, 0xEE);
    int progress = 0;
    store_bytes_reversed(map.data(), {2, 4, 3}, RowsFrom::kWidth, bytes.data(), &progress);
    EXPECT_EQ(bytes, Bytes(24, 0));
    EXPECT_EQ(progress, 500);
}

TEST(UmbrixFileStoring, RowsCountedFromTheHeightAreRightForEveryShape)
{
    auto const map = umbrixlib::test::random_image<float4>(12, 3);
    for (MapShape const shape :
         {MapShape{3, 4, 3}, MapShape{4, 3, 4}, MapShape{12, 1, 3}, MapShape{1, 12, 4}}) {
        Bytes upright(12 * 4, 0xEE);
        Bytes reversed = upright;
        int progress = 0;
        store_bytes(map.data(), shape, upright.data());
        store_bytes_reversed(map.data(), shape, RowsFrom::kHeight, reversed.data(), &progress);
        auto const row = static_cast<std::ptrdiff_t>(shape.cols) * shape.channels;
        for (int r = 0; r < shape.rows; ++r) {
            EXPECT_TRUE(std::equal(upright.begin() + r * row, upright.begin() + (r + 1) * row,
                                   reversed.begin() + (shape.rows - 1 - r) * row));
        }
        EXPECT_EQ(progress, int(double(float(shape.rows - 1)) / double(float(shape.rows)) * 1000.0));
    }
}

} // namespace
