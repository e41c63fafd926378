// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/png/png_frame.h"

#include <libdeflate.h>
#include <span>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr std::string_view kRows = "IDAT";

/// The bytes of a number in the order of the file.
std::array<std::uint8_t, 4> bytes_of(std::size_t number)
{
    return {static_cast<std::uint8_t>(number >> 24U), static_cast<std::uint8_t>(number >> 16U),
            static_cast<std::uint8_t>(number >> 8U), static_cast<std::uint8_t>(number)};
}

void append(std::vector<std::uint8_t>& to, std::span<std::uint8_t const> bytes)
{
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void append(std::vector<std::uint8_t>& to, std::string_view letters)
{
    to.insert(to.end(), letters.begin(), letters.end());
}

std::vector<std::uint8_t> header_of(Picture const& picture)
{
    constexpr std::uint8_t kColourTypes[] = {0, 4, 2, 6};
    std::vector<std::uint8_t> header;
    append(header, bytes_of(static_cast<std::size_t>(picture.width)));
    append(header, bytes_of(static_cast<std::size_t>(picture.height)));
    header.push_back(static_cast<std::uint8_t>(8 * sample_size(picture.type)));
    header.push_back(kColourTypes[picture.channels - 1]);
    header.insert(header.end(), {0, 0, 0});
    return header;
}

} // namespace

void append_png_chunk(std::vector<std::uint8_t>& to, std::string_view name,
                      std::span<std::uint8_t const> content)
{
    append(to, bytes_of(content.size()));
    std::size_t const checked = to.size();
    append(to, name);
    append(to, content);
    append(to, bytes_of(libdeflate_crc32(0, &to[checked], to.size() - checked)));
}

std::vector<std::uint8_t> png_start(Picture const& picture)
{
    constexpr std::uint8_t kStart[] = {0x78, 0x5e}; // Deflate with a window of 32 KiB, at a fast level
    std::vector<std::uint8_t> start{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    append_png_chunk(start, "IHDR", header_of(picture));
    if (!picture.attributes.empty()) {
        std::vector<std::uint8_t> text;
        append(text, "Umbrix");                   // the keyword
        text.insert(text.end(), {0, 0, 0, 0, 0}); // not packed, in no language, with no other keyword
        append(text, attribute_text(picture.attributes));
        append_png_chunk(start, "iTXt", text);
    }
    append_png_chunk(start, kRows, kStart);
    return start;
}

std::vector<std::uint8_t> png_end(std::uint32_t adler)
{
    std::vector<std::uint8_t> stream{0b011, 0};
    append(stream, bytes_of(adler));
    std::vector<std::uint8_t> end;
    append_png_chunk(end, kRows, stream);
    append_png_chunk(end, "IEND", {});
    return end;
}

std::array<std::uint8_t, 8> png_piece_head(std::size_t size)
{
    std::array<std::uint8_t, 8> head{};
    auto const length = bytes_of(size);
    std::copy(kRows.begin(), kRows.end(), std::copy(length.begin(), length.end(), head.begin()));
    return head;
}

std::array<std::uint8_t, 4> png_piece_tail(std::vector<std::uint8_t> const& piece)
{
    std::uint32_t const name = libdeflate_crc32(0, kRows.data(), kRows.size());
    return bytes_of(libdeflate_crc32(name, piece.data(), piece.size()));
}

} // namespace umbrixlib::toolkit
