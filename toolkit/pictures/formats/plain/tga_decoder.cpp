// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/input_formats.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kHeaderSize = 18;
constexpr int kRunBit = 128;
constexpr std::size_t kLongestRun = 128;

enum ImageType { kPalette = 1, kColour = 2, kGrey = 3, kRunLengths = 8 };

/// The header of a TGA file, in the words of the file.
struct Header {
    explicit Header(std::span<std::uint8_t const> bytes)
        : comment(bytes[0]), map_type(bytes[1]), image_type(bytes[2]), map_first(word(bytes, 3)),
          map_length(word(bytes, 5)), map_bits(bytes[7]), width(word(bytes, 12)), height(word(bytes, 14)),
          bits(bytes[16]), descriptor(bytes[17])
    {
    }

    static int word(std::span<std::uint8_t const> bytes, std::size_t at)
    {
        return bytes[at] | bytes[at + 1] << 8;
    }

    int kind() const { return image_type & ~kRunLengths; }
    bool has_runs() const { return (image_type & kRunLengths) != 0; }
    bool top_first() const { return (descriptor & 0x20) != 0; }
    bool right_first() const { return (descriptor & 0x10) != 0; }

    static bool is_colour_depth(int depth)
    {
        return depth == 15 || depth == 16 || depth == 24 || depth == 32;
    }

    bool is_sound() const
    {
        bool const has_size = width > 0 && height > 0 && map_type <= 1;
        switch (kind()) {
        case kPalette:
            return has_size && map_type == 1 && (bits == 8 || bits == 16) && is_colour_depth(map_bits);
        case kColour:
            return has_size && is_colour_depth(bits);
        case kGrey:
            return has_size && (bits == 8 || bits == 16);
        default:
            return false;
        }
    }

    std::size_t texels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    std::size_t texel_size() const { return (static_cast<std::size_t>(bits) + 7) / 8; }
    std::size_t map_entry_size() const { return (static_cast<std::size_t>(map_bits) + 7) / 8; }
    std::size_t map_size() const
    {
        return map_type == 1 ? static_cast<std::size_t>(map_length) * map_entry_size() : 0;
    }

    int comment;
    int map_type;
    int image_type;
    int map_first;
    int map_length;
    int map_bits;
    int width;
    int height;
    int bits;
    int descriptor;
};

using Colour = std::array<std::uint8_t, 3>; ///< Red, green, blue.

/// A colour as the file has it: 5 bits a channel, or blue, green and red.
Colour colour_at(std::uint8_t const* stored, std::size_t size)
{
    if (size > 2) {
        return {stored[2], stored[1], stored[0]};
    }
    int const word = stored[0] | stored[1] << 8;
    auto const channel = [word](int shift) {
        return static_cast<std::uint8_t>(((word >> shift & 31) * 255 + 15) / 31);
    };
    return {channel(10), channel(5), channel(0)};
}

/// What the file has for each texel, without run lengths.
TexelBytes stored_texels(SourceFile& source, Header const& header)
{
    std::size_t const size = header.texel_size();
    std::size_t const packed = header.has_runs()
                                   ? (header.texels() + kLongestRun - 1) / kLongestRun * (1 + size)
                                   : header.texels() * size;
    source.check_length(static_cast<double>(kHeaderSize + header.map_size() + packed));
    TexelBytes stored(header.texels() * size);
    if (!header.has_runs()) {
        source.read(stored);
        return stored;
    }
    for (std::span<std::uint8_t> left(stored); !left.empty();) {
        int const packet = source.next();
        if (packet < 0) {
            source.refuse_as_damaged();
        }
        // Some writers let the last packet go on behind the picture.
        std::size_t const bytes =
            std::min((static_cast<std::size_t>(packet % kRunBit) + 1) * size, left.size());
        std::span<std::uint8_t> const run = left.first(bytes);
        left = left.subspan(bytes);
        if (packet < kRunBit) {
            source.read(run);
            continue;
        }
        source.read(run.first(size));
        for (std::size_t i = size; i < bytes; ++i) {
            run[i] = run[i - size];
        }
    }
    return stored;
}

/// In the order of the file's rows and columns.
Picture to_colours(Header const& header, TexelBytes const& stored, std::vector<Colour> const& map)
{
    Picture picture = make_picture(header.width, header.height, 3);
    std::size_t const size = header.texel_size();
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        std::uint8_t const* const from = &stored[i * size];
        Colour colour{}; // black, for a number that the map does not have
        if (header.kind() == kColour) {
            colour = colour_at(from, size);
        } else {
            int const number = (size == 1 ? from[0] : from[0] | from[1] << 8) - header.map_first;
            if (number >= 0 && number < static_cast<int>(map.size())) {
                colour = map[static_cast<std::size_t>(number)];
            }
        }
        std::copy(colour.begin(), colour.end(), picture.texel(i));
    }
    return picture;
}

std::vector<Colour> read_map(SourceFile& source, Header const& header)
{
    std::vector<std::uint8_t> bytes(header.map_size());
    source.read(bytes);
    std::vector<Colour> map;
    if (header.kind() == kPalette) {
        for (std::size_t at = 0; at < bytes.size(); at += header.map_entry_size()) {
            map.push_back(colour_at(&bytes[at], header.map_entry_size()));
        }
    }
    return map;
}

/// The texels of the file are the picture's, but for the order of the colours.
Picture as_it_is(Header const& header, TexelBytes&& stored)
{
    auto const channels = static_cast<int>(header.texel_size());
    Picture picture{header.width, header.height, channels, std::move(stored)};
    if (channels >= 3) {
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            std::swap(picture.texel(i)[0], picture.texel(i)[2]);
        }
    }
    return picture;
}

void mirror(Picture& picture)
{
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const width = static_cast<std::size_t>(picture.width);
    for (std::size_t row = 0; row < picture.texels(); row += width) {
        for (std::size_t x = 0; x < width / 2; ++x) {
            std::swap_ranges(picture.texel(row + x), picture.texel(row + x) + channels,
                             picture.texel(row + width - 1 - x));
        }
    }
}

class TgaDecoder : public Decoder {
public:
    /// The format has no signature: a file of another name has to have a header that makes sense.
    bool takes(SourceFile const& source) const override
    {
        std::string const extension = lower_case(source.path().extension().string());
        if (extension == ".tga" || extension == ".vda" || extension == ".icb" || extension == ".vst") {
            return true;
        }
        return !is_called_like_a_picture(source.path()) && source.head().size() >= kHeaderSize &&
               Header(source.head()).is_sound();
    }

    DecodedFile decode(SourceFile& source) const override
    {
        std::array<std::uint8_t, kHeaderSize> bytes{};
        source.read(bytes);
        Header const header(bytes);
        if (header.image_type == 32 || header.image_type == 33) {
            source.refuse("it is a TGA picture with Huffman codes", "save it without compression");
        }
        if (header.kind() == kGrey && header.bits == 1) {
            source.refuse("it is a TGA picture of one bit a texel", "save it with 8 bits");
        }
        if (!header.is_sound()) {
            source.refuse_as_damaged();
        }
        source.check_size(header.width, header.height);
        source.skip(static_cast<std::size_t>(header.comment));
        std::vector<Colour> const map = read_map(source, header);
        TexelBytes stored = stored_texels(source, header);
        bool const in_colours =
            header.kind() != kGrey && (header.kind() == kPalette || header.texel_size() == 2);
        Picture picture = in_colours ? to_colours(header, stored, map) : as_it_is(header, std::move(stored));
        if (header.top_first()) {
            picture = upside_down(picture);
        }
        if (header.right_first()) {
            mirror(picture);
        }
        return {std::move(picture), header.kind() == kPalette, "TGA"};
    }
};

} // namespace

Decoder const& tga_decoder()
{
    static TgaDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
