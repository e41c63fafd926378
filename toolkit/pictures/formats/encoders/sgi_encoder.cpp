// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

/// Without run lengths, of 8 or 16 bits.
class SgiEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8 && picture.type != SampleType::kUint16) {
            return false;
        }
        auto const channels = static_cast<std::size_t>(picture.channels);
        bool const is_deep = picture.type == SampleType::kUint16;
        ByteWriter writer(ByteOrder::kBig);
        writer.u16(474).u8(0).u8(is_deep ? 2 : 1).u16(3).side(picture.width).side(picture.height);
        writer.side(picture.channels).u32(0).u32(is_deep ? 65535 : 255).fill(512);
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (int y = 0; good && y < picture.height; ++y) {
                append_row(writer, picture, y, channel, channels);
                good = writer.flush(stream);
            }
        }
        return stream.close();
    }
};

} // namespace

Encoder const& sgi_encoder()
{
    static SgiEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
