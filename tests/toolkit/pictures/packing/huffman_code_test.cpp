// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/huffman_code.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace umbrixlib::toolkit {
namespace {

using Lengths = std::vector<std::uint8_t>;
using Counts = std::vector<std::uint32_t>;

TEST(HuffmanCode, GivesRareSymbolsMoreBits)
{
    EXPECT_EQ(code_lengths(Counts{8, 4, 2, 1, 1}, 15), (Lengths{1, 2, 3, 4, 4}));
    EXPECT_EQ(code_lengths(Counts{1, 0, 1, 2}, 15), (Lengths{2, 0, 2, 1}));
}

TEST(HuffmanCode, GivesASingleSymbolOneBitAndNoneNothing)
{
    EXPECT_EQ(code_lengths(Counts{0, 7, 0}, 15), (Lengths{0, 1, 0}));
    EXPECT_EQ(code_lengths(Counts{0, 0}, 15), (Lengths{0, 0}));
}

/// Share of all codes that these take, in 2^-15.
std::uint32_t taken(Lengths const& lengths)
{
    std::uint32_t sum = 0;
    for (std::uint8_t const length : lengths) {
        sum += length > 0 ? 1U << (15U - length) : 0U;
    }
    return sum;
}

TEST(HuffmanCode, StaysWithinItsLimitAndLeavesNoCodeFree)
{
    Counts fibonacci{1, 1};
    while (fibonacci.size() < 40) {
        fibonacci.push_back(fibonacci.end()[-1] + fibonacci.end()[-2]);
    }
    for (unsigned const limit : {7U, 14U, 15U}) {
        Lengths const lengths = code_lengths(fibonacci, limit);
        EXPECT_LE(std::ranges::max(lengths), limit);
        EXPECT_EQ(taken(lengths), 1U << 15U);
        EXPECT_TRUE(is_prefix_code(lengths));
    }
}

// The example of RFC 1951, 3.2.2, read from the last bit.
TEST(HuffmanCode, HasTheCodesOfDeflate)
{
    EXPECT_EQ(codes_of(Lengths{3, 3, 3, 3, 3, 2, 4, 4}),
              (std::vector<std::uint16_t>{0b010, 0b110, 0b001, 0b101, 0b011, 0b00, 0b0111, 0b1111}));
}

TEST(HuffmanCode, OfTooManyShortCodesIsNone)
{
    EXPECT_TRUE(is_prefix_code(Lengths{1, 2, 2}));
    EXPECT_TRUE(is_prefix_code(Lengths{1, 0, 3}));
    EXPECT_FALSE(is_prefix_code(Lengths{1, 2, 2, 15}));
    EXPECT_FALSE(is_prefix_code(Lengths{1, 1, 1}));
}

TEST(HuffmanCode, OfRandomCountsIsCloseToTheirEntropy)
{
    std::mt19937 random(5);
    for (int round = 0; round < 50; ++round) {
        Counts counts(257);
        double total = 0.0;
        for (std::uint32_t& count : counts) {
            count = random() % 4 == 0 ? 0 : 1U << random() % 17U;
            total += count;
        }
        Lengths const lengths = code_lengths(counts, 15);
        double bits = 0.0;
        double entropy = 0.0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            EXPECT_EQ(lengths[i] == 0, counts[i] == 0);
            bits += static_cast<double>(counts[i]) * lengths[i];
            entropy += counts[i] == 0 ? 0.0 : counts[i] * std::log2(total / counts[i]);
        }
        EXPECT_GE(bits, entropy * 0.999999);
        EXPECT_LE(bits, entropy * 1.05);
    }
}

} // namespace
} // namespace umbrixlib::toolkit
