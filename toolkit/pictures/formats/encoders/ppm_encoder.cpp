// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Colours or greys, whatever the extension says; an alpha is left out.
class PpmEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8 && picture.type != SampleType::kUint16) {
            return false;
        }
        Picture const opaque = picture.has_alpha() ? without_alpha(picture) : picture;
        ByteWriter writer(ByteOrder::kBig);
        writer.text(fmt::format("P{}\n{} {}\n{}\n", opaque.channels == 1 ? 5 : 6, opaque.width, opaque.height,
                                full_scale(opaque.type)));
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = opaque.height - 1; good && y >= 0; --y) {
            append_row(writer, opaque, y);
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& ppm_encoder()
{
    static PpmEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
