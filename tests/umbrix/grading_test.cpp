// SPDX-License-Identifier: MIT
#include "umbrix/grading.h"

#include "allocation_watch.h"
#include "every_target.h"
#include "filters/recursive_gaussian.h"
#include "random_image.h"
#include "recursive_gaussian_reference.h"
#include "same_bits.h"
#include "tone_reference.h"

#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <type_traits>

namespace {

using umbrixlib::test::array_allocations;
using umbrixlib::test::for_every_target;
using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
namespace reference = umbrixlib::test::reference;

constexpr int kRows = 45;
constexpr int kCols = 71;
constexpr std::size_t kTexels = std::size_t{kRows} * kCols;

/// The fields that one of the two functions reads.
struct Fields {
    float contrast = 0;
    unsigned char min = 0, max = 255;
    float brightness = 0, smooth = 0;
};

/// Grades @p image with @p fields on the side that belongs to its pixel type, and something else on the
/// other.
template <typename Pixel>
std::vector<Pixel> graded(std::vector<Pixel> image, Fields const& fields, int rows = kRows, int cols = kCols)
{
    constexpr bool kHeights = std::is_same_v<Pixel, float>;
    Fields const others{0.5f, 20, 200, -0.25f, 2.0f};
    Fields const& height_side = kHeights ? fields : others;
    Fields const& map_side = kHeights ? others : fields;
    umbrix_options options{};
    options.h_contrast = height_side.contrast;
    options.h_min = height_side.min;
    options.h_max = height_side.max;
    options.h_brightness = height_side.brightness;
    options.h_smooth = height_side.smooth;
    options.contrast = map_side.contrast;
    options.min = map_side.min;
    options.max = map_side.max;
    options.brightness = map_side.brightness;
    options.smooth = map_side.smooth;
    if constexpr (kHeights) {
        EXPECT_TRUE(PreProcess(image.data(), rows, cols, options));
    } else {
        EXPECT_TRUE(PostProcess(image.data(), rows, cols, options));
    }
    return image;
}

/// The same by the references, one operator after the other.
template <typename Pixel>
std::vector<Pixel> graded_step_by_step(std::vector<Pixel> image, Fields const& fields, int rows = kRows,
                                       int cols = kCols)
{
    if (fields.contrast != 0.0f) {
        reference::change_contrast(image.data(), rows, cols, fields.contrast);
    }
    if (fields.min != 0 || fields.max < 255) {
        reference::limit_color(image.data(), rows, cols, fields.min, fields.max);
    }
    if (fields.brightness != 0.0f) {
        reference::brighten(image.data(), rows, cols, fields.brightness);
    }
    return fields.smooth != 0.0f ? reference::gaussian(image, cols, rows, fields.smooth) : image;
}

class GradingTest : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
    }
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};

template <typename Pixel>
class GradingOf : public GradingTest {
};
using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(GradingOf, Pixels);

TYPED_TEST(GradingOf, EqualsTheOperatorsOneAfterTheOther)
{
    for (Values const values : {Values::kUnit, Values::kHostile}) {
        auto const image = random_image<TypeParam>(kTexels, 61, values);
        for (Fields const& fields :
             {Fields{0.4f, 0, 255, 0, 0}, Fields{0, 30, 220, 0, 0}, Fields{0, 0, 255, -0.3f, 0},
              Fields{-0.6f, 12, 255, 0.2f, 0}, Fields{0.9f, 0, 99, -0.1f, 0}, Fields{0, 0, 255, 0, 1.5f},
              Fields{2.0f, 200, 100, 0.15f, 3.0f}}) {
            auto const expected = graded_step_by_step(image, fields);
            for_every_target([&](char const* target) {
                SCOPED_TRACE(target);
                EXPECT_SAME_BITS(expected, graded(image, fields));
            });
        }
    }
}

TYPED_TEST(GradingOf, SingleLinesAndOneTexelEqualTheOperatorsToo)
{
    Fields const fields{0.4f, 30, 220, 0.2f, 2.0f};
    for (auto const& [rows, cols] : {std::pair{1, 1}, {1, 9}, {9, 1}}) {
        auto const image = random_image<TypeParam>(static_cast<std::size_t>(rows * cols), 70);
        EXPECT_SAME_BITS(graded_step_by_step(image, fields, rows, cols), graded(image, fields, rows, cols));
    }
}

TYPED_TEST(GradingOf, NeutralOptionsChangeNothingAndAllocateNothing)
{
    auto const image = random_image<TypeParam>(kTexels, 62, Values::kHostile);
    auto actual = image;
    umbrix_options options{};
    options.max = options.h_max = 255;
    array_allocations.reset();
    if constexpr (std::is_same_v<TypeParam, float>) {
        EXPECT_TRUE(PreProcess(actual.data(), kRows, kCols, options));
    } else {
        EXPECT_TRUE(PostProcess(actual.data(), kRows, kCols, options));
    }
    EXPECT_EQ(array_allocations.allocated, 0);
    EXPECT_SAME_BITS(image, actual);
}

TYPED_TEST(GradingOf, BlurringAllocatesOneBufferAndReleasesIt)
{
    auto image = random_image<TypeParam>(kTexels, 63);
    umbrix_options options{};
    options.max = options.h_max = 255;
    options.smooth = options.h_smooth = 2.0f;
    array_allocations.reset();
    if constexpr (std::is_same_v<TypeParam, float>) {
        PreProcess(image.data(), kRows, kCols, options);
    } else {
        PostProcess(image.data(), kRows, kCols, options);
    }
    EXPECT_EQ(array_allocations.allocated, 1);
    EXPECT_EQ(array_allocations.released, 1);
    EXPECT_EQ(array_allocations.last_released, array_allocations.last_allocated);
}

TYPED_TEST(GradingOf, ZeroTo255SkipsTheLimitsAndAnyOtherRangeDoesNot)
{
    // An infinite value survives a skipped step only: between 0 and 1 it would become NaN.
    std::vector<TypeParam> image(kTexels);
    auto* const floats = reinterpret_cast<float*>(image.data());
    floats[0] = kInfinity;
    EXPECT_SAME_BITS(image, graded(image, {0, 0, 255, 0, 0}));
    for (Fields const& fields : {Fields{0, 1, 255, 0, 0}, Fields{0, 0, 254, 0, 0}}) {
        auto expected = image;
        reference::limit_color(expected.data(), kRows, kCols, fields.min, fields.max);
        auto const actual = graded(image, fields);
        EXPECT_SAME_BITS(expected, actual);
        EXPECT_FALSE(umbrixlib::test::same_bits(image, actual));
    }
}

TYPED_TEST(GradingOf, ANegativeSigmaBlursAsTheSmallestOne)
{
    auto const image = random_image<TypeParam>(kTexels, 64);
    auto const actual = graded(image, {0, 0, 255, 0, -3.0f});
    EXPECT_SAME_BITS(reference::gaussian(image, kCols, kRows, 0.1f), actual);
    EXPECT_FALSE(umbrixlib::test::same_bits(image, actual));
}

TYPED_TEST(GradingOf, NotANumberCountsAsNotZero)
{
    auto const image = random_image<TypeParam>(kTexels, 65);
    for (Fields const& fields :
         {Fields{kNaN, 0, 255, 0, 0}, Fields{0, 0, 255, kNaN, 0}, Fields{0, 0, 255, 0, kNaN}}) {
        auto const actual = graded(image, fields);
        EXPECT_SAME_BITS(graded_step_by_step(image, fields), actual);
        EXPECT_TRUE(std::isnan(*reinterpret_cast<float const*>(actual.data())));
    }
}

TYPED_TEST(GradingOf, ALargerTeamChangesNoBit)
{
    auto const image = random_image<TypeParam>(kTexels, 66);
    Fields const fields{0.4f, 30, 220, 0.2f, 2.0f};
    auto const expected = graded_step_by_step(image, fields);
    for (int const more : {1, 3}) {
        omp_set_num_threads(omp_get_num_procs() + more);
        EXPECT_SAME_BITS(expected, graded(image, fields));
    }
}

using Grading = GradingTest;

TEST_F(Grading, ASmallerTeamLeavesTheOtherShares)
{
    auto const image = random_image<float3>(kTexels, 67);
    int const shares = omp_get_num_procs();
    auto expected = image;
    reference::change_contrast(expected.data(), kRows, kCols, 0.5f, 0, shares);
    omp_set_num_threads(1);
    EXPECT_SAME_BITS(expected, graded(image, {0.5f, 0, 255, 0, 0}));
}

TEST_F(Grading, HeightBrightnessReachesTheFirstRowsElementsOnly)
{
    std::vector<float> const heights(kTexels, 0.25f);
    auto const actual = graded(heights, {0, 0, 255, 0.5f, 0});
    for (std::size_t i = 0; i < kTexels; ++i) {
        ASSERT_EQ(actual[i], i < std::size_t{kRows} ? 0.75f : 0.25f) << i;
    }
}

TEST_F(Grading, AlphaSkipsTheTonesAndIsBlurred)
{
    auto image = random_image<float4>(kTexels, 68);
    auto const toned = graded(image, {0.5f, 10, 200, 0.1f, 0});
    for (std::size_t i = 0; i < kTexels; ++i) {
        EXPECT_EQ(toned[i].w, image[i].w);
    }
    auto const blurred = graded(image, {0, 0, 255, 0, 2.0f});
    EXPECT_NE(blurred[100].w, image[100].w);
    EXPECT_EQ(blurred[100].w, reference::gaussian(image, kCols, kRows, 2.0f)[100].w);
}

TYPED_TEST(GradingOf, AnEmptyImageStaysEmpty)
{
    auto const image = random_image<TypeParam>(6, 69);
    Fields const fields{0.5f, 10, 200, 0.1f, 2.0f};
    for (auto const& [rows, cols] : {std::pair{0, 6}, {6, 0}, {0, 0}, {-2, 3}}) {
        EXPECT_SAME_BITS(image, graded(image, fields, rows, cols));
    }
}

} // namespace
