// SPDX-License-Identifier: MIT
#include "filters/tone.h"

#include "allocation_watch.h"
#include "random_image.h"
#include "same_bits.h"
#include "tone_reference.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <omp.h>

namespace {

using umbrixlib::test::array_allocations;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
namespace reference = umbrixlib::test::reference;

template <typename Pixel>
class SmoothOf : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};
using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(SmoothOf, Pixels);

TYPED_TEST(SmoothOf, TwoPassesEqualTheReferenceOnAnyNumberOfThreads)
{
    struct Size {
        int height, width;
    };
    for (Size const size : {Size{2, 2}, {2, 9}, {9, 2}, {3, 3}, {5, 4}, {17, 33}, {64, 31}}) {
        for (Values const values : {Values::kUnit, Values::kHostile}) {
            auto const image =
                random_image<TypeParam>(static_cast<std::size_t>(size.height * size.width), 31, values);
            auto const once = reference::smooth(image, size.height, size.width);
            auto const twice = reference::smooth(once, size.height, size.width);
            for (int const threads : {1, 2, 3}) {
                omp_set_num_threads(threads);
                auto actual = image;
                smooth(actual.data(), size.height, size.width, 2);
                EXPECT_SAME_BITS(twice, actual);
            }
        }
    }
}

TYPED_TEST(SmoothOf, ASideOfOneWrapsOntoItself)
{
    auto const pixel = random_image<TypeParam>(1, 32);
    for (auto const& [height, width] : {std::pair{1, 5}, {5, 1}, {1, 1}}) {
        std::vector<TypeParam> image(static_cast<std::size_t>(height * width), pixel[0]);
        smooth(image.data(), height, width, 2);
        for (TypeParam const& each : image) {
            for (int component = 0; component < reference::kComponents<TypeParam>; ++component) {
                EXPECT_NEAR(reinterpret_cast<float const*>(&each)[component],
                            reinterpret_cast<float const*>(pixel.data())[component], 1e-6f);
            }
        }
    }
}

TYPED_TEST(SmoothOf, ALineEqualsTwoLinesOfThatKind)
{
    // Of two equal lines each has the other beside it, which is what a line that wraps onto itself has.
    constexpr int kLength = 7;
    auto const line = random_image<TypeParam>(kLength, 37);
    auto row = line;
    auto column = line;
    std::vector<TypeParam> rows;
    std::vector<TypeParam> columns;
    rows.insert(rows.end(), line.begin(), line.end());
    rows.insert(rows.end(), line.begin(), line.end());
    for (TypeParam const& pixel : line) {
        columns.insert(columns.end(), 2, pixel);
    }
    smooth(row.data(), 1, kLength, 2);
    smooth(rows.data(), 2, kLength, 2);
    smooth(column.data(), kLength, 1, 2);
    smooth(columns.data(), kLength, 2, 2);
    for (std::size_t i = 0; i < kLength; ++i) {
        EXPECT_TRUE(umbrixlib::test::same_bits(std::vector<TypeParam>{rows[i]}, {row[i]})) << i;
        EXPECT_TRUE(umbrixlib::test::same_bits(std::vector<TypeParam>{columns[2 * i]}, {column[i]})) << i;
    }
}

TYPED_TEST(SmoothOf, NoPassesAllocateReleaseAndChangeNothing)
{
    auto const image = random_image<TypeParam>(20, 33);
    for (int const passes : {0, -3}) {
        auto actual = image;
        array_allocations.reset();
        smooth(actual.data(), 4, 5, passes);
        EXPECT_EQ(array_allocations.allocated, 1);
        EXPECT_EQ(array_allocations.released, 1);
        EXPECT_EQ(array_allocations.last_released, array_allocations.last_allocated);
        EXPECT_SAME_BITS(image, actual);
    }
}

TYPED_TEST(SmoothOf, AnEmptyImageStaysEmpty)
{
    auto const image = random_image<TypeParam>(6, 34);
    auto actual = image;
    smooth(actual.data(), 0, 6, 2);
    smooth(actual.data(), 6, 0, 2);
    smooth(actual.data(), -2, -3, 2);
    EXPECT_SAME_BITS(image, actual);
}

TEST(Smooth, WrapsOneShortOfTheSide)
{
    // Of three rows, row -1 and row 3 are both row 1; columns alike. So a corner sees the middle four times
    // and each edge beside it twice, an edge sees its neighbours in a row once and the row of the middle
    // twice.
    std::vector<float> image(9, 0.0f);
    image[4] = 9.0f;
    EXPECT_SAME_BITS((std::vector<float>{4, 2, 4, 2, 1, 2, 4, 2, 4}), reference::smooth(image, 3, 3));
    smooth(image.data(), 3, 3, 2);
    constexpr float kCorner = 16.0f / 9.0f; // 4 * 1 + 2 * (2 + 2) + 4
    constexpr float kEdge = 20.0f / 9.0f;   // 4 + 2 + 4 and 2 * (2 + 1 + 2)
    constexpr float kMiddle = 25.0f / 9.0f; // everything once
    EXPECT_SAME_BITS(
        (std::vector<float>{kCorner, kEdge, kCorner, kEdge, kMiddle, kEdge, kCorner, kEdge, kCorner}), image);
}

TEST(Smooth, KeepsAConstantImage)
{
    std::vector<float3> image(7 * 9, float3{0.5f, 0.25f, 1.0f});
    auto const before = image;
    smooth(image.data(), 7, 9, 4);
    EXPECT_SAME_BITS(before, image); // these sums are exact
}

TEST(Smooth, LeavesAlphaAlone)
{
    auto const image = random_image<float4>(35, 35);
    auto actual = image;
    smooth(actual.data(), 5, 7, 2);
    for (std::size_t i = 0; i < image.size(); ++i) {
        EXPECT_EQ(actual[i].w, image[i].w);
    }
}

TEST(Smooth, AnOddNumberOfPassesReleasesTheCallersBuffer)
{
    auto const image = random_image<float3>(5 * 6, 36);
    auto const expected = reference::smooth(image, 5, 6);
    auto* const callers = new float3[image.size()];
    std::copy(image.begin(), image.end(), callers);
    array_allocations.reset();
    smooth(callers, 5, 6, 1);
    EXPECT_EQ(array_allocations.allocated, 1);
    EXPECT_EQ(array_allocations.released, 1);
    EXPECT_EQ(array_allocations.last_released, callers);
    // The result is in the scratch buffer, which only this allocator still knows.
    auto* const lost = static_cast<float3*>(array_allocations.last_allocated.load());
    EXPECT_SAME_BITS(expected, std::vector<float3>(lost, lost + image.size()));
    delete[] lost;
}

} // namespace
