// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint8_t kRunBits = 0xc0;
constexpr std::size_t kLongestRun = 63;

/// One channel of a row; a byte that looks like a run is one of length 1.
void append_runs(ByteWriter& to, std::span<std::uint8_t const> row, std::size_t channel, std::size_t channels)
{
    std::size_t count = 0;
    for (std::size_t i = channel; i < row.size(); i += channels) {
        ++count;
        bool const goes_on = i + channels < row.size() && row[i + channels] == row[i] && count < kLongestRun;
        if (goes_on) {
            continue;
        }
        if (count > 1 || row[i] >= kRunBits) {
            to.u8(kRunBits | static_cast<unsigned>(count));
        }
        to.u8(row[i]);
        count = 0;
    }
}

/// A plane of 8 bits a channel.
class PcxEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8) {
            return false;
        }
        Picture const colours = picture.channels < 3 ? in_colour(picture, picture.has_alpha()) : picture;
        auto const channels = static_cast<std::size_t>(colours.channels);
        ByteWriter writer;
        writer.u8(10).u8(5).u8(1).u8(8).u16(0).u16(0).side(picture.width - 1).side(picture.height - 1);
        writer.fill(65)
            .u8(static_cast<unsigned>(channels))
            .side((picture.width + 1) / 2 * 2)
            .u16(1)
            .fill(128);
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = picture.height - 1; good && y >= 0; --y) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                append_runs(writer, row_of<std::uint8_t>(colours, y), channel, channels);
                if (picture.width % 2 != 0) {
                    writer.u8(0); // rows are of even numbers of bytes
                }
            }
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& pcx_encoder()
{
    static PcxEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
