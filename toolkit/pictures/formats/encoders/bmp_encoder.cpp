// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kFileHeader = 14;
constexpr unsigned kHeader = 40;

/// Colours of 24 bits; an alpha is left out.
class BmpEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8) {
            return false;
        }
        Picture const colours = picture.channels < 3 ? in_colour(picture, false) : picture;
        std::size_t const row = (3 * static_cast<std::size_t>(picture.width) + 3) / 4 * 4;
        auto const texels = static_cast<unsigned>(row * static_cast<std::size_t>(picture.height));
        ByteWriter writer;
        writer.text("BM").u32(kFileHeader + kHeader + texels).u32(0).u32(kFileHeader + kHeader);
        writer.u32(kHeader)
            .u32(static_cast<unsigned>(picture.width))
            .u32(static_cast<unsigned>(picture.height));
        writer.u16(1).u16(24).fill(kFileHeader + kHeader);
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = 0; good && y < picture.height; ++y) {
            auto const from = row_of<std::uint8_t>(colours, y);
            for (std::size_t i = 0; i < from.size(); i += static_cast<std::size_t>(colours.channels)) {
                writer.u8(from[i + 2]).u8(from[i + 1]).u8(from[i]);
            }
            good = writer.fill(row).flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& bmp_encoder()
{
    static BmpEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
