// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

/// The flat picture of a PSD file, without compression: 8 or 16 bits, or floats.
class PsdEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type == SampleType::kHalf) {
            return false;
        }
        auto const channels = static_cast<std::size_t>(picture.channels);
        ByteWriter writer(ByteOrder::kBig);
        writer.text("8BPS").u16(1).fill(12).side(picture.channels);
        writer.u32(static_cast<unsigned>(picture.height)).u32(static_cast<unsigned>(picture.width));
        writer.u16(8 * static_cast<unsigned>(sample_size(picture.type))).u16(picture.channels < 3 ? 1 : 3);
        writer.u32(0).u32(0).u32(0).u16(0); // no map of colours, resources, layers, compression
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            for (int y = picture.height - 1; good && y >= 0; --y) {
                append_row(writer, picture, y, channel, channels);
                good = writer.flush(stream);
            }
        }
        return stream.close();
    }
};

} // namespace

Encoder const& psd_encoder()
{
    static PsdEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
