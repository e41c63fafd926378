// SPDX-License-Identifier: MIT
/// Recursive Gaussian. Rounding is part of the contract: floats are compared bit for bit on purpose, a
/// differing last bit is a failure, and EXPECT_NEAR is not the remedy.
#include "filters/recursive_gaussian.h"

#include "every_target.h"
#include "image_size.h"
#include "random_image.h"
#include "recursive_gaussian_reference.h"
#include "same_bits.h"

#include <climits>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <omp.h>
#include <random>

namespace {

using umbrixlib::test::for_every_target;
using umbrixlib::test::ImageSize;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
namespace reference = umbrixlib::test::reference;

template <typename Pixel>
std::vector<Pixel> blurred(std::vector<Pixel> const& image, ImageSize size, float sigma)
{
    std::vector<Pixel> source = image;
    std::vector<Pixel> scratch(image.size());
    std::vector<Pixel> result(image.size());
    gaussianFilterRGBA(source.data(), result.data(), scratch.data(), size.width, size.height, sigma);
    EXPECT_SAME_BITS(image, source);
    return result;
}

/// One of the two passes, plain or one share.
template <typename Pixel, typename... Share>
void columns_pass(std::vector<Pixel> input, std::vector<Pixel>& output, ImageSize size,
                  reference::Coefficients const& c, Share... share)
{
    recursiveGaussian_rgba(input.data(), output.data(), size.width, size.height, c.a0, c.a1, c.a2, c.a3, c.b1,
                           c.b2, c.edge_forward, c.edge_backward, share...);
}

template <typename Pixel, typename... Share>
void rows_pass(std::vector<Pixel> input, std::vector<Pixel>& output, ImageSize size,
               reference::Coefficients const& c, Share... share)
{
    recursiveGaussianY_rgba(input.data(), output.data(), size.width, size.height, c.a0, c.a1, c.a2, c.a3,
                            c.b1, c.b2, c.edge_forward, c.edge_backward, share...);
}

template <typename Pixel>
class RecursiveGaussianOf : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};
using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(RecursiveGaussianOf, Pixels);

TYPED_TEST(RecursiveGaussianOf, EqualsTheReferenceUnderEveryInstructionSet)
{
    std::vector<ImageSize> sizes{{1, 1}, {2, 1}, {1, 2}, {1, 67}, {67, 1}, {16, 48}, {17, 15}, {48, 16}};
    std::mt19937 generator(41);
    for (int i = 0; i < 12; ++i) {
        int const width = 1 + static_cast<int>(generator() % 67);
        sizes.push_back({width, 1 + static_cast<int>(generator() % 67)});
    }
    for (ImageSize const size : sizes) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        for (Values const values : {Values::kUnit, Values::kSigned, Values::kHostile}) {
            auto const image =
                random_image<TypeParam>(size.pixels(), static_cast<std::uint32_t>(generator()), values);
            for (float const sigma : {-1.0f, 0.5f, 2.0f, 9.0f, 60.0f}) {
                auto const expected = reference::gaussian(image, size.width, size.height, sigma);
                for_every_target([&](char const* target) {
                    SCOPED_TRACE(target);
                    EXPECT_SAME_BITS(expected, blurred(image, size, sigma));
                });
            }
        }
    }
}

TYPED_TEST(RecursiveGaussianOf, EqualsTheReferenceOnLinesSoLongThatTheRunsMeet)
{
    static constexpr ImageSize kSize{301, 270};
    auto impulses = random_image<TypeParam>(kSize.pixels(), 42);
    auto* const floats = reinterpret_cast<float*>(impulses.data());
    for (std::size_t i = 0; i < impulses.size() * sizeof(TypeParam) / sizeof(float); ++i) {
        floats[i] = i % 997 == 0 ? 1.0f : -0.0f; // tails of an impulse reach the denormals
    }
    std::vector<TypeParam> const flat(kSize.pixels(), impulses[0]);
    for (auto const& image : {impulses, flat, random_image<TypeParam>(kSize.pixels(), 43)}) {
        for (float const sigma : {0.3f, 1.5f, 7.0f, 30.0f}) {
            auto const expected = reference::gaussian(image, kSize.width, kSize.height, sigma);
            for_every_target([&](char const* target) {
                SCOPED_TRACE(target);
                EXPECT_SAME_BITS(expected, blurred(image, kSize, sigma));
            });
        }
    }
}

TYPED_TEST(RecursiveGaussianOf, GivesTheSameBitsOnAnyNumberOfThreads)
{
    constexpr ImageSize kSize{203, 111};
    auto const image = random_image<TypeParam>(kSize.pixels(), 44);
    auto const expected = reference::gaussian(image, kSize.width, kSize.height, 3.0f);
    for (int const threads : {1, 2, 3, 16}) {
        omp_set_num_threads(threads);
        EXPECT_SAME_BITS(expected, blurred(image, kSize, 3.0f));
    }
}

TYPED_TEST(RecursiveGaussianOf, MayHaveItsSourceAsDestination)
{
    constexpr ImageSize kSize{37, 51};
    auto const image = random_image<TypeParam>(kSize.pixels(), 45);
    auto actual = image;
    std::vector<TypeParam> scratch(image.size());
    gaussianFilterRGBA(actual.data(), actual.data(), scratch.data(), kSize.width, kSize.height, 2.5f);
    EXPECT_SAME_BITS(blurred(image, kSize, 2.5f), actual);
}

TYPED_TEST(RecursiveGaussianOf, LeavesTheColumnsPassInTheScratchBuffer)
{
    constexpr ImageSize kSize{21, 34};
    auto image = random_image<TypeParam>(kSize.pixels(), 46);
    std::vector<TypeParam> scratch(image.size());
    std::vector<TypeParam> columns(image.size());
    reference::gaussian_columns(image.data(), columns.data(), kSize.width, kSize.height,
                                reference::gaussian_coefficients(2.5f));
    gaussianFilterRGBA(image.data(), image.data(), scratch.data(), kSize.width, kSize.height, 2.5f);
    EXPECT_SAME_BITS(columns, scratch);
}

/// Whether each share of an image of @p size changes its own lines and no others.
template <typename Pixel>
void expect_shares_of_their_own(ImageSize size)
{
    auto const c = reference::gaussian_coefficients(3.0f);
    auto const image = random_image<Pixel>(size.pixels(), 47, Values::kHostile);
    auto const before = random_image<Pixel>(size.pixels(), 48);
    std::vector<Pixel> columns(image.size());
    std::vector<Pixel> rows(image.size());
    reference::gaussian_columns(image.data(), columns.data(), size.width, size.height, c);
    reference::gaussian_rows(image.data(), rows.data(), size.width, size.height, c);
    for_every_target([&](char const* target) {
        SCOPED_TRACE(target);
        for (int const threads : {1, 2, 3, 60}) {
            auto expected_columns = before;
            auto actual_columns = before;
            auto expected_rows = before;
            auto actual_rows = before;
            for (int thread = 0; thread < threads; ++thread) {
                columns_pass(image, actual_columns, size, c, thread, threads);
                rows_pass(image, actual_rows, size, c, thread, threads);
                for (std::size_t i = 0; i < image.size(); ++i) {
                    int const x = static_cast<int>(i) % size.width;
                    int const y = static_cast<int>(i) / size.width;
                    if (x % threads == thread) {
                        expected_columns[i] = columns[i];
                    }
                    if (y % threads == thread) {
                        expected_rows[i] = rows[i];
                    }
                }
                EXPECT_SAME_BITS(expected_columns, actual_columns);
                EXPECT_SAME_BITS(expected_rows, actual_rows);
            }
        }
    });
}

TYPED_TEST(RecursiveGaussianOf, AShareFiltersItsOwnLinesOnlyAndAllSharesMakeTheWhole)
{
    expect_shares_of_their_own<TypeParam>({53, 47});
}

TYPED_TEST(RecursiveGaussianOf, SharesOfSingleLinesAndOfOneTexelAreTheirOwn)
{
    for (ImageSize const size : {ImageSize{9, 1}, {1, 9}, {1, 1}}) {
        expect_shares_of_their_own<TypeParam>(size);
    }
}

TYPED_TEST(RecursiveGaussianOf, AShareOfOneThreadMayStartAnywhere)
{
    constexpr ImageSize kSize{53, 47};
    auto const c = reference::gaussian_coefficients(3.0f);
    auto const image = random_image<TypeParam>(kSize.pixels(), 56);
    auto const before = random_image<TypeParam>(kSize.pixels(), 57);
    std::vector<TypeParam> expected(image.size());
    reference::gaussian_columns(image.data(), expected.data(), kSize.width, kSize.height, c);
    for (std::size_t i = 0; i < image.size(); ++i) {
        if (static_cast<int>(i) % kSize.width < 5) {
            expected[i] = before[i];
        }
    }
    auto actual = before;
    columns_pass(image, actual, kSize, c, 5, 1);
    EXPECT_SAME_BITS(expected, actual);
}

TYPED_TEST(RecursiveGaussianOf, ASharePastTheEndOrOfNoThreadsDoesNothing)
{
    constexpr ImageSize kSize{4, 4};
    auto const c = reference::gaussian_coefficients(1.0f);
    auto const image = random_image<TypeParam>(kSize.pixels(), 49);
    auto const before = random_image<TypeParam>(kSize.pixels(), 50);
    auto actual = before;
    for (auto const& [thread, threads] :
         {std::pair{4, 1}, {4, 5}, {INT_MAX, INT_MAX}, {0, 0}, {0, -1}, {-1, 1}, {-1, 4}}) {
        columns_pass(image, actual, kSize, c, thread, threads);
        rows_pass(image, actual, kSize, c, thread, threads);
    }
    EXPECT_SAME_BITS(before, actual);
}

TYPED_TEST(RecursiveGaussianOf, DoesNothingWithoutWidthOrHeight)
{
    auto const c = reference::gaussian_coefficients(1.0f);
    auto const image = random_image<TypeParam>(6, 51);
    auto const before = random_image<TypeParam>(6, 52);
    auto actual = before;
    for (ImageSize const size : {ImageSize{0, 6}, ImageSize{6, 0}, ImageSize{0, 0}, ImageSize{-2, 3},
                                 ImageSize{3, -2}, ImageSize{-2, -3}}) {
        columns_pass(image, actual, size, c);
        rows_pass(image, actual, size, c);
        columns_pass(image, actual, size, c, 0, 1);
        rows_pass(image, actual, size, c, 0, 1);
        auto source = image;
        auto scratch = before;
        gaussianFilterRGBA(source.data(), actual.data(), scratch.data(), size.width, size.height, 2.0f);
    }
    EXPECT_SAME_BITS(before, actual);
}

TYPED_TEST(RecursiveGaussianOf, ThePassesDoNotReadTheGainsForEdges)
{
    constexpr ImageSize kSize{19, 23};
    auto const image = random_image<TypeParam>(kSize.pixels(), 53);
    auto c = reference::gaussian_coefficients(2.0f);
    std::vector<TypeParam> expected(image.size());
    columns_pass(image, expected, kSize, c);
    c.edge_forward = c.edge_backward = std::numeric_limits<float>::quiet_NaN();
    std::vector<TypeParam> actual(image.size());
    columns_pass(image, actual, kSize, c);
    EXPECT_SAME_BITS(expected, actual);
}

TYPED_TEST(RecursiveGaussianOf, SigmaBelowOneTenthCountsAsOneTenthAndHardlyBlurs)
{
    constexpr ImageSize kSize{33, 20};
    auto const image = random_image<TypeParam>(kSize.pixels(), 54);
    auto const expected = blurred(image, kSize, 0.1f);
    for (float const sigma : {0.0f, -0.0f, 0.05f, -7.0f, -std::numeric_limits<float>::infinity()}) {
        EXPECT_SAME_BITS(expected, blurred(image, kSize, sigma));
    }
    for (std::size_t i = 0; i < image.size() * sizeof(TypeParam) / sizeof(float); ++i) {
        ASSERT_NEAR(reinterpret_cast<float const*>(expected.data())[i],
                    reinterpret_cast<float const*>(image.data())[i], 1e-5f);
    }
}

TEST(RecursiveGaussian, ABrightPixelWrapsAroundTheEdge)
{
    std::vector<float> image(64, 0.0f);
    image[0] = 1.0f;
    std::vector<float> column(64);
    columns_pass(image, column, {1, 64}, reference::gaussian_coefficients(4.0f));
    EXPECT_NEAR(column[0], 0.106f, 0.0005f);
    EXPECT_NEAR(column[1], 0.099f, 0.0005f);
    EXPECT_NEAR(column[63], column[1], 1e-6f);
}

TEST(RecursiveGaussian, ALongConstantLineStaysConstant)
{
    std::vector<float3> const image(64 * 64, float3{1.0f, 1.0f, 1.0f});
    for (float3 const& pixel : blurred(image, {64, 64}, 4.0f)) {
        EXPECT_NEAR(pixel.x, 1.0f, 1e-4f);
    }
    std::vector<float> const floats(64 * 64, 1.0f);
    for (float const value : blurred(floats, {64, 64}, 4.0f)) {
        EXPECT_NEAR(value, 1.0f, 1e-5f);
    }
}

TEST(RecursiveGaussian, ShortConstantLinesComeOutDarker)
{
    struct Case {
        int length;
        float sigma, low, high;
    };
    for (Case const& each :
         {Case{8, 8.0f, 0.785f, 0.825f}, Case{8, 16.0f, 0.525f, 0.545f}, Case{8, 50.0f, 0.195f, 0.205f},
          Case{2, 2.0f, 0.815f, 0.825f}, Case{1, 2.0f, 0.545f, 0.555f}}) {
        std::vector<float> const line(static_cast<std::size_t>(each.length), 1.0f);
        std::vector<float> result(line.size());
        rows_pass(line, result, {each.length, 1}, reference::gaussian_coefficients(each.sigma));
        for (float const value : result) {
            EXPECT_GE(value, each.low) << each.length << " at sigma " << each.sigma;
            EXPECT_LE(value, each.high) << each.length << " at sigma " << each.sigma;
        }
    }
}

TEST(RecursiveGaussian, ThePlainPassBlursColumnsAndTheYPassRows)
{
    constexpr ImageSize kSize{40, 40};
    std::vector<float> image(kSize.pixels(), 0.0f);
    image[20 * 40 + 20] = 1.0f;
    auto const c = reference::gaussian_coefficients(2.0f);
    std::vector<float> down(image.size());
    columns_pass(image, down, kSize, c);
    EXPECT_GT(down[21 * 40 + 20], 0.1f);
    EXPECT_EQ(down[20 * 40 + 21], 0.0f);
    std::vector<float> along(image.size());
    rows_pass(image, along, kSize, c);
    EXPECT_EQ(along[21 * 40 + 20], 0.0f);
    EXPECT_GT(along[20 * 40 + 21], 0.1f);
}

TEST(RecursiveGaussian, LeavesTheTeamOfTheCallersNextRegionAlone)
{
    auto const team = [] {
        int size = 0;
#pragma omp parallel
#pragma omp single
        size = omp_get_num_threads();
        return size;
    };
    omp_set_num_threads(2);
    int const before = team();
    blurred(random_image<float>(6, 58), {3, 2}, 2.0f); // so small that one thread does it
    EXPECT_EQ(team(), before);
    omp_set_num_threads(omp_get_num_procs());
}

TEST(RecursiveGaussian, FiltersAlphaLikeTheOtherComponents)
{
    constexpr ImageSize kSize{30, 20};
    auto image = random_image<float4>(kSize.pixels(), 55);
    for (float4& pixel : image) {
        pixel.w = pixel.x;
    }
    for (float4 const& pixel : blurred(image, kSize, 2.0f)) {
        EXPECT_EQ(pixel.w, pixel.x);
    }
}

} // namespace
