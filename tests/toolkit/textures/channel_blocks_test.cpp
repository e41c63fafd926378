// SPDX-License-Identifier: MIT
/// One channel in blocks: exact where it can be, near the best of all ends elsewhere, the same everywhere.
#include "toolkit/textures/channel_blocks.h"

#include "every_target.h"
#include "toolkit/pictures/formats/textures/block_texels.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr std::size_t kCount = ChannelBlocks::kCount;
constexpr std::size_t kTexels = ChannelBlocks::kTexels;

ChannelBlocks blocks_of(std::function<double(std::size_t block, std::size_t texel)> const& value_at)
{
    ChannelBlocks blocks{};
    for (std::size_t block = 0; block < kCount; ++block) {
        for (std::size_t i = 0; i < kTexels; ++i) {
            blocks.texels[i][block] = static_cast<float>(value_at(block, i));
        }
    }
    return blocks;
}

/// The values of the form with two bytes, not rounded.
std::array<double, 8> ladder(int first, int second)
{
    std::array<double, 8> values{static_cast<double>(first), static_cast<double>(second)};
    int const parts = first > second ? 7 : 5;
    for (int i = 1; i < parts; ++i) {
        values[static_cast<std::size_t>(i) + 1] =
            static_cast<double>(first * (parts - i) + second * i) / parts;
    }
    if (parts == 5) {
        values[6] = 0.0;
        values[7] = 255.0;
    }
    return values;
}

double error_of(std::array<double, kTexels> const& texels, std::array<double, 8> const& values)
{
    double sum = 0.0;
    for (double const texel : texels) {
        double least = 1e9;
        for (double const value : values) {
            least = std::min(least, (texel - value) * (texel - value));
        }
        sum += least;
    }
    return sum;
}

std::array<double, kTexels> texels_of(ChannelBlocks const& blocks, std::size_t block)
{
    std::array<double, kTexels> texels{};
    for (std::size_t i = 0; i < kTexels; ++i) {
        texels[i] = static_cast<double>(blocks.texels[i][block]);
    }
    return texels;
}

/// Of what was packed, with the choices that it has.
double error_of(ChannelBlocks const& blocks, CodedChannels const& coded, std::size_t block)
{
    auto const& bytes = coded[block];
    auto const values = ladder(bytes[0], bytes[1]);
    std::uint64_t choices = 0;
    for (std::size_t i = 8; i-- > 2;) {
        choices = choices << 8U | bytes[i];
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < kTexels; ++i, choices >>= 3U) {
        double const off = static_cast<double>(blocks.texels[i][block]) - values[choices & 7U];
        sum += off * off;
    }
    return sum;
}

/// Blocks as pictures have them: a slope with noise, some that reach 0 and 255.
ChannelBlocks some_blocks(unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(0.0, 1.0);
    std::array<std::array<double, 4>, kCount> shapes{};
    for (auto& shape : shapes) {
        double const size = 120.0 * any(random) * any(random);
        shape = {255.0 * any(random), size * (any(random) - 0.5), size * (any(random) - 0.5), size / 4.0};
    }
    return blocks_of([&](std::size_t block, std::size_t i) {
        auto const& [middle, across, down, noise] = shapes[block];
        double const x = static_cast<double>(i % 4) - 1.5;
        double const y = static_cast<double>(i / 4) - 1.5;
        return std::clamp(middle + across * x + down * y + noise * (any(random) - 0.5), 0.0, 255.0);
    });
}

TEST(ChannelBlocks, KeepsFlatBlocksOfEachByte)
{
    for (int first = 0; first < 256; first += static_cast<int>(kCount)) {
        CodedChannels const coded = encode_channels(
            blocks_of([&](std::size_t block, std::size_t) { return first + static_cast<int>(block); }));
        for (std::size_t block = 0; block < kCount; ++block) {
            for (std::uint8_t const texel : channel_block(coded[block])) {
                ASSERT_EQ(texel, first + static_cast<int>(block));
            }
        }
    }
}

TEST(ChannelBlocks, KeepsTwoBytesAndSixBesideTheExtremes)
{
    ChannelBlocks const two =
        blocks_of([](std::size_t block, std::size_t i) { return i % 3 == 0 ? 10 + block : 200 - block; });
    ChannelBlocks const six = blocks_of([](std::size_t block, std::size_t i) -> double {
        if (i < 4) {
            return i < 2 ? 0.0 : 255.0;
        }
        return static_cast<double>(100 + block + 5 * (i % 6));
    });
    for (ChannelBlocks const& blocks : {two, six}) {
        CodedChannels const coded = encode_channels(blocks);
        for (std::size_t block = 0; block < kCount; ++block) {
            auto const texels = channel_block(coded[block]);
            for (std::size_t i = 0; i < kTexels; ++i) {
                ASSERT_EQ(static_cast<float>(texels[i]), blocks.texels[i][block]) << block << ' ' << i;
            }
        }
    }
}

TEST(ChannelBlocks, TakesValuesBetweenBytes)
{
    // A seventh of the way from 90 to 91 is a value, too.
    CodedChannels const coded = encode_channels(blocks_of(
        [](std::size_t block, std::size_t i) { return 90.0 + static_cast<double>((block + i) % 8) / 7.0; }));
    for (std::size_t block = 0; block < kCount; ++block) {
        EXPECT_EQ(coded[block][0], 91);
        EXPECT_EQ(coded[block][1], 90);
    }
}

TEST(ChannelBlocks, ComesNearToTheBestOfAllEnds)
{
    double made = 0.0;
    double best = 0.0;
    for (unsigned seed = 0; seed < 4; ++seed) {
        ChannelBlocks const blocks = some_blocks(seed);
        CodedChannels const coded = encode_channels(blocks);
        for (std::size_t block = 0; block < kCount; ++block) {
            auto const texels = texels_of(blocks, block);
            double least = 1e9;
            for (int first = 0; first < 256; ++first) {
                for (int second = 0; second < 256; ++second) {
                    least = std::min(least, error_of(texels, ladder(first, second)));
                }
            }
            double const error = error_of(blocks, coded, block);
            EXPECT_GE(error, least - 1e-2);
            made += error;
            best += least;
        }
    }
    EXPECT_LT(made, 1.1 * best) << best;
}

TEST(ChannelBlocks, ChoosesTheNearestValues)
{
    ChannelBlocks const blocks = some_blocks(9);
    CodedChannels const coded = encode_channels(blocks);
    for (std::size_t block = 0; block < kCount; ++block) {
        double const least = error_of(texels_of(blocks, block), ladder(coded[block][0], coded[block][1]));
        EXPECT_NEAR(error_of(blocks, coded, block), least, 1e-2 + 1e-4 * least);
    }
}

TEST(ChannelBlocks, AreTheSameWithEveryInstructionSet)
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        ChannelBlocks const blocks = some_blocks(seed);
        CodedChannels const expected = encode_channels(blocks);
        for_every_target([&](char const* name) { ASSERT_EQ(encode_channels(blocks), expected) << name; });
    }
}

} // namespace
} // namespace umbrixlib::test
