// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kMagic = 474;
constexpr std::size_t kHeaderSize = 512;

struct Header {
    bool has_runs;
    std::size_t sample;
    int width;
    int height;
    int channels;
};

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    reader.skip(2);
    unsigned const storage = reader.u8();
    Header header{storage == 1, reader.u8(), 0, 0, 0};
    unsigned const sides = reader.u16();
    header.width = reader.u16();
    int const height = reader.u16();
    int const channels = reader.u16();
    header.height = sides >= 2 ? height : 1;
    header.channels = sides >= 3 ? channels : 1;
    reader.go_to(104);
    unsigned const map = reader.u32();
    if (storage > 1 || sides < 1 || sides > 3 || header.sample < 1 || header.sample > 2 ||
        header.channels < 1) {
        source.refuse_as_damaged();
    }
    if (map != 0) {
        source.refuse("it is an SGI picture of an old kind, with a map of colours", "save it as RGB");
    }
    if (header.channels > 4) {
        source.refuse(fmt::format("it is an SGI picture of {} channels", header.channels),
                      "save it with four at most");
    }
    source.check_size(header.width, header.height);
    reader.go_to(kHeaderSize);
    return header;
}

/// One channel of a row: runs of one sample, and stretches as they are. The low 7 bits of a count are the
/// samples, 0 ends the row.
template <typename Sample>
void read_runs(ByteReader& reader, std::span<Sample> row)
{
    auto const next = [&] { return static_cast<Sample>(sizeof(Sample) == 1 ? reader.u8() : reader.u16()); };
    while (!row.empty()) {
        unsigned const packet = next();
        std::size_t const count = packet & 127U;
        if (count == 0 || count > row.size()) {
            reader.source().refuse_as_damaged();
        }
        if ((packet & 128U) != 0) {
            std::generate_n(row.begin(), count, next);
        } else {
            std::fill_n(row.begin(), count, next());
        }
        row = row.subspan(count);
    }
}

/// The channels one behind the other, each with the bottom row first.
template <typename Sample>
Picture read_texels(ByteReader& reader, Header const& header)
{
    auto const channels = static_cast<std::size_t>(header.channels);
    auto const width = static_cast<std::size_t>(header.width);
    auto const height = static_cast<std::size_t>(header.height);
    std::size_t const packed =
        header.has_runs ? 2 * sizeof(std::uint32_t) : width * sizeof(Sample); // a row's place and size
    reader.source().check_length(static_cast<double>(kHeaderSize) +
                                 static_cast<double>(channels * height * packed));
    ByteReader places = reader;
    Picture picture = make_picture(header.width, header.height, header.channels,
                                   sizeof(Sample) == 1 ? SampleType::kUint8 : SampleType::kUint16);
    std::vector<Sample> row(width);
    Sample* const samples = picture.samples<Sample>().data();
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t y = 0; y < height; ++y) {
            if (header.has_runs) {
                reader.go_to(places.u32());
                read_runs<Sample>(reader, row);
            } else {
                put_samples<Sample>(reader.take(width * sizeof(Sample)), ByteOrder::kBig, row);
            }
            for (std::size_t x = 0; x < width; ++x) {
                samples[(y * width + x) * channels + channel] = row[x];
            }
        }
    }
    return picture;
}

class SgiDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        auto const head = source.head();
        return head.size() > 4 && (head[0] << 8 | head[1]) == kMagic && head[2] <= 1 && head[3] <= 2;
    }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        Header const header = read_header(reader);
        return {header.sample == 1 ? read_texels<std::uint8_t>(reader, header)
                                   : read_texels<std::uint16_t>(reader, header),
                false, "SGI"};
    }
};

} // namespace

Decoder const& sgi_decoder()
{
    static SgiDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
