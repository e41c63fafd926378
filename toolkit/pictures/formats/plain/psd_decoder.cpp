// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

enum Mode { kBits = 0, kGrey = 1, kIndexed = 2, kRgb = 3, kInks = 4, kChannels = 7, kTwoTones = 8, kLab = 9 };

constexpr std::size_t kPaletteSize = 768;

struct Header {
    bool is_large; ///< PSB.
    int channels;
    int width;
    int height;
    int bits;
    int mode;
    std::vector<Colour> palette;

    int colours() const { return mode == kRgb ? 3 : mode == kInks ? 4 : 1; }
    bool has_alpha() const { return mode != kBits && mode != kIndexed && channels > colours(); }
    int taken() const { return colours() + (has_alpha() ? 1 : 0); }
    std::size_t row() const
    {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8;
    }
};

void check_mode(SourceFile const& source, Header const& header)
{
    if (header.mode == kLab) {
        source.refuse("it is a Photoshop picture of Lab colours", "save it as RGB");
    }
    if (header.mode == kChannels) {
        source.refuse("it is a Photoshop picture of channels without colours", "save it as RGB or grey");
    }
    bool const is_deep = header.bits == 16 || header.bits == 32;
    bool const sound =
        header.mode == kBits      ? header.bits == 1
        : header.mode == kIndexed ? header.bits == 8
        : header.mode == kGrey || header.mode == kRgb || header.mode == kInks || header.mode == kTwoTones
            ? header.bits == 8 || is_deep
            : false;
    if (!sound || header.channels < header.colours() || header.channels > 56) {
        source.refuse_as_damaged();
    }
}

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    reader.skip(4);
    unsigned const version = reader.u16();
    reader.skip(6);
    Header header{version == 2, reader.u16(), 0, 0, 0, 0, {}};
    double const height = reader.u32();
    double const width = reader.u32();
    header.bits = reader.u16();
    header.mode = reader.u16();
    source.check_size(width, height);
    header.width = static_cast<int>(width);
    header.height = static_cast<int>(height);
    if (version < 1 || version > 2) {
        source.refuse_as_damaged();
    }
    check_mode(source, header);
    auto const colours = reader.take(reader.u32());
    if (header.mode == kIndexed) {
        if (colours.size() < kPaletteSize) {
            source.refuse_as_damaged();
        }
        for (std::size_t i = 0; i < kPaletteSize / 3; ++i) { // all reds, all greens, all blues
            header.palette.push_back(
                {colours[i], colours[kPaletteSize / 3 + i], colours[2 * kPaletteSize / 3 + i]});
        }
    }
    reader.skip(reader.u32()); // resources
    std::uint64_t const layers = header.is_large ? reader.u64() : reader.u32();
    if (layers > reader.left()) {
        source.refuse_as_damaged();
    }
    reader.skip(static_cast<std::size_t>(layers));
    return header;
}

/// Runs of one byte, and stretches as they are.
void unpack(SourceFile const& source, std::span<std::uint8_t const> packed, std::span<std::uint8_t> row)
{
    while (!row.empty()) {
        if (packed.size() < 2) {
            source.refuse_as_damaged();
        }
        int const code = static_cast<std::int8_t>(packed[0]);
        packed = packed.subspan(1);
        if (code == -128) {
            continue;
        }
        bool const is_run = code < 0;
        auto const count = std::min(static_cast<std::size_t>(is_run ? 1 - code : 1 + code), row.size());
        if (!is_run && packed.size() < count) {
            source.refuse_as_damaged();
        }
        if (is_run) {
            std::fill_n(row.begin(), count, packed[0]);
        } else {
            std::copy_n(packed.begin(), count, row.begin());
        }
        packed = packed.subspan(is_run ? 1 : count);
        row = row.subspan(count);
    }
}

/// The rows of the channels that are taken, one channel behind the other.
class Rows {
public:
    Rows(ByteReader& reader, Header const& header)
        : reader_(reader), packed_sizes_(reader), row_(header.row())
    {
        unsigned const compression = reader.u16();
        if (compression == 2 || compression == 3) {
            reader.source().refuse("it is a Photoshop picture with ZIP compression", "save it as TIFF");
        }
        if (compression > 3) {
            reader.source().refuse_as_damaged();
        }
        is_packed_ = compression == 1;
        is_large_ = header.is_large;
        auto const rows = static_cast<std::size_t>(header.channels) * static_cast<std::size_t>(header.height);
        if (is_packed_) {
            packed_sizes_.go_to(reader.at());
            reader.skip(rows * (is_large_ ? 4 : 2));
        } else {
            reader.source().check_length(static_cast<double>(header.row()) * header.taken() * header.height);
        }
    }

    std::span<std::uint8_t const> next()
    {
        if (!is_packed_) {
            return reader_.take(row_.size());
        }
        std::size_t const size = is_large_ ? packed_sizes_.u32() : packed_sizes_.u16();
        unpack(reader_.source(), reader_.take(size), row_);
        return row_;
    }

private:
    ByteReader& reader_;
    ByteReader packed_sizes_;
    std::vector<std::uint8_t> row_;
    bool is_packed_ = false;
    bool is_large_ = false;
};

template <typename Sample>
Picture read_channels(Rows& rows, Header const& header, SampleType type)
{
    auto const channels = static_cast<std::size_t>(header.taken());
    Picture picture = make_picture(header.width, header.height, header.taken(), type);
    std::vector<Sample> row(static_cast<std::size_t>(header.width));
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (int y = 0; y < header.height; ++y) {
            put_samples<Sample>(rows.next(), ByteOrder::kBig, row);
            auto const to = row_from_top<Sample>(picture, y);
            for (std::size_t x = 0; x < row.size(); ++x) {
                to[x * channels + channel] = row[x];
            }
        }
    }
    return picture;
}

Picture read_numbers(Rows& rows, Header const& header)
{
    bool const is_bits = header.mode == kBits;
    Picture picture = make_picture(header.width, header.height, is_bits ? 1 : 3);
    std::vector<std::uint8_t> numbers(static_cast<std::size_t>(header.width));
    for (int y = 0; y < header.height; ++y) {
        auto const to = row_from_top<std::uint8_t>(picture, y);
        unpack_bits(rows.next(), static_cast<std::size_t>(header.bits), numbers);
        if (!is_bits) {
            put_colours(numbers, header.palette, to);
        } else {
            std::transform(numbers.begin(), numbers.end(), to.begin(),
                           [](std::uint8_t bit) { return static_cast<std::uint8_t>(bit != 0 ? 0 : 255); });
        }
    }
    return picture;
}

/// Colours of inks: a channel is what cyan, magenta or yellow and black let through.
template <typename Sample>
Picture without_inks(Picture const& inks, int channels)
{
    double const full = full_scale(inks.type);
    Picture picture = make_picture(inks.width, inks.height, channels, inks.type);
    auto from = inks.samples<Sample>();
    auto to = picture.samples<Sample>();
    for (; !to.empty(); to = to.subspan(static_cast<std::size_t>(channels))) {
        for (std::size_t c = 0; c < 3; ++c) {
            double const light = static_cast<double>(from[c]) * static_cast<double>(from[3]) / full;
            to[c] = static_cast<Sample>(inks.type == SampleType::kFloat ? light : light + 0.5);
        }
        if (channels == 4) {
            to[3] = from[4];
        }
        from = from.subspan(static_cast<std::size_t>(inks.channels));
    }
    return picture;
}

Picture read_picture(Rows& rows, Header const& header)
{
    if (header.mode == kBits || header.mode == kIndexed) {
        return read_numbers(rows, header);
    }
    bool const has_inks = header.mode == kInks;
    int const channels = has_inks && header.has_alpha() ? 4 : 3;
    if (header.bits == 8) {
        Picture const picture = read_channels<std::uint8_t>(rows, header, SampleType::kUint8);
        return has_inks ? without_inks<std::uint8_t>(picture, channels) : picture;
    }
    if (header.bits == 16) {
        Picture const picture = read_channels<std::uint16_t>(rows, header, SampleType::kUint16);
        return has_inks ? without_inks<std::uint16_t>(picture, channels) : picture;
    }
    Picture const picture = read_channels<float>(rows, header, SampleType::kFloat);
    return has_inks ? without_inks<float>(picture, channels) : picture;
}

/// Photoshop's files: the picture that all layers make together.
class PsdDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("8BPS"); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        Header const header = read_header(reader);
        Rows rows(reader, header);
        DecodedFile file{read_picture(rows, header), header.mode == kIndexed,
                         header.is_large ? "PSB" : "PSD"};
        if (header.mode == kInks) {
            file.notes.emplace_back("its inks (CMYK) are made colours, without a profile");
        } else if (header.mode == kTwoTones) {
            file.notes.emplace_back("its duotone is taken as grey");
        }
        return file;
    }
};

} // namespace

Decoder const& psd_decoder()
{
    static PsdDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
