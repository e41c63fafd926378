// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Writes small pictures byte by byte, in the depths that files come in, and reads uncompressed TGA: tests of
/// whole programs then do not judge an image library by itself.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace umbrixlib::test {

using Bytes = std::vector<std::uint8_t>;

inline void write_file(std::filesystem::path const& file, Bytes const& bytes)
{
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

inline Bytes read_file(std::filesystem::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// Colour types of PNG.
enum class PngColour : std::uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgba = 6 };

namespace png_detail {

inline void append_big_endian(Bytes& to, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        to.push_back(static_cast<std::uint8_t>(value >> shift));
    }
}

inline std::uint32_t crc_of(Bytes const& bytes)
{
    std::uint32_t crc = 0xffffffffU;
    for (std::uint8_t const byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0xedb88320U : 0U);
        }
    }
    return ~crc;
}

inline void append_chunk(Bytes& to, std::string const& type, Bytes const& content)
{
    append_big_endian(to, static_cast<std::uint32_t>(content.size()));
    Bytes body(type.begin(), type.end());
    body.insert(body.end(), content.begin(), content.end());
    to.insert(to.end(), body.begin(), body.end());
    append_big_endian(to, crc_of(body));
}

/// zlib's format without compression.
inline Bytes stored(Bytes const& bytes)
{
    constexpr std::size_t kBlock = 65535;
    Bytes result{0x78, 0x01};
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (std::size_t at = 0; at < bytes.size(); at += kBlock) {
        std::size_t const length = std::min(kBlock, bytes.size() - at);
        result.push_back(at + length == bytes.size() ? 1 : 0);
        for (std::size_t const number : {length, ~length}) {
            result.push_back(static_cast<std::uint8_t>(number & 255U));
            result.push_back(static_cast<std::uint8_t>(number >> 8U & 255U));
        }
        for (std::size_t i = at; i < at + length; ++i) {
            result.push_back(bytes[i]);
            a = (a + bytes[i]) % 65521U;
            b = (b + a) % 65521U;
        }
    }
    append_big_endian(result, b << 16U | a);
    return result;
}

} // namespace png_detail

/// A PNG file. @p rows has the packed bytes of each row, the top one first.
/// @param transparency      Content of its tRNS chunk.
/// @param interlaced_height Above 0: the height, and the rows are those of the seven passes.
inline Bytes png_bytes(int width, PngColour colour, int bits, std::vector<Bytes> const& rows,
                       Bytes const& palette = {}, Bytes const& transparency = {}, int interlaced_height = 0)
{
    Bytes raw;
    for (Bytes const& row : rows) {
        raw.push_back(0); // no filter
        raw.insert(raw.end(), row.begin(), row.end());
    }
    Bytes header;
    png_detail::append_big_endian(header, static_cast<std::uint32_t>(width));
    bool const interlaced = interlaced_height > 0;
    auto const height = static_cast<std::size_t>(interlaced_height);
    png_detail::append_big_endian(header, static_cast<std::uint32_t>(interlaced ? height : rows.size()));
    header.insert(header.end(), {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(colour), 0, 0,
                                 static_cast<std::uint8_t>(interlaced ? 1 : 0)});
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    png_detail::append_chunk(file, "IHDR", header);
    if (!palette.empty()) {
        png_detail::append_chunk(file, "PLTE", palette);
    }
    if (!transparency.empty()) {
        png_detail::append_chunk(file, "tRNS", transparency);
    }
    png_detail::append_chunk(file, "IDAT", png_detail::stored(raw));
    png_detail::append_chunk(file, "IEND", {});
    return file;
}

/// An uncompressed TGA with the bottom row first: type 2 for 3 or 4 channels in the order blue, green, red,
/// alpha; type 3 for grey, or grey with alpha.
inline Bytes tga_bytes(int width, int height, int channels, Bytes const& pixels)
{
    Bytes file(18 + pixels.size());
    file[2] = channels < 3 ? 3 : 2;
    file[12] = static_cast<std::uint8_t>(width & 255);
    file[13] = static_cast<std::uint8_t>(width >> 8);
    file[14] = static_cast<std::uint8_t>(height & 255);
    file[15] = static_cast<std::uint8_t>(height >> 8);
    file[16] = static_cast<std::uint8_t>(channels * 8);
    file[17] = channels % 2 == 0 ? 8 : 0;
    std::copy(pixels.begin(), pixels.end(), file.begin() + 18);
    return file;
}

/// What an uncompressed colour TGA holds.
struct TgaPicture {
    int width = 0;
    int height = 0;
    int channels = 0;
    bool top_first = false;
    Bytes pixels;

    /// A channel (0 red, 1 green, 2 blue, 3 alpha) of a texel, @p y counted from the bottom of the picture.
    int at(int x, int y, int channel) const
    {
        int const row = top_first ? height - 1 - y : y;
        int const stored = channel < 3 ? 2 - channel : channel;
        return pixels[static_cast<std::size_t>((row * width + x) * channels + stored)];
    }
};

inline TgaPicture read_tga(std::filesystem::path const& file)
{
    Bytes const bytes = read_file(file);
    if (bytes.size() < 18 || bytes[2] != 2) {
        throw std::runtime_error(file.string() + " is no uncompressed colour TGA");
    }
    TgaPicture picture;
    picture.width = bytes[12] + 256 * bytes[13];
    picture.height = bytes[14] + 256 * bytes[15];
    picture.channels = bytes[16] / 8;
    picture.top_first = (bytes[17] & 0x20) != 0;
    std::size_t const size = static_cast<std::size_t>(picture.width) *
                             static_cast<std::size_t>(picture.height) *
                             static_cast<std::size_t>(picture.channels);
    std::size_t const start = 18U + bytes[0];
    if (bytes.size() < start + size) {
        throw std::runtime_error(file.string() + " is cut off");
    }
    auto const first = bytes.begin() + static_cast<std::ptrdiff_t>(start);
    picture.pixels.assign(first, first + static_cast<std::ptrdiff_t>(size));
    return picture;
}

} // namespace umbrixlib::test
