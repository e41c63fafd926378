// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "same_bits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

constexpr float kUntouched = -7.0f;

/// A table of @p sigma in a buffer that is @p extra entries too long.
std::vector<float> table_of(float sigma, std::size_t entries, std::size_t extra = 0)
{
    std::vector<float> table(entries + extra, kUntouched);
    GenerateExp(sigma, table.data());
    return table;
}

long double exact_weight(std::size_t distance, float sigma)
{
    long double const s = static_cast<long double>(sigma) / 3;
    long double const i = static_cast<long double>(distance);
    return std::exp(-i * i / (2 * s * s));
}

std::size_t entries_of(float sigma)
{
    return static_cast<std::size_t>(std::ceil(sigma)) + 1;
}

/// The largest error of the weights of @p sigma, in units in the last place of the exact weight.
long double largest_error(float sigma)
{
    std::vector<float> const table = table_of(sigma, entries_of(sigma));
    long double largest = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        long double const exact = exact_weight(i, sigma);
        long double const unit = std::ldexp(1.0L, std::ilogb(exact) - 23);
        largest = std::max(largest, std::fabs(static_cast<long double>(table[i]) - exact) / unit);
    }
    return largest;
}

TEST(GenerateExp, WeightsAreTheFormulaWithinAUnitInTheLastPlaceAndAQuarter)
{
    for (float sigma = 1.0f; sigma < 300.0f; sigma *= 1.01f) {
        EXPECT_LT(largest_error(sigma), 1.25L) << "sigma " << sigma;
    }
    EXPECT_LT(largest_error(70000.0f), 1.25L);
}

TEST(GenerateExp, TheRangeTableIsTheFormulaWithinAUnitInTheLastPlace)
{
    EXPECT_LT(largest_error(128.0f), 1.0L);
}

TEST(GenerateExp, TinySigmasFadeIntoDenormalsAndZero)
{
    for (float const sigma : {0.9f, 0.5f, 0.3f, 0.25f, 0.22f, 0.21f, 0.208f, 0.2f, 0.1f, 1e-20f, 1e-45f}) {
        std::vector<float> const table = table_of(sigma, 2);
        long double const exact = exact_weight(1, sigma);
        EXPECT_EQ(table[0], 1.0f);
        long double const tolerance =
            exact * 4e-7L + static_cast<long double>(std::numeric_limits<float>::denorm_min()) * 0.51L;
        EXPECT_LE(std::fabs(static_cast<long double>(table[1]) - exact), tolerance) << "sigma " << sigma;
    }
    EXPECT_EQ(table_of(0.2f, 2)[1], 0.0f);
}

TEST(GenerateExp, SigmaIsThreeStandardDeviations)
{
    EXPECT_FLOAT_EQ(table_of(3.0f, 4)[1], 0.60653066f);
    EXPECT_FLOAT_EQ(table_of(3.0f, 4)[3], 0.011108997f);
}

TEST(GenerateExp, WritesNothingBehindTheRoundedUpSigma)
{
    for (float const sigma : {0.5f, 1.0f, 1.0001f, 2.0f, 4.5f}) {
        std::size_t const entries = entries_of(sigma);
        std::vector<float> const table = table_of(sigma, entries, 3);
        EXPECT_NE(table[entries - 1], kUntouched);
        for (std::size_t i = entries; i < table.size(); ++i) {
            EXPECT_EQ(table[i], kUntouched) << "sigma " << sigma << ", entry " << i;
        }
    }
}

TEST(GenerateExp, FillsHalfOfTheRangeTable)
{
    std::vector<float> range(256, 0.0f);
    GenerateExp(128.0f, range.data());
    for (std::size_t i = 1; i <= 128; ++i) {
        EXPECT_LT(range[i], range[i - 1]);
        EXPECT_GT(range[i], 0.0f);
    }
    for (std::size_t i = 129; i < range.size(); ++i) {
        EXPECT_EQ(range[i], 0.0f);
    }
}

TEST(GenerateExp, WithoutASigmaTheOnlyWeightIsOne)
{
    using limits = std::numeric_limits<float>;
    for (float const sigma : {0.0f, -0.0f, -3.0f, limits::quiet_NaN(), -limits::infinity()}) {
        EXPECT_EQ(table_of(sigma, 1, 2), (std::vector<float>{1.0f, kUntouched, kUntouched}));
    }
}

TEST(GenerateExp, ASigmaThatNoIntHoldsWritesTheWeightOneAlone)
{
    for (float const sigma : {2147483648.0f, 1e30f, std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(table_of(sigma, 1, 2), (std::vector<float>{1.0f, kUntouched, kUntouched}));
    }
}

TEST(GenerateExp, SlicesMakeTheSameTable)
{
    for (float const sigma : {0.0f, 1.0f, 2.5f, 128.0f}) {
        std::vector<float> const whole = table_of(sigma, entries_of(sigma));
        for (int const threads : {1, 2, 3, 200}) {
            std::vector<float> table(whole.size(), kUntouched);
            for (int thread = threads - 1; thread >= 0; --thread) {
                GenerateExp(sigma, table.data(), thread, threads);
            }
            EXPECT_SAME_BITS(whole, table);
        }
    }
}

TEST(GenerateExp, ASliceHoldsEveryEntryOfItsThreadAndNoOther)
{
    std::vector<float> const whole = table_of(10.0f, 11);
    std::vector<float> slice(11, kUntouched);
    GenerateExp(10.0f, slice.data(), 1, 3);
    for (std::size_t i = 0; i < slice.size(); ++i) {
        EXPECT_EQ(slice[i], i % 3 == 1 ? whole[i] : kUntouched);
    }
}

TEST(GenerateExp, AThreadThatIsNoneOfThemHasNoShare)
{
    for (int const thread : {-1, 3, 4, 64}) {
        std::vector<float> table(11, kUntouched);
        GenerateExp(10.0f, table.data(), thread, 3);
        EXPECT_EQ(table, std::vector<float>(11, kUntouched)) << thread;
    }
}

} // namespace
