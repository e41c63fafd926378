// SPDX-License-Identifier: MIT
#include "toolkit/pictures/devil/dds_file.h"

#include "toolkit/base/failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kHeaderSize = 128;
constexpr std::uint32_t kHasDataSize = 0x80000;
constexpr std::uint32_t kIsCompressed = 0x4;

using Header = std::array<char, kHeaderSize>;

std::uint32_t number_at(Header const& header, std::size_t offset)
{
    std::uint32_t value = 0;
    for (std::size_t i = 4; i-- > 0;) {
        value = value << 8 | static_cast<std::uint8_t>(header[offset + i]);
    }
    return value;
}

std::string_view word_at(Header const& header, std::size_t offset)
{
    return {header.data() + offset, 4};
}

/// Bytes of a block of 4 x 4 texels; all other compressions have twice as many.
double block_size(std::string_view compression)
{
    return compression == "DXT1" || compression == "ATI1" ? 8.0 : 16.0;
}

} // namespace

void refuse_dds_with_too_little_data(std::filesystem::path const& file, std::string const& subject)
{
    Header header{};
    std::ifstream(file, std::ios::binary).read(header.data(), kHeaderSize);
    std::uint32_t const given = number_at(header, 20);
    if (word_at(header, 0) != "DDS " || (number_at(header, 80) & kIsCompressed) == 0 ||
        (number_at(header, 8) & kHasDataSize) == 0 || given == 0) {
        return; // DevIL then works the size out
    }
    auto const blocks = [&](std::size_t offset) { return (number_at(header, offset) + 3.0) / 4.0; };
    double const depth = std::max(number_at(header, 24), 1U);
    double const needed =
        std::floor(blocks(12)) * std::floor(blocks(16)) * depth * block_size(word_at(header, 84));
    if (given < needed) {
        throw Failure(Fault::kDamagedPicture, subject,
                      "it is damaged: its header promises less data than its size needs");
    }
}

} // namespace umbrixlib::toolkit
