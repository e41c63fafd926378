// SPDX-License-Identifier: MIT

/// The bilateral filter against its definition, to the bit: neither threads nor registers may change the
/// order in which a texel sums up its taps.

#include "bilateral_filter_reference.h"
#include "boundary/texture_kernels.h"
#include "every_target.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::test::for_every_target;
using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;
using velloric::test::for_every_team;
using velloric::test::Size;
using velloric::test::sizes;

/// Weights in buffers of exactly the size that the kernel may read.
struct Weights {
    std::vector<float> spatial;
    std::vector<float> range = std::vector<float>(256);
};

std::size_t spatial_entries(float radius)
{
    return static_cast<std::size_t>(std::ceil(radius)) + 1;
}

/// What every pipeline hands over.
Weights usual_weights(float radius)
{
    Weights weights{std::vector<float>(spatial_entries(radius))};
    GenerateExp(radius, weights.spatial.data());
    GenerateExp(128.0f, weights.range.data());
    return weights;
}

Weights random_weights(float radius, Values values)
{
    return {random_image<float>(spatial_entries(radius), 11, values), random_image<float>(256, 12, values)};
}

std::vector<float> filtered(std::vector<float> source, Size size, float radius, Weights weights)
{
    std::vector<float> result(source.size());
    BilateralFilter(source.data(), result.data(), size.height, size.width, radius, weights.spatial.data(),
                    weights.range.data());
    return result;
}

std::vector<float> expected(std::vector<float> const& source, Size size, float radius, Weights const& weights)
{
    std::vector<float> result(source.size());
    velloric::reference::bilateral_filter(source.data(), result.data(), size.height, size.width, 1,
                                          static_cast<int>(std::ceil(radius)), weights.spatial.data(),
                                          weights.range.data());
    return result;
}

void expect_definition(std::vector<float> const& source, Size size, float radius, Weights const& weights)
{
    SCOPED_TRACE(testing::Message() << size.height << " x " << size.width << ", radius " << radius);
    std::vector<float> const definition = expected(source, size, radius, weights);
    for_every_target([&](char const* target) {
        SCOPED_TRACE(target);
        EXPECT_SAME_BITS(definition, filtered(source, size, radius, weights));
    });
}

TEST(BilateralFilter, EqualsItsDefinitionWithTheUsualWeights)
{
    for (Size const size : sizes()) {
        for (float const radius : {1.0f, 2.3f, 5.0f}) {
            expect_definition(random_image<float>(size.texels(), 1), size, radius, usual_weights(radius));
        }
    }
}

TEST(BilateralFilter, EqualsItsDefinitionOverSeveralBlocksAndSheets)
{
    for (float const radius : {1.0f, 2.0f, 6.0f, 11.0f, 20.0f}) {
        for (Values const values : {Values::kUnit, Values::kHostile}) {
            Size const size{radius < 6.0f ? 70 : 90, 2 * 128 + 5};
            auto const source = random_image<float>(
                static_cast<std::size_t>(size.height) * static_cast<std::size_t>(size.width), 31, values);
            expect_definition(source, size, radius, usual_weights(radius));
        }
    }
}

TEST(BilateralFilter, EqualsItsDefinitionOnDifferencesBeyondTheTable)
{
    for (Values const values : {Values::kSigned, Values::kHostile}) {
        for (Size const size : sizes()) {
            expect_definition(random_image<float>(size.texels(), 2, values), size, 2.0f, usual_weights(2.0f));
        }
    }
}

TEST(BilateralFilter, EqualsItsDefinitionWithAnyWeights)
{
    for (Values const values : {Values::kUnit, Values::kHostile}) {
        for (Size const size : sizes()) {
            expect_definition(random_image<float>(size.texels(), 3), size, 1.5f,
                              random_weights(1.5f, values));
            expect_definition(random_image<float>(size.texels(), 4, Values::kHostile), size, 2.0f,
                              random_weights(2.0f, values));
        }
    }
}

/// Zeros among values that lie as near as floats come to the middle of two steps of the range table.
TEST(BilateralFilter, TakesTheNearestStepOfTheExactProduct)
{
    std::vector<float> source;
    for (int step = 0; step < 258; ++step) {
        float const middle = static_cast<float>((step + 0.5) / 255.0);
        for (float const value :
             {std::nextafter(middle, 0.0f), 0.0f, middle, -middle, 0.0f, std::nextafter(middle, 2.0f)}) {
            source.push_back(value);
        }
    }
    Size const size = {1, static_cast<int>(source.size())};
    expect_definition(source, size, 2.0f, usual_weights(2.0f));
    expect_definition(source, size, 2.0f, random_weights(2.0f, Values::kUnit));
}

TEST(BilateralFilter, HalfADifferenceOfOneIsStep128)
{
    Weights weights{{1.0f, 1.0f}};
    weights.range[0] = weights.range[128] = 1.0f;
    // The neighbours of the zero are 0.5 away on both sides, six of the nine taps.
    EXPECT_FLOAT_EQ(filtered({0.0f, 0.5f, 0.5f}, {1, 3}, 1.0f, weights)[0], 1.0f / 3.0f);
}

TEST(BilateralFilter, DifferencesBeyondTheTableTakeItsLastEntry)
{
    Weights weights{{1.0f, 1.0f}};
    weights.range[255] = 1.0f;
    for (float const far : {1.0f, 2.0f, 0x1p24f, 0x1p120f}) {
        EXPECT_EQ(filtered({0.0f, far}, {1, 2}, 1.0f, weights)[0], far);
        EXPECT_EQ(filtered({0.0f, far}, {1, 2}, 1.0f, weights)[1], 0.0f);
    }
}

TEST(BilateralFilter, NaNSpreadsOverItsWindowAndNoFarther)
{
    std::vector<float> source(7 * 9, 0.5f);
    source[3 * 9 + 4] = kNaN;
    for (Weights const& weights : {usual_weights(1.0f), random_weights(1.0f, Values::kUnit)}) {
        for_every_target([&](char const* target) {
            SCOPED_TRACE(target);
            std::vector<float> const result = filtered(source, {7, 9}, 1.0f, weights);
            EXPECT_EQ(std::count_if(result.begin(), result.end(), [](float v) { return std::isnan(v); }), 9);
        });
    }
}

TEST(BilateralFilter, WrapsAWindowLargerThanTheImage)
{
    for (Size const size : {Size{1, 1}, Size{2, 3}, Size{5, 1}, Size{4, 7}}) {
        expect_definition(random_image<float>(size.texels(), 5), size, 17.0f, usual_weights(17.0f));
    }
}

TEST(BilateralFilter, MovesWithTheTexture)
{
    Size const size = {21, 34};
    std::vector<float> const source = random_image<float>(size.texels(), 6);
    auto const moved = [&](std::vector<float> const& image) {
        std::vector<float> result;
        for (std::size_t y = 0; y < 21; ++y) {
            for (std::size_t x = 0; x < 34; ++x) {
                result.push_back(image[(y + 5) % 21 * 34 + (x + 9) % 34]);
            }
        }
        return result;
    };
    Weights const weights = usual_weights(3.0f);
    EXPECT_SAME_BITS(moved(filtered(source, size, 3.0f, weights)),
                     filtered(moved(source), size, 3.0f, weights));
}

TEST(BilateralFilter, FiltersThreeChannelsEachByItself)
{
    for (Size const size : sizes()) {
        auto source = random_image<float3>(size.texels(), 7);
        Weights weights = usual_weights(2.0f);
        std::vector<float3> definition(source.size());
        for (std::size_t channel = 0; channel < 3; ++channel) {
            velloric::reference::bilateral_filter(&source[0].x + channel, &definition[0].x + channel,
                                                  size.height, size.width, 3, 2, weights.spatial.data(),
                                                  weights.range.data());
        }
        for_every_team([&](int) {
            std::vector<float3> result(source.size());
            BilateralFilter(source.data(), result.data(), size.height, size.width, 2.0f,
                            weights.spatial.data(), weights.range.data());
            EXPECT_SAME_BITS(definition, result);
        });
    }
}

TEST(BilateralFilter, IsTheSameForEveryTeam)
{
    Size const size = {67, 41};
    std::vector<float> const source = random_image<float>(size.texels(), 8);
    Weights const weights = usual_weights(4.0f);
    std::vector<float> const definition = expected(source, size, 4.0f, weights);
    for_every_team([&](int threads) {
        SCOPED_TRACE(threads);
        EXPECT_SAME_BITS(definition, filtered(source, size, 4.0f, weights));
    });
}

TEST(BilateralFilter, SlicesWriteEveryElementOnce)
{
    for (Size const size : {Size{1, 9}, Size{2, 2}, Size{40, 23}, Size{67, 3}}) {
        std::vector<float> source = random_image<float>(size.texels(), 9);
        Weights weights = usual_weights(2.0f);
        std::vector<float> const definition = expected(source, size, 2.0f, weights);
        for (int const threads : {1, 2, 3, 5}) {
            std::vector<int> writers(source.size());
            for (int thread = threads - 1; thread >= 0; --thread) {
                std::vector<float> share(source.size(), kNaN);
                BilateralFilter(source.data(), share.data(), size.height, size.width, 2.0f,
                                weights.spatial.data(), weights.range.data(), thread, threads);
                for (std::size_t i = 0; i < share.size(); ++i) {
                    if (!std::isnan(share[i])) {
                        ++writers[i];
                        EXPECT_EQ(share[i], definition[i]);
                    }
                }
            }
            EXPECT_EQ(writers, std::vector<int>(source.size(), 1)) << threads << " threads";
        }
    }
}

TEST(BilateralFilter, LeavesItsInputsAlone)
{
    Size const size = {9, 11};
    auto const source = random_image<float>(size.texels(), 10, Values::kHostile);
    auto const weights = usual_weights(2.0f);
    auto used_source = source;
    auto used_weights = weights;
    std::vector<float> result(source.size());
    BilateralFilter(used_source.data(), result.data(), size.height, size.width, 2.0f,
                    used_weights.spatial.data(), used_weights.range.data());
    EXPECT_SAME_BITS(source, used_source);
    EXPECT_SAME_BITS(weights.spatial, used_weights.spatial);
    EXPECT_SAME_BITS(weights.range, used_weights.range);
}

TEST(BilateralFilter, AConstantImageStaysWithinRounding)
{
    for (float const value : {0.0f, 0.1f, 0.7f, 1.0f}) {
        for (float const result :
             filtered(std::vector<float>(600, value), {20, 30}, 5.0f, usual_weights(5.0f))) {
            EXPECT_NEAR(result, value, value * 1e-5f);
        }
    }
}

TEST(BilateralFilter, SmoothsGrainAndKeepsAStep)
{
    Size const size = {32, 32};
    std::vector<float> source;
    std::vector<float> const grain = random_image<float>(size.texels(), 13);
    for (std::size_t i = 0; i < size.texels(); ++i) {
        source.push_back((i % 32 < 16 ? 0.1f : 0.8f) + 0.05f * grain[i]);
    }
    std::vector<float> const result = filtered(source, size, 4.0f, usual_weights(4.0f));
    for (std::size_t i = 0; i < size.texels(); ++i) {
        EXPECT_NEAR(result[i], i % 32 < 16 ? 0.125f : 0.825f, 0.015f);
    }
}

TEST(BilateralFilter, ARadiusOfOneSpansThreeTexelsAndAFractionRoundsUp)
{
    std::vector<float> source(49, 0.0f);
    source[24] = 0.1f;
    auto const changed = [&](float radius) {
        Weights const weights{std::vector<float>(spatial_entries(radius), 1.0f),
                              std::vector<float>(256, 1.0f)};
        int count = 0;
        for (float const value : filtered(source, {7, 7}, radius, weights)) {
            count += value > 0.0f ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(changed(0.5f), 9);
    EXPECT_EQ(changed(1.0f), 9);
    EXPECT_EQ(changed(1.01f), 25);
}

TEST(BilateralFilter, ATexelWithoutWeightKeepsItsValue)
{
    auto const source = random_image<float>(90, 14, Values::kHostile);
    for (float const weight : {0.0f, -1.0f, kNaN}) {
        Weights const weights{{1.0f, 1.0f}, std::vector<float>(256, weight)};
        EXPECT_SAME_BITS(source, filtered(source, {9, 10}, 1.0f, weights));
    }
}

TEST(BilateralFilter, ARadiusWithoutAWindowCopies)
{
    auto const source = random_image<float>(90, 15, Values::kHostile);
    std::vector<float3> colours = random_image<float3>(90, 16, Values::kHostile);
    for (float const radius : {-1.0f, -100.0f, kNaN, kInfinity, -kInfinity}) {
        EXPECT_SAME_BITS(source, filtered(source, {9, 10}, radius, Weights{}));
        std::vector<float3> result(90);
        BilateralFilter(colours.data(), result.data(), 9, 10, radius, nullptr, nullptr);
        EXPECT_SAME_BITS(colours, result);
    }
}

TEST(BilateralFilter, ARadiusOfZeroLooksAtTheTexelAlone)
{
    std::vector<float> const source = random_image<float>(90, 17);
    EXPECT_SAME_BITS(source, filtered(source, {9, 10}, 0.0f, usual_weights(0.0f)));
    EXPECT_SAME_BITS(source, filtered(source, {9, 10}, -0.5f, usual_weights(0.0f)));
}

TEST(BilateralFilter, NoSizeNoWork)
{
    for (Size const size : {Size{0, 5}, Size{5, 0}, Size{-1, 5}, Size{-2, -2}}) {
        BilateralFilter(static_cast<float*>(nullptr), nullptr, size.height, size.width, 1.0f, nullptr,
                        nullptr);
        BilateralFilter(static_cast<float3*>(nullptr), nullptr, size.height, size.width, 1.0f, nullptr,
                        nullptr);
        BilateralFilter(nullptr, nullptr, size.height, size.width, 1.0f, nullptr, nullptr, 0, 1);
    }
}

TEST(BilateralFilter, AThreadThatIsNoneOfThemHasNoShare)
{
    auto source = random_image<float>(90, 18);
    Weights weights = usual_weights(2.0f);
    for (int const thread : {-1, 3, 4, 64}) {
        std::vector<float> destination(90, -1.0f);
        BilateralFilter(source.data(), destination.data(), 9, 10, 2.0f, weights.spatial.data(),
                        weights.range.data(), thread, 3);
        EXPECT_EQ(destination, std::vector<float>(90, -1.0f)) << thread;
    }
}

} // namespace
