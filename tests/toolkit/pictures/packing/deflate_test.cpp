// SPDX-License-Identifier: MIT
/// Blocks of our own and of libdeflate's, with zlib as the judge.
#include "inflated.h"
#include "toolkit/pictures/formats/deflate/last_block.h"
#include "toolkit/pictures/formats/deflate/literal_block.h"
#include "toolkit/pictures/formats/deflate/match_deflater.h"

#include <gtest/gtest.h>
#include <random>
#include <utility>

namespace umbrixlib::test {
namespace {

using toolkit::byte_counts;
using toolkit::find_last_block;
using toolkit::LiteralBlock;
using toolkit::MatchDeflater;

/// Bytes of several kinds: equal, noise, bell-shaped, lines that repeat themselves, few of many.
std::vector<Bytes> samples()
{
    std::mt19937 random(3);
    auto const made = [](std::size_t size, auto byte) {
        Bytes bytes(size);
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<std::uint8_t>(byte(i));
        }
        return bytes;
    };
    auto const bell = [&](std::size_t) { return random() % 16 + random() % 16 + random() % 16 - 24; };
    return {
        {0},
        {7, 8, 9},
        made(100'000, [](std::size_t) { return 200; }),
        made(70'001, [&](std::size_t) { return random(); }),
        made(300'000, bell),
        made(250'000, [](std::size_t i) { return i % 1000 * (i % 1000) / 7; }),
        made(90'000, [&](std::size_t i) { return i < 45'000 ? 0U : random() % 3 * random() % 251; }),
        made(65'536, [&](std::size_t i) { return i < 256              ? i
                                                 : random() % 30 == 0 ? random()
                                                                      : 1; }),
    };
}

/// A stream of what was appended, ended by an empty block.
Bytes ended(Bytes pieces)
{
    pieces.insert(pieces.end(), {0b011, 0});
    return pieces;
}

TEST(LiteralBlock, GivesItsBytesBackInTheSizeThatItTells)
{
    for (Bytes const& bytes : samples()) {
        LiteralBlock const block(byte_counts(bytes));
        Bytes packed{1, 2, 3}; // what was there before stays
        block.append(bytes, packed);
        EXPECT_EQ(Bytes(packed.begin(), packed.begin() + 3), (Bytes{1, 2, 3}));
        packed.erase(packed.begin(), packed.begin() + 3);
        EXPECT_EQ(packed.size(), (block.size() + 3 + 7) / 8 + 4); // with the empty block behind it
        Inflated const read = inflated(ended(packed), -15);
        EXPECT_TRUE(read.ended);
        EXPECT_EQ(read.left, 0U);
        EXPECT_EQ(read.bytes, bytes);
    }
}

TEST(LiteralBlock, TakesCodesAsLongAsTheyMayBe)
{
    Bytes bytes;
    for (std::size_t byte = 0, count = 1, before = 1; byte < 26; ++byte) {
        bytes.insert(bytes.end(), count, static_cast<std::uint8_t>(byte));
        count += std::exchange(before, count);
    }
    Bytes packed;
    LiteralBlock(byte_counts(bytes)).append(bytes, packed);
    EXPECT_EQ(inflated(ended(packed), -15).bytes, bytes);
}

TEST(MatchDeflater, MakesPiecesThatJoin)
{
    for (int const level : {1, 3, 4, 6, 12}) {
        MatchDeflater deflater(level);
        Bytes all;
        Bytes packed;
        for (Bytes const& bytes : samples()) {
            ASSERT_TRUE(deflater.append(bytes, packed));
            LiteralBlock(byte_counts(bytes)).append(bytes, packed);
            all.insert(all.end(), bytes.begin(), bytes.end());
            all.insert(all.end(), bytes.begin(), bytes.end());
        }
        Inflated const read = inflated(ended(packed), -15);
        EXPECT_TRUE(read.ended) << level;
        EXPECT_EQ(read.left, 0U);
        EXPECT_EQ(read.bytes, all);
    }
}

TEST(LastBlock, IsWhereZlibFindsIt)
{
    for (int const level : {0, 1, 2, 4, 6, 9, 12}) {
        std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> const compressor(
            libdeflate_alloc_compressor(level), libdeflate_free_compressor);
        for (Bytes const& bytes : samples()) {
            Bytes packed(libdeflate_deflate_compress_bound(compressor.get(), bytes.size()));
            packed.resize(libdeflate_deflate_compress(compressor.get(), bytes.data(), bytes.size(),
                                                      packed.data(), packed.size()));
            Inflated const read = inflated(packed, -15);
            ASSERT_TRUE(read.ended);
            auto const last = find_last_block(packed);
            ASSERT_TRUE(last) << level << ' ' << bytes.size();
            EXPECT_EQ(last->begin, read.last_begin);
            EXPECT_EQ(last->end, read.last_end);
        }
    }
}

TEST(LastBlock, OfADamagedStreamIsNotThereOrInside)
{
    MatchDeflater deflater(6);
    Bytes whole;
    ASSERT_TRUE(deflater.append(samples()[6], whole));
    whole = ended(whole);
    EXPECT_TRUE(find_last_block(whole));
    EXPECT_FALSE(find_last_block({}));
    for (std::size_t size = 0; size < whole.size(); size += 1 + size / 50) {
        EXPECT_FALSE(find_last_block(std::span(whole).first(size)));
    }
    std::mt19937 random(9);
    for (int round = 0; round < 2000; ++round) {
        Bytes damaged = whole;
        for (int i = 0; i < 3; ++i) {
            damaged[random() % (round % 2 == 0 ? 200 : damaged.size())] = static_cast<std::uint8_t>(random());
        }
        auto const last = find_last_block(damaged);
        EXPECT_TRUE(!last || last->end <= 8 * damaged.size());
    }
}

} // namespace
} // namespace umbrixlib::test
