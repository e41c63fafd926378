// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/header_words.h"

#include <algorithm>
#include <string>

namespace umbrixlib::toolkit {

namespace {

struct Header {
    int width = 0;
    int height = 0;
    int channels = 1;
    int most = 1; ///< The sample that stands for 1.
    bool text = false;
    bool bits = false; ///< One for each texel, set where it is black.
};

/// "P1" to "P6".
Header read_header(SourceFile& source, int kind)
{
    HeaderWords words(source);
    Header header;
    header.text = kind <= 3;
    header.bits = kind % 3 == 1;
    header.channels = kind % 3 == 0 ? 3 : 1;
    header.width = words.next_number();
    header.height = words.next_number();
    header.most = header.bits ? 1 : words.next_number();
    return header;
}

/// "P7": lines of a word and a number.
Header read_arbitrary_header(SourceFile& source)
{
    HeaderWords words(source);
    Header header;
    for (std::string word = words.next(); word != "ENDHDR"; word = words.next()) {
        if (word == "TUPLTYPE") {
            words.next(); // the number of channels tells
            continue;
        }
        int* const field = word == "WIDTH"    ? &header.width
                           : word == "HEIGHT" ? &header.height
                           : word == "DEPTH"  ? &header.channels
                           : word == "MAXVAL" ? &header.most
                                              : nullptr;
        if (field == nullptr) {
            source.refuse_as_damaged();
        }
        *field = words.next_number();
    }
    return header;
}

void read_bits(SourceFile& source, Header const& header, Picture& picture)
{
    auto const width = static_cast<std::size_t>(header.width);
    std::vector<std::uint8_t> row((width + 7) / 8);
    for (std::size_t at = 0; at < picture.bytes.size(); at += width) {
        source.read(row);
        for (std::size_t x = 0; x < width; ++x) {
            bool const black = (row[x / 8] >> (7 - x % 8) & 1) != 0;
            picture.bytes[at + x] = black ? 0 : 1;
        }
    }
}

void read_text(SourceFile& source, Header const& header, Picture& picture)
{
    HeaderWords words(source);
    auto const read_into = [&](auto samples) {
        for (auto& sample : samples) {
            int const number = header.bits ? words.next_letter() - '0' : words.next_number();
            if (number < 0 || number > header.most) {
                source.refuse_as_damaged();
            }
            sample =
                static_cast<std::remove_reference_t<decltype(sample)>>(header.bits ? 1 - number : number);
        }
    };
    if (picture.type == SampleType::kUint8) {
        read_into(picture.samples<std::uint8_t>());
    } else {
        read_into(picture.samples<std::uint16_t>());
    }
}

void read_samples(SourceFile& source, Picture& picture)
{
    source.read(picture.bytes);
    if (picture.type == SampleType::kUint16) {
        for (std::size_t i = 0; i < picture.bytes.size(); i += 2) { // the high byte comes first
            auto const value = static_cast<std::uint16_t>(picture.bytes[i] << 8 | picture.bytes[i + 1]);
            picture.samples<std::uint16_t>()[i / 2] = value;
        }
    }
}

/// Spreads 0 to @p most over all that the samples can hold.
template <typename Sample>
void spread(std::span<Sample> samples, unsigned most)
{
    constexpr unsigned kFull = static_cast<Sample>(-1);
    if (most != kFull) {
        for (Sample& sample : samples) {
            sample = static_cast<Sample>((std::min<unsigned>(sample, most) * kFull + most / 2) / most);
        }
    }
}

Picture read_picture(SourceFile& source, Header const& header)
{
    source.check_size(header.width, header.height);
    if (header.most < 1 || header.most > 65535 || header.channels < 1 || header.channels > 4) {
        source.refuse_as_damaged();
    }
    SampleType const type = header.most > 255 ? SampleType::kUint16 : SampleType::kUint8;
    double const texels = static_cast<double>(header.width) * header.height;
    double const texel_size = header.bits && !header.text ? 1.0 / 8.0
                              : header.text               ? header.channels
                                            : header.channels * static_cast<double>(sample_size(type));
    source.check_length(texels * texel_size);
    Picture picture = make_picture(header.width, header.height, header.channels, type);
    if (header.text) {
        read_text(source, header, picture);
    } else if (header.bits) {
        read_bits(source, header, picture);
    } else {
        read_samples(source, picture);
    }
    if (type == SampleType::kUint8) {
        spread(picture.samples<std::uint8_t>(), static_cast<unsigned>(header.most));
    } else {
        spread(picture.samples<std::uint16_t>(), static_cast<unsigned>(header.most));
    }
    return upside_down(picture);
}

/// Netpbm's formats: PBM, PGM, PPM and PAM.
class PnmDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        auto const head = source.head();
        return head.size() > 2 && head[0] == 'P' && head[1] >= '1' && head[1] <= '7' &&
               (HeaderWords::is_space(head[2]) || head[2] == '#');
    }

    DecodedFile decode(SourceFile& source) const override
    {
        source.skip(1);
        int const kind = source.next() - '0';
        constexpr char const* kNames[] = {"PBM", "PGM", "PPM"};
        return {read_picture(source, kind == 7 ? read_arbitrary_header(source) : read_header(source, kind)),
                false, kind == 7 ? "PAM" : kNames[(kind - 1) % 3]};
    }
};

} // namespace

Decoder const& pnm_decoder()
{
    static PnmDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
