// SPDX-License-Identifier: MIT
/// Colours in blocks of BC7.
#include "toolkit/textures/colour_blocks.h"

#include "toolkit/textures/mode_six.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// Square root of the mean of the squares over all channels.
double error_of(ColourBlock const& block, CodedColours const& coded)
{
    ModeSixTexels const texels = read_mode_six(coded);
    double sum = 0.0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        for (std::size_t c = 0; c < 4; ++c) {
            double const off = static_cast<double>(block[i][c]) - texels[i][c];
            sum += off * off;
        }
    }
    return std::sqrt(sum / 64.0);
}

ColourBlock flat(std::array<float, 4> const& colour)
{
    ColourBlock block;
    block.fill(colour);
    return block;
}

TEST(ColourBlocks, KeepsBlocksOfOneColour)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<int> any(1, 254);
    for (int i = 0; i < 500; ++i) {
        auto const channel = [&] { return static_cast<float>(any(random)); };
        ColourBlock const opaque = flat({channel(), channel(), channel(), 255.0f});
        EXPECT_EQ(error_of(opaque, encode_colours(opaque)), 0.0);
        ColourBlock const any_colour = flat({channel(), channel(), channel(), channel()});
        EXPECT_EQ(error_of(any_colour, encode_colours(any_colour)), 0.0);
    }
    for (float const end : {0.0f, 255.0f}) {
        EXPECT_EQ(error_of(flat({end, end, end, end}), encode_colours(flat({end, end, end, end}))), 0.0);
    }
}

TEST(ColourBlocks, KeepsWhatIsOpaque)
{
    std::mt19937 random(6);
    std::uniform_real_distribution<float> any(0.0f, 255.0f);
    for (int i = 0; i < 200; ++i) {
        ColourBlock block{};
        for (auto& texel : block) {
            texel = {any(random), any(random), any(random), 255.0f};
        }
        for (auto const& texel : read_mode_six(encode_colours(block))) {
            ASSERT_EQ(texel[3], 255);
        }
    }
}

TEST(ColourBlocks, FollowsALineInAnyDirection)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> any(0.0f, 255.0f);
    for (int i = 0; i < 300; ++i) {
        std::array<float, 4> const from{any(random), any(random), any(random), any(random)};
        std::array<float, 4> const to{any(random), any(random), any(random), any(random)};
        ColourBlock block{};
        for (std::size_t k = 0; k < block.size(); ++k) {
            float const place = static_cast<float>(k * 7 % 16) / 15.0f;
            for (std::size_t c = 0; c < 4; ++c) {
                block[k][c] = from[c] + place * (to[c] - from[c]);
            }
        }
        EXPECT_LT(error_of(block, encode_colours(block)), 1.0);
    }
}

TEST(ColourBlocks, IsNoWorseThanTheEndsOfABox)
{
    // Colours anywhere: the diagonal of their box, with the nearest of 16 steps each, is the plain way.
    std::mt19937 random(8);
    std::uniform_real_distribution<float> any(0.0f, 1.0f);
    double made = 0.0;
    double plain = 0.0;
    for (int i = 0; i < 200; ++i) {
        float const base = 100.0f * any(random);
        float const size = 150.0f * any(random);
        ColourBlock block{};
        std::array<float, 4> low{255.0f, 255.0f, 255.0f, 255.0f};
        std::array<float, 4> high{};
        for (auto& texel : block) {
            for (std::size_t c = 0; c < 4; ++c) {
                texel[c] = base + size * any(random);
                low[c] = std::min(low[c], texel[c]);
                high[c] = std::max(high[c], texel[c]);
            }
        }
        double sum = 0.0;
        for (auto const& texel : block) {
            double least = 1e9;
            for (int step = 0; step < 16; ++step) {
                double error = 0.0;
                for (std::size_t c = 0; c < 4; ++c) {
                    double const off = static_cast<double>(
                        texel[c] - low[c] - (high[c] - low[c]) * static_cast<float>(step) / 15.0f);
                    error += off * off;
                }
                least = std::min(least, error);
            }
            sum += least;
        }
        made += error_of(block, encode_colours(block));
        plain += std::sqrt(sum / 64.0);
    }
    EXPECT_LT(made, 0.95 * plain);
}

} // namespace
} // namespace umbrixlib::test
