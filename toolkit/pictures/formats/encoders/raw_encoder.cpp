// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

namespace umbrixlib::toolkit {

namespace {

/// Heights of a square without a header, the top row and the low byte first: .r16 of whole numbers, .r32 of
/// floats. Of one channel each.
class RawEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        bool const is_float = lower_case(file.extension().string()) == ".r32";
        SampleType const type = is_float ? SampleType::kFloat : SampleType::kUint16;
        if (picture.type != type || picture.channels != 1 || picture.width != picture.height) {
            return false;
        }
        ByteWriter writer;
        OutputStream stream(file);
        bool good = true;
        for (int y = picture.height - 1; good && y >= 0; --y) {
            append_row(writer, picture, y);
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& raw_encoder()
{
    static RawEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
