// SPDX-License-Identifier: MIT
#include "umbrix/map_bytes_internal.h"

#include "common/rounding.h"
#include "random_image.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using umbrixlib::detail::MapShape;
using umbrixlib::detail::RowsFrom;
using umbrixlib::detail::store_bytes;
using umbrixlib::detail::store_bytes_reversed;
using Bytes = std::vector<unsigned char>;

Bytes stored(std::vector<float4> const& map, MapShape shape)
{
    Bytes bytes(static_cast<std::size_t>(shape.texels()) * 4 + 8, 0xEE);
    store_bytes(map.data(), shape, bytes.data());
    return bytes;
}

TEST(UmbrixFileStoring, ClampsAndTruncates)
{
    float const nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float4> const map = {{1.5f, -0.5f, 0.999f, nan}};
    Bytes const bytes = stored(map, {1, 1, 4});
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2], 254);
    EXPECT_EQ(bytes[3], 0);
    EXPECT_EQ(bytes[4], 0xEE);
}

TEST(UmbrixFileStoring, WritesThreeBytesATexelBelowFourChannels)
{
    std::vector<float4> const map = {{0.0f, 0.2f, 0.4f, 1.0f}, {0.6f, 0.8f, 1.0f, 1.0f}};
    Bytes const bytes = stored(map, {1, 2, 3});
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 7), (Bytes{0, 51, 102, 153, 204, 255, 0xEE}));
}

TEST(UmbrixFileStoring, DoesNotDependOnTheOrderOfThePieces)
{
    auto const map = umbrixlib::test::random_image<float4>(5 * 7, 1, umbrixlib::test::Values::kHostile);
    for (int channels : {0, 1, 2, 3, 4, 6, 8, 12}) {
        MapShape const shape{5, 7, channels};
        Bytes one(35 * 12 + 8, 0xEE);
        Bytes many = one;
        store_bytes(map.data(), 0, 35, shape, one.data());
        for (int first : {14, 0, 28, 7, 21}) {
            store_bytes(map.data() + first, first, first + 7, shape, many.data());
        }
        EXPECT_EQ(one, many) << channels;
        Bytes team(35 * 12 + 8, 0xEE);
        store_bytes(map.data(), shape, team.data());
        EXPECT_EQ(one, team) << channels;
    }
}

/// The byte of a value, step by step.
unsigned char plain_byte(float value)
{
    if (value > 1.0f) {
        return 255;
    }
    return value < 0.0f ? 0 : umbrixlib::detail::to_byte(double(value) * 255.0);
}

TEST(UmbrixFileStoring, BlocksHaveTheBytesOfThePlainFormula)
{
    constexpr std::size_t kTexels = 3 * 1031;
    auto const map = umbrixlib::test::random_image<float4>(kTexels, 7, umbrixlib::test::Values::kHostile);
    for (int channels : {1, 2, 3, 4, 6, 8}) {
        MapShape const shape{3, 1031, channels};
        Bytes expected(kTexels * 8 + 8, 0xEE);
        for (std::size_t i = 0; i < kTexels; ++i) {
            float const components[] = {map[i].x, map[i].y, map[i].z, map[i].w};
            for (std::size_t c = 0; c < (channels > 3 ? 4U : 3U); ++c) {
                expected[i * static_cast<std::size_t>(channels) + c] = plain_byte(components[c]);
            }
        }
        Bytes actual(kTexels * 8 + 8, 0xEE);
        store_bytes(map.data(), shape, actual.data());
        EXPECT_EQ(expected, actual) << channels;
    }
}

TEST(UmbrixFileStoring, ValuesAroundEveryByteHaveTheByteOfThePlainFormula)
{
    for (int byte = 0; byte <= 256; ++byte) {
        auto value = static_cast<float>(byte / 255.0);
        for (int i = 0; i < 4; ++i) {
            value = std::nextafter(value, -1.0f);
        }
        for (int i = 0; i < 9; ++i, value = std::nextafter(value, 2.0f)) {
            Bytes const bytes = stored({{value, -value, value, 1.0f}}, {1, 1, 4});
            EXPECT_EQ(bytes[0], plain_byte(value)) << value;
            EXPECT_EQ(bytes[1], plain_byte(-value)) << value;
        }
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
