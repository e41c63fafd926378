// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/formats/plain/byte_reader.h"
#include "toolkit/pictures/picture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace umbrixlib::toolkit {

/// The samples of row @p y of a picture, counted from the top, as files do.
template <typename Sample>
std::span<Sample> row_from_top(Picture& picture, int y)
{
    auto const samples = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.channels);
    return picture.samples<Sample>().subspan(static_cast<std::size_t>(picture.height - 1 - y) * samples,
                                             samples);
}

/// @p value of 0 to @p most, spread over all that a sample of whole numbers holds.
template <typename Sample>
Sample spread(std::uint32_t value, std::uint32_t most)
{
    constexpr std::uint32_t kFull = static_cast<Sample>(-1);
    return static_cast<Sample>(most == kFull ? value : (value * kFull + most / 2) / most);
}

/// Numbers of 1, 2, 4 or 8 bits, the highest bits of a byte first, as bytes. As many as @p numbers takes;
/// @p packed has them.
inline void unpack_bits(std::span<std::uint8_t const> packed, std::size_t bits,
                        std::span<std::uint8_t> numbers)
{
    std::size_t const in_a_byte = 8 / bits;
    unsigned const most = (1U << bits) - 1;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        std::size_t const shift = 8 - bits - i % in_a_byte * bits;
        numbers[i] = static_cast<std::uint8_t>(packed[i / in_a_byte] >> shift & most);
    }
}

using Colour = std::array<std::uint8_t, 3>; ///< Red, green, blue.

/// A row of numbers as the colours that a palette has for them; black for those that it does not have.
inline void put_colours(std::span<std::uint8_t const> numbers, std::vector<Colour> const& palette,
                        std::span<std::uint8_t> row)
{
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Colour const colour = numbers[i] < palette.size() ? palette[numbers[i]] : Colour{};
        std::copy(colour.begin(), colour.end(), row.begin() + static_cast<std::ptrdiff_t>(3 * i));
    }
}

/// Samples of a file, in its order of bytes, into a row of the picture.
template <typename Sample>
void put_samples(std::span<std::uint8_t const> bytes, ByteOrder order, std::span<Sample> row)
{
    auto const to = std::as_writable_bytes(row);
    if ((order == ByteOrder::kLittle) == (std::endian::native == std::endian::little)) {
        std::memcpy(to.data(), bytes.data(), to.size());
        return;
    }
    for (std::size_t i = 0; i < to.size(); i += sizeof(Sample)) {
        for (std::size_t k = 0; k < sizeof(Sample); ++k) {
            to[i + k] = std::byte{bytes[i + sizeof(Sample) - 1 - k]};
        }
    }
}

} // namespace umbrixlib::toolkit
