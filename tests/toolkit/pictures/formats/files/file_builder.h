// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Files of a test, made number by number.

#include "decoding.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/byte_reader.h"

#include <bit>
#include <string_view>

namespace umbrixlib::test {

using toolkit::ByteOrder;

class FileBuilder {
public:
    explicit FileBuilder(ByteOrder order = ByteOrder::kLittle) : order_(order) {}

    FileBuilder& u8(Bytes const& numbers)
    {
        bytes_.insert(bytes_.end(), numbers.begin(), numbers.end());
        return *this;
    }
    FileBuilder& u16(std::vector<unsigned> const& numbers) { return put(numbers, 2); }
    FileBuilder& u32(std::vector<unsigned> const& numbers) { return put(numbers, 4); }
    FileBuilder& i32(int number) { return u32({static_cast<unsigned>(number)}); }
    FileBuilder& f32(std::vector<float> const& numbers)
    {
        for (float const number : numbers) {
            u32({std::bit_cast<std::uint32_t>(number)});
        }
        return *this;
    }
    FileBuilder& text(std::string_view text)
    {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        return *this;
    }
    FileBuilder& zeros(std::size_t count) { return u8(Bytes(count)); }
    /// Zeros, until the file has @p size bytes.
    FileBuilder& up_to(std::size_t size)
    {
        bytes_.resize(size);
        return *this;
    }

    operator Bytes const&() const { return bytes_; }

private:
    FileBuilder& put(std::vector<unsigned> const& numbers, unsigned size)
    {
        for (unsigned const number : numbers) {
            for (unsigned i = 0; i < size; ++i) {
                unsigned const shift = 8 * (order_ == ByteOrder::kBig ? size - 1 - i : i);
                bytes_.push_back(static_cast<std::uint8_t>(number >> shift));
            }
        }
        return *this;
    }

    ByteOrder order_;
    Bytes bytes_;
};

/// What a decoder makes of a file; empty if it refuses it.
inline toolkit::TexelBytes outcome(toolkit::Decoder const& decoder, std::filesystem::path const& file)
{
    try {
        toolkit::SourceFile source(file, "input", kMostTexels);
        return decoder.takes(source) ? decoder.decode(source).picture.bytes : toolkit::TexelBytes{};
    } catch (Failure const&) {
        return {};
    }
}

/// Neither a piece of @p file nor one with another byte does harm, and each has one outcome.
inline void expect_no_harm(toolkit::Decoder const& decoder, Bytes const& file,
                           std::filesystem::path const& path)
{
    auto const look = [&](Bytes const& bytes) {
        write_file(path, bytes);
        toolkit::TexelBytes const first = outcome(decoder, path);
        EXPECT_EQ(outcome(decoder, path), first);
    };
    std::size_t const step = file.size() / 60 + 1;
    for (std::size_t size = 0; size < file.size(); size += step) {
        look(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
    }
    for (std::size_t at = 0; at < file.size(); at += step) {
        for (unsigned const change : {0xffU, 0x01U}) {
            Bytes other = file;
            other[at] = static_cast<std::uint8_t>(other[at] ^ change);
            look(other);
        }
    }
}

} // namespace umbrixlib::test
