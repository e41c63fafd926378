// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/literal_block.h"

#include "toolkit/pictures/formats/deflate/bit_writer.h"
#include "toolkit/pictures/formats/deflate/huffman_code.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kEnd = 256;         ///< The symbol that ends a block.
constexpr unsigned kMostBits = 14;        ///< Of a code: four fit into what a BitWriter holds back.
constexpr unsigned kMostBitsOfLength = 7; ///< Of a code for lengths, as Deflate has it.
constexpr std::size_t kRepeatShort = 17;  ///< 3 to 10 lengths of 0.
constexpr std::size_t kRepeatLong = 18;   ///< 11 to 138 of them.

/// The order in which the lengths of the code for lengths are written.
constexpr std::uint8_t kOrder[] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};

/// A symbol of the code for lengths, with the number that follows it.
struct LengthSymbol {
    std::size_t symbol;
    std::uint16_t extra;
    std::uint8_t extra_bits;
};

/// Lengths one by one, but zeros in runs.
std::vector<LengthSymbol> length_symbols(std::vector<std::uint8_t> const& lengths)
{
    std::vector<LengthSymbol> symbols;
    for (std::size_t i = 0; i < lengths.size();) {
        std::size_t run = 0;
        while (i + run < lengths.size() && lengths[i + run] == 0 && run < 138) {
            ++run;
        }
        if (run < 3) {
            symbols.push_back({lengths[i], 0, 0});
            ++i;
            continue;
        }
        bool const is_long = run > 10;
        symbols.push_back({is_long ? kRepeatLong : kRepeatShort,
                           static_cast<std::uint16_t>(run - (is_long ? 11 : 3)),
                           static_cast<std::uint8_t>(is_long ? 7 : 3)});
        i += run;
    }
    return symbols;
}

} // namespace

ByteCounts byte_counts(std::span<std::uint8_t const> bytes)
{
    // A byte that comes again at once would wait for its count to be stored.
    std::array<ByteCounts, 4> counts{};
    std::size_t i = 0;
    for (; i + 4 <= bytes.size(); i += 4) {
        ++counts[0][bytes[i]];
        ++counts[1][bytes[i + 1]];
        ++counts[2][bytes[i + 2]];
        ++counts[3][bytes[i + 3]];
    }
    for (; i < bytes.size(); ++i) {
        ++counts[0][bytes[i]];
    }
    for (std::size_t byte = 0; byte < counts[0].size(); ++byte) {
        counts[0][byte] += counts[1][byte] + counts[2][byte] + counts[3][byte];
    }
    return counts[0];
}

LiteralBlock::LiteralBlock(ByteCounts const& counts)
{
    std::vector<std::uint32_t> all(counts.begin(), counts.end());
    all.push_back(1); // the end
    std::vector<std::uint8_t> const lengths = code_lengths(all, kMostBits);
    std::vector<std::uint16_t> const codes = codes_of(lengths);
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        codes_.push_back({codes[i], lengths[i]});
        size_ += std::uint64_t{all[i]} * lengths[i];
    }
    pack_lengths(lengths);
    for (Bits const& bits : header_) {
        size_ += bits.count;
    }
}

void LiteralBlock::pack_lengths(std::vector<std::uint8_t> const& lengths)
{
    std::vector<std::uint8_t> with_distances = lengths;
    with_distances.insert(with_distances.end(), {1, 1}); // two codes, none used: no reader minds
    std::vector<LengthSymbol> const symbols = length_symbols(with_distances);
    std::array<std::uint32_t, std::size(kOrder)> counts{};
    for (LengthSymbol const& each : symbols) {
        ++counts[each.symbol];
    }
    std::vector<std::uint8_t> const bits = code_lengths(counts, kMostBitsOfLength);
    std::vector<std::uint16_t> const codes = codes_of(bits);
    std::size_t written = std::size(kOrder);
    while (written > 4 && bits[kOrder[written - 1]] == 0) {
        --written;
    }
    header_ = {{0b100, 3}, // not the last block, with codes of its own
               {static_cast<std::uint16_t>(lengths.size() - 257), 5},
               {2 - 1, 5},
               {static_cast<std::uint16_t>(written - 4), 4}};
    for (std::size_t i = 0; i < written; ++i) {
        header_.push_back({bits[kOrder[i]], 3});
    }
    for (LengthSymbol const& each : symbols) {
        header_.push_back({codes[each.symbol], bits[each.symbol]});
        header_.push_back({each.extra, each.extra_bits});
    }
}

void LiteralBlock::append(std::span<std::uint8_t const> bytes, std::vector<std::uint8_t>& to) const
{
    constexpr std::size_t kStored = 6; // at most, of the empty block
    BitWriter writer(to, static_cast<std::size_t>(size_ / 8) + 1 + kStored);
    for (Bits const& bits : header_) {
        writer.put(bits.bits, bits.count);
    }
    auto const hold = [&](std::size_t symbol) { writer.hold(codes_[symbol].bits, codes_[symbol].count); };
    std::size_t i = 0;
    for (; i + 4 <= bytes.size(); i += 4) {
        hold(bytes[i]);
        hold(bytes[i + 1]);
        hold(bytes[i + 2]);
        hold(bytes[i + 3]);
        writer.flush();
    }
    for (; i < bytes.size(); ++i) {
        hold(bytes[i]);
        writer.flush();
    }
    hold(kEnd);
    writer.hold(0b000, 3);
    writer.align();
    to.insert(to.end(), {0, 0, 0xff, 0xff});
}

} // namespace umbrixlib::toolkit
