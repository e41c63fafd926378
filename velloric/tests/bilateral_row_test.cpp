// SPDX-License-Identifier: MIT

/// Which way the inner loop of the bilateral filter comes by its range weights. The results do not show it,
/// so the loop is handed a table that it must not read.

#include "bilateral/row.h"
#include "bilateral/sheet.h"

#include "bilateral_filter_reference.h"
#include "boundary/texture_kernels.h"
#include "every_target.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr int kRadius = 3;
constexpr int kSide = 64;
constexpr std::size_t kWindow = 2 * kRadius + 1;

std::vector<float> gaussian_range()
{
    std::vector<float> range(256);
    GenerateExp(128.0f, range.data());
    return range;
}

/// A row in the middle of @p image, whose windows do not wrap, by way of the kernel.
std::vector<float> row_filtered(std::vector<float> const& image, std::vector<float> const& spatial,
                                std::vector<float> const& range, bool range_is_gaussian)
{
    std::vector<float> weights;
    for (int dy = 0; dy <= kRadius; ++dy) {
        for (int dx = -kRadius; dx <= kRadius; ++dx) {
            weights.push_back(spatial[static_cast<std::size_t>(std::abs(dx))] *
                              spatial[static_cast<std::size_t>(dy)]);
        }
    }
    // Rows as long as a block and its borders.
    std::size_t const stride = velloric::kBilateralBlock + 2 * kRadius;
    std::vector<float> texels(kWindow * stride);
    for (std::size_t row = 0; row < kWindow; ++row) {
        std::memcpy(&texels[row * stride], &image[row * kSide], kSide * sizeof(float));
    }
    std::vector<float> result(velloric::kBilateralBlock);
    velloric::filter_row({texels.data(), stride, kRadius, weights.data(), range.data(), range_is_gaussian},
                         result.data(), kSide - 2 * kRadius);
    result.resize(kSide - 2 * kRadius);
    return result;
}

/// The same row as it is defined.
std::vector<float> row_expected(std::vector<float> const& image, std::vector<float> const& spatial,
                                std::vector<float> const& range)
{
    std::vector<float> result(image.size());
    velloric::reference::bilateral_filter(image.data(), result.data(), kSide, kSide, 1, kRadius,
                                          spatial.data(), range.data());
    auto const row = result.begin() + kRadius * kSide + kRadius;
    return {row, row + kSide - 2 * kRadius};
}

bool multiplies_and_adds_at_once(std::string const& target)
{
    return target != "SCALAR" && target != "EMU128" && target != "SSE2" && target != "SSSE3" &&
           target != "SSE4";
}

TEST(BilateralRow, MakesTheWeightsOfTheUsualTable)
{
    auto const image = umbrixlib::test::random_image<float>(kSide * kSide, 3);
    std::vector<float> spatial(kRadius + 1);
    GenerateExp(kRadius, spatial.data());
    std::vector<float> const usual = gaussian_range();
    std::vector<float> const other = umbrixlib::test::random_image<float>(256, 4);
    auto const of_usual = row_expected(image, spatial, usual);
    auto const of_other = row_expected(image, spatial, other);
    ASSERT_NE(of_usual, of_other);
    umbrixlib::test::for_every_target([&](char const* target) {
        SCOPED_TRACE(target);
        EXPECT_SAME_BITS(multiplies_and_adds_at_once(target) ? of_usual : of_other,
                         row_filtered(image, spatial, other, true));
        EXPECT_SAME_BITS(of_other, row_filtered(image, spatial, other, false));
        EXPECT_SAME_BITS(of_usual, row_filtered(image, spatial, usual, false));
    });
}

TEST(BilateralSheet, IsFilteredUnlessItsWindowIsWiderThanIt)
{
    constexpr std::size_t kWidth = 5;
    for (std::size_t const radius : {std::size_t{0}, std::size_t{2}, std::size_t{3}, std::size_t{20}}) {
        std::size_t const stride = velloric::kBilateralBlock * 2 + 4 * radius;
        std::vector<float> const texels((2 * radius + 1) * stride);
        std::vector<float> const spatial((radius + 1) * (2 * radius + 1), 1.0f);
        umbrixlib::test::for_every_target([&](char const* target) {
            std::vector<float> results(velloric::kBilateralBlock, 1.0f);
            bool const done = velloric::filter_sheet({texels.data(), stride, radius, spatial.data(), 1,
                                                      kWidth, results.data(), velloric::kBilateralBlock});
            EXPECT_EQ(done, radius < 3 && multiplies_and_adds_at_once(target)) << target << ", " << radius;
            EXPECT_EQ(results[4], done ? 0.0f : 1.0f);
        });
    }
}

TEST(BilateralRow, KnowsTheUsualTableFromAnyOther)
{
    std::vector<float> range = gaussian_range();
    EXPECT_TRUE(velloric::is_gaussian_range(range.data()));
    for (std::size_t const entry : {std::size_t{0}, std::size_t{64}, std::size_t{128}, std::size_t{255}}) {
        std::vector<float> changed = range;
        changed[entry] = std::nextafter(changed[entry], 2.0f);
        EXPECT_FALSE(velloric::is_gaussian_range(changed.data())) << entry;
    }
    GenerateExp(127.0f, range.data());
    EXPECT_FALSE(velloric::is_gaussian_range(range.data()));
}

} // namespace
