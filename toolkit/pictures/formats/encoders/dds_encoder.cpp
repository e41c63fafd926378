// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

constexpr int kBlockSide = 4;

using Rgb = std::array<int, 3>;
using Block = std::array<Rgb, 16>;

int distance(Rgb const& a, Rgb const& b)
{
    int sum = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        sum += (a[c] - b[c]) * (a[c] - b[c]);
    }
    return sum;
}

/// Red and blue in 5 bits, green in 6, each rounded to the nearest.
unsigned packed(Rgb const& colour)
{
    auto const channel = [](int value, int most) {
        return static_cast<unsigned>((value * most + 127) / 255);
    };
    return channel(colour[0], 31) << 11U | channel(colour[1], 63) << 5U | channel(colour[2], 31);
}

Rgb unpacked(unsigned colour)
{
    auto const channel = [](unsigned value, unsigned most) {
        return static_cast<int>((value * 255 + most / 2) / most);
    };
    return {channel(colour >> 11U & 31U, 31), channel(colour >> 5U & 63U, 63), channel(colour & 31U, 31)};
}

/// The two texels that are farthest from each other.
std::pair<Rgb, Rgb> ends_of(Block const& block)
{
    std::pair<Rgb, Rgb> ends{block[0], block[0]};
    int longest = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            int const length = distance(block[i], block[k]);
            if (length > longest) {
                longest = length;
                ends = {block[i], block[k]};
            }
        }
    }
    return ends;
}

/// Two colours, and for each texel the nearest of them and of the two between.
void append_block(ByteWriter& to, Block const& block)
{
    auto const [first, second] = ends_of(block);
    auto const [low, high] = std::minmax({packed(first), packed(second)});
    std::array<Rgb, 4> colours{unpacked(high), unpacked(low)};
    for (std::size_t c = 0; c < 3; ++c) {
        colours[2][c] = (2 * colours[0][c] + colours[1][c] + 1) / 3;
        colours[3][c] = (colours[0][c] + 2 * colours[1][c] + 1) / 3;
    }
    std::size_t const usable = high > low ? 4 : 1; // two of one colour leave no others
    unsigned choices = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        unsigned nearest = 0;
        for (unsigned k = 1; k < usable; ++k) {
            if (distance(block[i], colours[k]) < distance(block[i], colours[nearest])) {
                nearest = k;
            }
        }
        choices |= nearest << 2 * i;
    }
    to.u16(high).u16(low).u32(choices);
}

/// The block at (@p left, @p top), counted from the top row; its texels outside the picture are those of the
/// edge.
Block block_at(Picture const& colours, int left, int top)
{
    Block block{};
    for (int i = 0; i < kBlockSide * kBlockSide; ++i) {
        int const x = std::min(left + i % kBlockSide, colours.width - 1);
        int const y = std::min(top + i / kBlockSide, colours.height - 1);
        auto const row = row_of<std::uint8_t>(colours, colours.height - 1 - y);
        auto const texel = row.subspan(static_cast<std::size_t>(x * colours.channels), 3);
        block[static_cast<std::size_t>(i)] = {texel[0], texel[1], texel[2]};
    }
    return block;
}

/// DXT1 of one picture, without alpha and without smaller ones, from 8 bits.
class DdsEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8) {
            return false;
        }
        Picture const colours = picture.channels < 3 ? in_colour(picture, false) : picture;
        auto const blocks = [](int side) {
            return static_cast<unsigned>((side + kBlockSide - 1) / kBlockSide);
        };
        ByteWriter writer;
        writer.text("DDS ").u32(124).u32(0xa1007).u32(static_cast<unsigned>(picture.height));
        writer.u32(static_cast<unsigned>(picture.width))
            .u32(8 * blocks(picture.width) * blocks(picture.height));
        writer.u32(0).u32(1).fill(76).u32(32).u32(4).text("DXT1").fill(108).u32(0x1000).fill(128);
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = 0; good && y < picture.height; y += kBlockSide) {
            for (int x = 0; x < picture.width; x += kBlockSide) {
                append_block(writer, block_at(colours, x, y));
            }
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& dds_encoder()
{
    static DdsEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
