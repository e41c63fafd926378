// SPDX-License-Identifier: MIT
#include "toolkit/base/text.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <cmath>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

/// Heights of a square terrain without a header, by name: .r16 has whole numbers of 16 bits, .r32 floats,
/// both with the low byte first and the top row first.
class RawDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        std::string const extension = lower_case(source.path().extension().string());
        return extension == ".r16" || extension == ".r32";
    }

    DecodedFile decode(SourceFile& source) const override
    {
        bool const is_float = lower_case(source.path().extension().string()) == ".r32";
        SampleType const type = is_float ? SampleType::kFloat : SampleType::kUint16;
        ByteReader reader(source);
        std::size_t const size = reader.left();
        double const texels = static_cast<double>(size / sample_size(type));
        double const side = std::floor(std::sqrt(texels) + 0.5);
        if (size == 0 || size % sample_size(type) != 0 || side * side != texels) {
            source.refuse(fmt::format("its {} bytes are no square of {}", size,
                                      is_float ? "floats" : "numbers of 16 bits"),
                          "save it as 16-bit PNG or TIFF");
        }
        source.check_size(side, side);
        Picture picture = make_picture(static_cast<int>(side), static_cast<int>(side), 1, type);
        std::size_t const row = size / static_cast<std::size_t>(picture.height);
        for (int y = 0; y < picture.height; ++y) {
            if (is_float) {
                put_samples(reader.take(row), ByteOrder::kLittle, row_from_top<float>(picture, y));
            } else {
                put_samples(reader.take(row), ByteOrder::kLittle, row_from_top<std::uint16_t>(picture, y));
            }
        }
        return {std::move(picture), false, is_float ? "R32" : "R16"};
    }
};

} // namespace

Decoder const& raw_decoder()
{
    static RawDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
