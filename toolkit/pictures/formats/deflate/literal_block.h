// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// How often each byte is there.
using ByteCounts = std::array<std::uint32_t, 256>;

ByteCounts byte_counts(std::span<std::uint8_t const> bytes);

/// A Deflate block of bytes with a Huffman code of their own and no matches. Filtered rows of a smooth
/// picture hold few matches, and none that is shorter than its bytes: this block is made many times as fast,
/// and is no larger.
class LiteralBlock {
public:
    explicit LiteralBlock(ByteCounts const& counts);

    /// In bits.
    std::uint64_t size() const { return size_; }

    /// Appends a block of @p bytes, whose counts were given, that is not the last one of its stream, and an
    /// empty one of stored bytes, with which it ends at the end of a byte.
    void append(std::span<std::uint8_t const> bytes, std::vector<std::uint8_t>& to) const;

private:
    struct Bits {
        std::uint16_t bits;
        std::uint8_t count;
    };

    /// The lengths of the code, packed as Deflate has them, which describe it in the block.
    void pack_lengths(std::vector<std::uint8_t> const& lengths);

    std::vector<Bits> header_;
    std::vector<Bits> codes_; ///< Of the bytes, and of the end.
    std::uint64_t size_ = 0;
};

} // namespace umbrixlib::toolkit
