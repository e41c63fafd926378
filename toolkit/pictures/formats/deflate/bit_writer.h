// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace umbrixlib::toolkit {

/// Appends bits to bytes, the low bit of a byte first, as Deflate has them. What it appended is there after
/// align() only.
class BitWriter {
public:
    /// @param most_bytes At least as many as are written.
    BitWriter(std::vector<std::uint8_t>& to, std::size_t most_bytes) : to_(to), at_(to.size())
    {
        to_.resize(at_ + most_bytes + sizeof held_);
    }

    /// Holds back @p count bits. At most 56 without flush().
    void hold(std::uint64_t bits, unsigned count)
    {
        held_ |= bits << count_;
        count_ += count;
    }

    /// Writes the whole bytes of what was held back.
    void flush()
    {
        std::uint64_t bytes = held_;
        if constexpr (std::endian::native == std::endian::big) {
            bytes = __builtin_bswap64(bytes);
        }
        std::memcpy(&to_[at_], &bytes, sizeof bytes);
        at_ += count_ / 8;
        held_ >>= count_ / 8 * 8;
        count_ %= 8;
    }

    void put(std::uint64_t bits, unsigned count)
    {
        hold(bits, count);
        flush();
    }

    /// Ends the last byte with zeros.
    void align()
    {
        count_ = (count_ + 7) / 8 * 8;
        flush();
        to_.resize(at_);
    }

private:
    std::vector<std::uint8_t>& to_;
    std::size_t at_;
    std::uint64_t held_ = 0;
    unsigned count_ = 0;
};

} // namespace umbrixlib::toolkit
