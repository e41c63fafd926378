// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/textures/dds_layout.h"

namespace umbrixlib::toolkit {

namespace {

class DdsDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("DDS "); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source);
        TexelLayout layout = read_dds_layout(reader);
        Picture picture = read_texels(reader, layout);
        return {std::move(picture), false, "DDS", std::move(layout.notes)};
    }
};

} // namespace

Decoder const& dds_decoder()
{
    static DdsDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
