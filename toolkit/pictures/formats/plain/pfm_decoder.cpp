// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/header_words.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <cstdlib>

namespace umbrixlib::toolkit {

namespace {

/// Floats, the bottom row first. The sign of the scale tells the order of bytes; values count as they are.
class PfmDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        return (source.begins_with("PF") || source.begins_with("Pf")) && source.head().size() > 2 &&
               HeaderWords::is_space(source.head()[2]);
    }

    DecodedFile decode(SourceFile& source) const override
    {
        HeaderWords words(source);
        int const channels = words.next() == "PF" ? 3 : 1;
        int const width = words.next_number();
        int const height = words.next_number();
        double const scale = std::strtod(words.next().c_str(), nullptr);
        source.check_size(width, height);
        if (!(scale < 0) && !(scale > 0)) {
            source.refuse_as_damaged();
        }
        source.check_length(4.0 * width * height * channels);
        Picture picture = make_picture(width, height, channels, SampleType::kFloat);
        std::vector<std::uint8_t> row(picture.bytes.size() / static_cast<std::size_t>(height));
        for (int y = height - 1; y >= 0; --y) {
            source.read(row);
            put_samples(row, scale < 0 ? ByteOrder::kLittle : ByteOrder::kBig,
                        row_from_top<float>(picture, y));
        }
        std::vector<std::string> notes;
        if (scale != 1 && scale != -1) {
            notes.emplace_back("its scale is left alone: values count as they are");
        }
        return {std::move(picture), false, "PFM", std::move(notes)};
    }
};

} // namespace

Decoder const& pfm_decoder()
{
    static PfmDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
