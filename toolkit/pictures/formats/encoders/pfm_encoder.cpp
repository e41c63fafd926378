// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/byte_writer.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Floats, the low byte first; an alpha is left out.
class PfmEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        Picture const all = picture.type == SampleType::kFloat ? picture : in_floats(picture);
        Picture const floats = all.has_alpha() ? without_alpha(all) : all;
        ByteWriter writer;
        writer.text(fmt::format("{}\n{} {}\n-1.0\n", floats.channels == 3 ? "PF" : "Pf", floats.width,
                                floats.height));
        OutputStream stream(file);
        bool good = writer.flush(stream);
        for (int y = 0; good && y < floats.height; ++y) {
            append_row(writer, floats, y);
            good = writer.flush(stream);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& pfm_encoder()
{
    static PfmEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
