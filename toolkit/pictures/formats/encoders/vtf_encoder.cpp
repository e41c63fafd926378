// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kRgba = 0;
constexpr unsigned kRgb = 2;
constexpr unsigned kNoFormat = 0xffffffff;
constexpr unsigned kHeaderSize = 80;

/// One picture without compression and without smaller ones, version 7.2, of 8 bits.
class VtfEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8) {
            return false;
        }
        Picture const colours = picture.channels < 3 ? in_colour(picture, picture.has_alpha()) : picture;
        using namespace std::string_view_literals;
        ByteWriter writer;
        writer.text("VTF\0"sv).u32(7).u32(2).u32(kHeaderSize).side(picture.width).side(picture.height);
        writer.u32(0).u16(1).fill(52).u32(colours.has_alpha() ? kRgba : kRgb).u8(1).u32(kNoFormat);
        writer.u16(0).u16(1).fill(kHeaderSize);
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = picture.height - 1; good && y >= 0; --y) {
            append_row(writer, colours, y);
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& vtf_encoder()
{
    static VtfEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
