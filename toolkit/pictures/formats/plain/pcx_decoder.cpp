// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace umbrixlib::toolkit {

namespace {

constexpr unsigned kBook = 0x3ade68b1; ///< Of several pages: DCX.
constexpr std::size_t kHeaderSize = 128;
constexpr std::size_t kPaletteSize = 768;
constexpr std::uint8_t kPaletteMark = 12;
constexpr unsigned kLongestRun = 63;

struct Header {
    int version;
    bool has_runs;
    int bits;
    int width;
    int height;
    std::vector<Colour> palette; ///< 16 colours.
    int planes;
    std::size_t row; ///< Bytes of one of a plane.
    bool is_grey;

    std::size_t size() const
    {
        return row * static_cast<std::size_t>(planes) * static_cast<std::size_t>(height);
    }
};

void add_colours(std::span<std::uint8_t const> bytes, std::vector<Colour>& palette)
{
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        palette.push_back({bytes[i], bytes[i + 1], bytes[i + 2]});
    }
}

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    std::size_t const start = reader.at();
    if (reader.u8() != 10) {
        source.refuse_as_damaged();
    }
    Header header{};
    header.version = reader.u8();
    unsigned const encoding = reader.u8();
    header.has_runs = encoding == 1;
    header.bits = reader.u8();
    int const left = reader.u16();
    int const top = reader.u16();
    header.width = reader.u16() - left + 1;
    header.height = reader.u16() - top + 1;
    reader.skip(4);
    add_colours(reader.take(48), header.palette);
    reader.skip(1);
    header.planes = reader.u8();
    header.row = reader.u16();
    header.is_grey = reader.u16() == 2;
    bool const is_colour =
        header.bits == 8 && (header.planes == 1 || header.planes == 3 || header.planes == 4);
    bool const is_few_colours = (header.bits == 1 && header.planes >= 1 && header.planes <= 4) ||
                                ((header.bits == 2 || header.bits == 4) && header.planes == 1);
    source.check_size(header.width, header.height);
    if (encoding > 1 || !(is_colour || is_few_colours) ||
        header.row * 8 < static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.bits)) {
        source.refuse_as_damaged();
    }
    reader.go_to(start + kHeaderSize);
    return header;
}

/// All planes of all rows. A run may go on in the next row.
std::vector<std::uint8_t> read_rows(ByteReader& reader, Header const& header)
{
    double const size = static_cast<double>(header.size());
    reader.source().check_length(header.has_runs ? size / kLongestRun : size);
    std::vector<std::uint8_t> rows(header.size());
    if (!header.has_runs) {
        auto const bytes = reader.take(rows.size());
        std::copy(bytes.begin(), bytes.end(), rows.begin());
        return rows;
    }
    for (std::size_t at = 0; at < rows.size();) {
        std::uint8_t const byte = reader.u8();
        if (byte < 0xc0) {
            rows[at++] = byte;
            continue;
        }
        std::size_t const count = std::min<std::size_t>(byte & kLongestRun, rows.size() - at);
        std::fill_n(rows.begin() + static_cast<std::ptrdiff_t>(at), count, reader.u8());
        at += count;
    }
    return rows;
}

/// The 256 colours at the end of the page, or at once behind the texels.
std::optional<std::vector<Colour>> read_palette(ByteReader reader, std::size_t end)
{
    std::size_t const behind = reader.at();
    for (std::size_t const at : {end - std::min(end, kPaletteSize + 1), behind}) {
        if (at < behind || at + 1 + kPaletteSize > end) {
            continue;
        }
        reader.go_to(at);
        if (reader.u8() == kPaletteMark) {
            std::vector<Colour> palette;
            add_colours(reader.take(kPaletteSize), palette);
            return palette;
        }
    }
    return std::nullopt;
}

/// The numbers of the colours of one row, from one plane or from one bit of several.
void number_texels(Header const& header, std::span<std::uint8_t const> row,
                   std::vector<std::uint8_t>& numbers)
{
    std::vector<std::uint8_t> plane(numbers.size());
    std::fill(numbers.begin(), numbers.end(), std::uint8_t{0});
    for (std::size_t i = 0; i < static_cast<std::size_t>(header.planes); ++i) {
        unpack_bits(row.subspan(i * header.row), static_cast<std::size_t>(header.bits), plane);
        for (std::size_t x = 0; x < numbers.size(); ++x) {
            numbers[x] = static_cast<std::uint8_t>(numbers[x] | plane[x] << i);
        }
    }
}

Picture read_numbers(Header const& header, std::span<std::uint8_t const> rows, std::vector<Colour> palette)
{
    if (header.bits == 1 && header.planes == 1 && palette[0] == palette[1]) {
        palette = {Colour{0, 0, 0}, Colour{255, 255, 255}};
    }
    std::size_t const size = header.row * static_cast<std::size_t>(header.planes);
    Picture picture = make_picture(header.width, header.height, 3);
    std::vector<std::uint8_t> numbers(static_cast<std::size_t>(header.width));
    for (int y = 0; y < header.height; ++y) {
        number_texels(header, rows.subspan(static_cast<std::size_t>(y) * size, size), numbers);
        put_colours(numbers, palette, row_from_top<std::uint8_t>(picture, y));
    }
    return picture;
}

Picture read_channels(Header const& header, std::span<std::uint8_t const> rows)
{
    auto const channels = static_cast<std::size_t>(header.planes);
    Picture picture = make_picture(header.width, header.height, header.planes);
    for (int y = 0; y < header.height; ++y) {
        auto const from = rows.subspan(static_cast<std::size_t>(y) * channels * header.row);
        auto const to = row_from_top<std::uint8_t>(picture, y);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            auto const plane = from.subspan(channel * header.row);
            for (std::size_t x = 0; x < to.size() / channels; ++x) {
                to[x * channels + channel] = plane[x];
            }
        }
    }
    return picture;
}

/// The page at which @p reader stands, which ends at @p end.
DecodedFile read_page(ByteReader& reader, std::size_t end)
{
    Header const header = read_header(reader);
    std::vector<std::uint8_t> const rows = read_rows(reader, header);
    if (header.bits == 8 && header.planes == 1) {
        auto const palette = read_palette(reader, end);
        if (!palette && header.version >= 5 && !header.is_grey) {
            reader.source().refuse_as_damaged();
        }
        return palette ? DecodedFile{read_numbers(header, rows, *palette), true, "PCX"}
                       : DecodedFile{read_channels(header, rows), false, "PCX"};
    }
    return header.bits == 8 ? DecodedFile{read_channels(header, rows), false, "PCX"}
                            : DecodedFile{read_numbers(header, rows, header.palette), true, "PCX"};
}

class PcxDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        auto const head = source.head();
        return source.begins_with("\xb1\x68\xde\x3a") ||
               (head.size() > 4 && head[0] == 10 && head[1] <= 5 && head[2] <= 1 && head[3] <= 8);
    }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source);
        if (reader.u32() != kBook) {
            reader.go_to(0);
            return read_page(reader, reader.left());
        }
        std::vector<std::size_t> places;
        for (std::size_t place = reader.u32(); place != 0; place = reader.u32()) {
            places.push_back(place);
        }
        if (places.empty()) {
            source.refuse_as_damaged();
        }
        reader.go_to(places[0]);
        std::size_t end = places[0] + reader.left();
        for (std::size_t const place : places) {
            end = place > places[0] ? std::min(end, place) : end;
        }
        DecodedFile file = read_page(reader, end);
        file.format = "DCX";
        if (places.size() > 1) {
            file.notes.push_back(fmt::format("the first of its {} pages is taken", places.size()));
        }
        return file;
    }
};

} // namespace

Decoder const& pcx_decoder()
{
    static PcxDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
