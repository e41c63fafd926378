// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/deflate/last_block.h"

#include "toolkit/pictures/formats/deflate/huffman_code.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kEnd = 256;

/// What the next bits stand for, and how many they are, with those of the number that belongs to them.
struct Step {
    enum Kind : std::uint8_t { kUnknown, kLiteral, kMatch, kEndOfBlock };
    Kind kind;
    std::uint8_t bits;
};

/// All codes of a block, found by the next bits: as many as the longest code has.
class Steps {
public:
    /// @param step What a symbol is, with the bits that follow its code.
    template <typename StepOf>
    bool set(std::span<std::uint8_t const> lengths, StepOf step)
    {
        if (!is_prefix_code(lengths)) {
            return false;
        }
        std::uint8_t const longest = std::max<std::uint8_t>(std::ranges::max(lengths), 1);
        std::vector<std::uint16_t> const codes = codes_of(lengths);
        table_.assign(std::size_t{1} << longest, {Step::kUnknown, 0});
        for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
            if (lengths[symbol] > 0) {
                Step found = step(symbol);
                found.bits = static_cast<std::uint8_t>(found.bits + lengths[symbol]);
                for (std::size_t i = codes[symbol]; i < table_.size();
                     i += std::size_t{1} << lengths[symbol]) {
                    table_[i] = found;
                }
            }
        }
        return true;
    }

    Step operator[](std::uint64_t bits) const { return table_[bits & (table_.size() - 1)]; }

private:
    std::vector<Step> table_;
};

Step literal_or_length(std::size_t symbol)
{
    if (symbol < kEnd) {
        return {Step::kLiteral, 0};
    }
    if (symbol == kEnd) {
        return {Step::kEndOfBlock, 0};
    }
    std::size_t const length = symbol - kEnd - 1; // 0 to 28
    bool const has_extra = length >= 8 && length < 28;
    return {length > 28 ? Step::kUnknown : Step::kMatch,
            static_cast<std::uint8_t>(has_extra ? length / 4 - 1 : 0)};
}

Step distance(std::size_t symbol)
{
    return {symbol < 30 ? Step::kMatch : Step::kUnknown,
            static_cast<std::uint8_t>(symbol < 4 ? 0 : symbol / 2 - 1)};
}

/// RFC 1951.
class Walk {
public:
    explicit Walk(std::span<std::uint8_t const> stream) : stream_(stream) {}

    std::optional<LastBlock> run()
    {
        while (at_ + 3 <= end()) {
            std::uint64_t const begin = at_;
            bool const is_last = take(1) == 1;
            if (!pass_block(take(2)) || at_ > end()) {
                return std::nullopt;
            }
            if (is_last) {
                return LastBlock{begin, at_};
            }
        }
        return std::nullopt;
    }

private:
    std::uint64_t end() const { return 8 * std::uint64_t{stream_.size()}; }

    /// At least 57 of the next bits; behind the end they are 0.
    std::uint64_t next() const
    {
        auto const byte = static_cast<std::size_t>(at_ / 8);
        std::uint64_t bits = 0;
        if (byte + sizeof bits <= stream_.size()) {
            std::memcpy(&bits, &stream_[byte], sizeof bits);
            if constexpr (std::endian::native == std::endian::big) {
                bits = __builtin_bswap64(bits);
            }
        } else {
            for (std::size_t i = byte; i < stream_.size(); ++i) {
                bits |= std::uint64_t{stream_[i]} << 8 * (i - byte);
            }
        }
        return bits >> at_ % 8;
    }

    std::size_t take(unsigned count)
    {
        std::uint64_t const bits = next() & ((std::uint64_t{1} << count) - 1);
        at_ += count;
        return static_cast<std::size_t>(bits);
    }

    bool pass_block(std::size_t type)
    {
        switch (type) {
        case 0:
            pass_stored();
            return true;
        case 1:
            return set_fixed_codes() && pass_symbols();
        case 2:
            return read_codes() && pass_symbols();
        default:
            return false;
        }
    }

    void pass_stored()
    {
        at_ = (at_ + 7) / 8 * 8;
        std::size_t const length = take(16);
        at_ += 16 + 8 * length;
    }

    bool set_fixed_codes()
    {
        std::array<std::uint8_t, 288> lengths{};
        std::fill_n(lengths.begin(), 144, std::uint8_t{8});
        std::fill_n(lengths.begin() + 144, 112, std::uint8_t{9});
        std::fill_n(lengths.begin() + 256, 24, std::uint8_t{7});
        std::fill_n(lengths.begin() + 280, 8, std::uint8_t{8});
        std::array<std::uint8_t, 32> distances{};
        distances.fill(5);
        return literals_.set(lengths, literal_or_length) && distances_.set(distances, distance);
    }

    bool read_codes()
    {
        constexpr std::uint8_t kOrder[] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
        std::size_t const literals = take(5) + 257;
        std::size_t const distances = take(5) + 1;
        std::size_t const written = take(4) + 4;
        std::array<std::uint8_t, std::size(kOrder)> bits{};
        for (std::size_t i = 0; i < written; ++i) {
            bits[kOrder[i]] = static_cast<std::uint8_t>(take(3));
        }
        std::vector<std::uint8_t> lengths;
        return literals <= 286 && read_lengths(bits, literals + distances, lengths) &&
               literals_.set(std::span(lengths).first(literals), literal_or_length) &&
               distances_.set(std::span(lengths).subspan(literals), distance);
    }

    bool read_lengths(std::span<std::uint8_t const> bits, std::size_t count,
                      std::vector<std::uint8_t>& lengths)
    {
        if (!is_prefix_code(bits)) {
            return false;
        }
        std::vector<std::uint16_t> const codes = codes_of(bits);
        while (lengths.size() < count) {
            std::size_t symbol = 0;
            while (symbol < bits.size() &&
                   (bits[symbol] == 0 || (next() & ((1U << bits[symbol]) - 1)) != codes[symbol])) {
                ++symbol;
            }
            if (symbol == bits.size() || (symbol == 16 && lengths.empty())) {
                return false;
            }
            at_ += bits[symbol];
            std::size_t const times = symbol < 16    ? 1
                                      : symbol == 16 ? 3 + take(2)
                                      : symbol == 17 ? 3 + take(3)
                                                     : 11 + take(7);
            lengths.insert(lengths.end(), times,
                           symbol < 16    ? static_cast<std::uint8_t>(symbol)
                           : symbol == 16 ? lengths.back()
                                          : std::uint8_t{0});
        }
        return lengths.size() == count;
    }

    /// To the end of the block.
    bool pass_symbols()
    {
        constexpr unsigned kLeft = 9; // a match takes up to 48 of 57 bits
        while (at_ <= end()) {
            std::uint64_t const bits = next();
            unsigned used = 0;
            Step step{};
            do {
                step = literals_[bits >> used];
                used += step.bits;
            } while (step.kind == Step::kLiteral && used <= kLeft);
            at_ += used;
            if (step.kind == Step::kEndOfBlock) {
                return true;
            }
            if (step.kind == Step::kMatch) {
                step = distances_[bits >> used];
                at_ += step.bits;
            }
            if (step.kind == Step::kUnknown) {
                return false;
            }
        }
        return false;
    }

    std::span<std::uint8_t const> stream_;
    std::uint64_t at_ = 0;
    Steps literals_;
    Steps distances_;
};

} // namespace

std::optional<LastBlock> find_last_block(std::span<std::uint8_t const> stream)
{
    return Walk(stream).run();
}

} // namespace umbrixlib::toolkit
