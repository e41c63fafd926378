// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

constexpr double kLongestRun = 255;

/// Alias' pictures, of colours with blue first or of greys: all texels are runs. Without a signature.
class AliasDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return lower_case(source.path().extension().string()) == ".pix";
    }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        int const width = reader.u16();
        int const height = reader.u16();
        reader.skip(4);
        unsigned const bits = reader.u16();
        if (bits != 24 && bits != 8) {
            source.refuse_as_damaged();
        }
        source.check_size(width, height);
        std::size_t const channels = bits / 8;
        source.check_length(static_cast<double>(width) * height / kLongestRun *
                            (1 + static_cast<double>(channels)));
        Picture picture = make_picture(width, height, static_cast<int>(channels));
        for (int y = 0; y < height; ++y) {
            for (auto row = row_from_top<std::uint8_t>(picture, y); !row.empty();) {
                std::size_t const texels = reader.u8();
                auto const colour = reader.take(channels);
                if (texels == 0 || texels * channels > row.size()) {
                    source.refuse_as_damaged();
                }
                for (std::size_t i = 0; i < texels * channels; ++i) {
                    row[i] = colour[channels - 1 - i % channels];
                }
                row = row.subspan(texels * channels);
            }
        }
        return {std::move(picture), false, "Alias PIX"};
    }
};

} // namespace

Decoder const& alias_decoder()
{
    static AliasDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
