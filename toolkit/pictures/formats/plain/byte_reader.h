// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/source_file.h"

#include <bit>
#include <cstdint>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

enum class ByteOrder { kLittle, kBig };

/// Numbers out of a whole file, one behind the other. What would lie behind its end is damage.
class ByteReader {
public:
    explicit ByteReader(SourceFile& source, ByteOrder order = ByteOrder::kLittle)
        : source_(source), bytes_(source.content()), order_(order)
    {
    }

    SourceFile const& source() const { return source_; }
    std::size_t at() const { return at_; }
    std::size_t left() const { return bytes_.size() - at_; }

    void go_to(std::size_t at)
    {
        at_ = 0;
        skip(at);
    }

    void skip(std::size_t bytes) { take(bytes); }

    /// The next @p bytes of the file, which stay where they are.
    std::span<std::uint8_t const> take(std::size_t bytes)
    {
        if (bytes > left()) {
            source_.refuse_as_damaged();
        }
        at_ += bytes;
        return bytes_.subspan(at_ - bytes, bytes);
    }

    std::uint8_t u8()
    {
        if (left() == 0) {
            source_.refuse_as_damaged();
        }
        return bytes_[at_++];
    }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }

private:
    std::uint64_t number(std::size_t size)
    {
        std::span<std::uint8_t const> const bytes = take(size);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8U | bytes[order_ == ByteOrder::kBig ? i : size - 1 - i];
        }
        return value;
    }

    SourceFile& source_;
    std::span<std::uint8_t const> bytes_;
    ByteOrder order_;
    std::size_t at_ = 0;
};

} // namespace umbrixlib::toolkit
