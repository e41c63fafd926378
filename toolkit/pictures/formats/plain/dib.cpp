// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/plain/dib.h"

#include "toolkit/pictures/formats/plain/channel_masks.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

enum Compression { kNone = 0, kRuns8 = 1, kRuns4 = 2, kMasks = 3, kJpeg = 4, kPng = 5, kMasksWithAlpha = 6 };

constexpr unsigned kOldestHeader = 12;
constexpr unsigned kShortHeader = 40;

bool is_header_size(unsigned size)
{
    constexpr unsigned kSizes[] = {kOldestHeader, 16, kShortHeader, 52, 56, 64, 108, 124};
    return std::find(std::begin(kSizes), std::end(kSizes), size) != std::end(kSizes);
}

void check_compression(SourceFile const& source, DibHeader const& header, bool is_of_os2)
{
    if (is_of_os2 && header.compression >= kMasks) {
        source.refuse("it is a BMP file with a compression of OS/2", "save it without compression");
    }
    if (header.compression == kJpeg || header.compression == kPng) {
        source.refuse(
            fmt::format("it is a BMP file around a {} picture", header.compression == kJpeg ? "JPEG" : "PNG"),
            "save it as that");
    }
    if (header.compression > 10 && header.compression < 14) {
        source.refuse("it is a BMP file of inks (CMYK)", "save it as RGB");
    }
    bool const sound = header.compression == kRuns8   ? header.bits == 8
                       : header.compression == kRuns4 ? header.bits == 4
                       : header.compression == kNone
                           ? header.bits == 1 || header.bits == 2 || header.bits == 4 || header.bits == 8 ||
                                 header.bits == 16 || header.bits == 24 || header.bits == 32
                           : (header.compression == kMasks || header.compression == kMasksWithAlpha) &&
                                 (header.bits == 16 || header.bits == 24 || header.bits == 32);
    if (!sound) {
        source.refuse_as_damaged();
    }
}

std::size_t row_size(int width, int bits)
{
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
}

/// The number of each texel, in the file's order of rows. Those that are passed over are 0.
std::vector<std::uint8_t> read_runs(ByteReader& reader, DibHeader const& header)
{
    constexpr double kMostPassed = 255.0 * 255.0; // by a step of 4 bytes
    auto const width = static_cast<std::size_t>(header.width);
    auto const height = static_cast<std::size_t>(header.height);
    reader.source().check_length(static_cast<double>(width) * static_cast<double>(height) / kMostPassed * 4);
    std::vector<std::uint8_t> numbers(width * height);
    std::size_t x = 0;
    std::size_t y = 0;
    bool const halves = header.bits == 4;
    auto const put = [&](std::uint8_t pair, std::size_t i) { // what stands behind the end of a row is lost
        if (x < width && y < height) {
            numbers[y * width + x] =
                !halves ? pair : static_cast<std::uint8_t>(i % 2 == 0 ? pair >> 4 : pair & 15);
        }
        ++x;
    };
    for (;;) {
        bool const full = y >= height || (y == height - 1 && x >= width);
        if (full && reader.left() < 2) {
            return numbers; // some writers spare the mark of the end
        }
        std::size_t const count = reader.u8();
        std::uint8_t const code = reader.u8();
        if (count > 0) {
            for (std::size_t i = 0; i < count; ++i) {
                put(code, i);
            }
        } else if (code == 0) {
            x = 0;
            ++y;
        } else if (code == 1) {
            return numbers;
        } else if (code == 2) {
            x += reader.u8();
            y += reader.u8();
        } else {
            auto const texels = reader.take(halves ? (code + 1U) / 2 : code);
            for (std::size_t i = 0; i < code; ++i) {
                put(texels[halves ? i / 2 : i], i);
            }
            reader.skip(std::min<std::size_t>(texels.size() % 2, reader.left()));
        }
    }
}

std::vector<Colour> read_palette(ByteReader& reader, DibHeader const& header, std::size_t texels_at)
{
    std::size_t const most = std::min<std::size_t>(header.colours, std::size_t{1} << header.bits);
    std::size_t const room = texels_at > reader.at() ? texels_at - reader.at() : reader.left();
    std::vector<Colour> palette;
    for (std::size_t i = 0; i < std::min(most, room / header.colour_size); ++i) {
        auto const bytes = reader.take(header.colour_size);
        palette.push_back({bytes[2], bytes[1], bytes[0]});
    }
    return palette;
}

/// The row of the file that stands at @p y from the top.
std::size_t file_row(DibHeader const& header, int y)
{
    return static_cast<std::size_t>(header.top_first ? y : header.height - 1 - y);
}

Picture read_numbers(ByteReader& reader, DibHeader const& header, std::vector<Colour> const& palette)
{
    auto const width = static_cast<std::size_t>(header.width);
    auto const bits = static_cast<std::size_t>(header.bits);
    std::size_t const row = row_size(header.width, header.bits);
    std::vector<std::uint8_t> runs;
    std::span<std::uint8_t const> packed;
    if (header.compression != kNone) {
        runs = read_runs(reader, header);
    } else {
        packed = reader.take(row * static_cast<std::size_t>(header.height));
    }
    Picture picture = make_picture(header.width, header.height, 3);
    std::vector<std::uint8_t> numbers(width);
    for (int y = 0; y < header.height; ++y) {
        std::size_t const at = file_row(header, y);
        if (packed.empty()) {
            std::copy_n(runs.begin() + static_cast<std::ptrdiff_t>(at * width), width, numbers.begin());
        } else {
            unpack_bits(packed.subspan(at * row, row), bits, numbers);
        }
        put_colours(numbers, palette, row_from_top<std::uint8_t>(picture, y));
    }
    return picture;
}

/// The fourth byte of a texel has no meaning by the format's own rules, and yet it is an alpha in many files:
/// unless it is the same in all texels.
bool has_unnamed_alpha(std::span<std::uint8_t const> texels)
{
    for (std::size_t i = 3; i < texels.size(); i += 4) {
        if (texels[i] != texels[3]) {
            return true;
        }
    }
    return texels[3] != 0 && texels[3] != 255;
}

ChannelMasks masks_of(SourceFile const& source, DibHeader const& header, std::span<std::uint8_t const> texels)
{
    std::vector<std::uint32_t> masks;
    if (header.compression != kNone) {
        masks.assign(std::begin(header.masks), std::begin(header.masks) + 3);
        if (header.masks[3] != 0) {
            masks.push_back(header.masks[3]);
        }
    } else if (header.bits == 16) {
        masks = {0x7c00, 0x3e0, 0x1f};
    } else {
        masks = {0xff0000, 0xff00, 0xff};
        if (header.bits == 32 && has_unnamed_alpha(texels)) {
            masks.push_back(0xff000000);
        }
    }
    return {source, header.bits, masks};
}

Picture read_colours(ByteReader& reader, DibHeader const& header)
{
    std::size_t const row = row_size(header.width, header.bits);
    auto const texels = reader.take(row * static_cast<std::size_t>(header.height));
    ChannelMasks const masks = masks_of(reader.source(), header, texels);
    Picture picture = make_picture(header.width, header.height, masks.channels(), masks.type());
    for (int y = 0; y < header.height; ++y) {
        masks.unpack(texels.subspan(file_row(header, y) * row, row), picture, y);
    }
    return picture;
}

/// An icon's alpha is its mask, if its texels have none.
Picture with_icon_mask(ByteReader& reader, DibHeader const& header, Picture const& colours)
{
    Picture picture = in_colour(colours, true);
    std::size_t const row = row_size(header.width, 1);
    auto const packed = reader.take(row * static_cast<std::size_t>(header.height));
    std::vector<std::uint8_t> hidden(static_cast<std::size_t>(header.width));
    for (int y = 0; y < header.height; ++y) {
        unpack_bits(packed.subspan(file_row(header, y) * row, row), 1, hidden);
        auto const texels = row_from_top<std::uint8_t>(picture, y);
        for (std::size_t x = 0; x < hidden.size(); ++x) {
            texels[4 * x + 3] = hidden[x] != 0 ? 0 : 255;
        }
    }
    return picture;
}

} // namespace

DibHeader read_dib_header(ByteReader& reader, bool is_of_icon)
{
    SourceFile const& source = reader.source();
    std::size_t const start = reader.at();
    unsigned const size = reader.u32();
    if (!is_header_size(size)) {
        source.refuse_as_damaged();
    }
    bool const is_of_os2 = size == 16 || size == 64;
    DibHeader header;
    header.is_of_icon = is_of_icon;
    double height = 0;
    if (size == kOldestHeader) {
        header.width = reader.u16();
        height = reader.u16();
        header.colour_size = 3;
    } else {
        std::int32_t const width = reader.i32();
        source.check_size(width, 1);
        header.width = width;
        height = reader.i32();
    }
    header.top_first = height < 0;
    height = (header.top_first ? -height : height) / (is_of_icon ? 2 : 1);
    source.check_size(header.width, height);
    header.height = static_cast<int>(height);
    reader.skip(2);
    header.bits = reader.u16();
    if (size >= kShortHeader) {
        header.compression = reader.u32();
        reader.skip(12);
        header.colours = reader.u32();
        reader.skip(4);
    }
    check_compression(source, header, is_of_os2);
    if (header.colours == 0 && header.bits <= 8) {
        header.colours = std::size_t{1} << header.bits;
    }
    if (header.compression == kMasks || header.compression == kMasksWithAlpha) {
        bool const with_alpha = size >= 56 || header.compression == kMasksWithAlpha;
        for (std::size_t i = 0; i < (with_alpha ? 4 : 3); ++i) {
            header.masks[i] = reader.u32();
        }
    }
    reader.go_to(std::max(reader.at(), start + size));
    return header;
}

DecodedFile read_dib(ByteReader& reader, DibHeader const& header, std::size_t texels_at)
{
    bool const has_palette = header.bits <= 8;
    std::vector<Colour> palette;
    if (has_palette) {
        palette = read_palette(reader, header, texels_at);
    }
    reader.go_to(std::max(reader.at(), texels_at));
    if (header.compression != kRuns8 && header.compression != kRuns4) {
        reader.source().check_length(static_cast<double>(row_size(header.width, header.bits)) *
                                     header.height);
    }
    DecodedFile file{has_palette ? read_numbers(reader, header, palette) : read_colours(reader, header),
                     has_palette && !header.is_of_icon, "BMP"};
    if (header.is_of_icon && !file.picture.has_alpha()) {
        file.picture = with_icon_mask(reader, header, file.picture);
    }
    return file;
}

} // namespace umbrixlib::toolkit
