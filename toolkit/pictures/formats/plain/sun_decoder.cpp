// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <algorithm>

namespace umbrixlib::toolkit {

namespace {

enum Kind { kOld = 0, kStandard = 1, kRuns = 2, kRedFirst = 3 };

constexpr std::uint8_t kRunMark = 128;
constexpr double kLongestRun = 256;

struct Header {
    int width;
    int height;
    unsigned bits;
    unsigned kind;
    std::vector<Colour> map;

    std::size_t row() const { return (static_cast<std::size_t>(width) * bits + 15) / 16 * 2; }
    std::size_t size() const { return row() * static_cast<std::size_t>(height); }
};

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    reader.skip(4);
    double const width = reader.u32();
    double const height = reader.u32();
    source.check_size(width, height);
    Header header{static_cast<int>(width), static_cast<int>(height), reader.u32(), 0, {}};
    reader.skip(4);
    header.kind = reader.u32();
    unsigned const map_kind = reader.u32();
    std::size_t const map_size = reader.u32();
    bool const sound = header.bits == 1 || header.bits == 8 || header.bits == 24 || header.bits == 32;
    if (!sound || header.kind > kRedFirst) {
        source.refuse_as_damaged();
    }
    auto const map = reader.take(map_size);
    std::size_t const colours = map_kind == 1 && header.bits <= 8 ? map_size / 3 : 0;
    for (std::size_t i = 0; i < colours; ++i) { // all reds, all greens, all blues
        header.map.push_back({map[i], map[colours + i], map[2 * colours + i]});
    }
    return header;
}

std::vector<std::uint8_t> read_rows(ByteReader& reader, Header const& header)
{
    double const size = static_cast<double>(header.size());
    reader.source().check_length(header.kind == kRuns ? size / kLongestRun : size);
    std::vector<std::uint8_t> rows(header.size());
    for (std::span<std::uint8_t> left(rows); !left.empty();) {
        if (header.kind != kRuns) {
            auto const bytes = reader.take(left.size());
            std::copy(bytes.begin(), bytes.end(), left.begin());
            break;
        }
        std::uint8_t byte = reader.u8();
        std::size_t count = 1;
        if (byte == kRunMark) {
            count = 1U + reader.u8();
            byte = count == 1 ? byte : reader.u8();
        }
        count = std::min(count, left.size());
        std::fill_n(left.begin(), count, byte);
        left = left.subspan(count);
    }
    return rows;
}

Picture read_numbers(Header const& header, std::span<std::uint8_t const> rows)
{
    Picture picture = make_picture(header.width, header.height, header.map.empty() ? 1 : 3);
    std::vector<std::uint8_t> numbers(static_cast<std::size_t>(header.width));
    for (int y = 0; y < header.height; ++y) {
        auto const to = row_from_top<std::uint8_t>(picture, y);
        unpack_bits(rows.subspan(static_cast<std::size_t>(y) * header.row()), header.bits, numbers);
        if (!header.map.empty()) {
            put_colours(numbers, header.map, to);
        } else { // a bit is set where it is black
            std::transform(numbers.begin(), numbers.end(), to.begin(), [&](std::uint8_t number) {
                return header.bits == 8 ? number : static_cast<std::uint8_t>(number != 0 ? 0 : 255);
            });
        }
    }
    return picture;
}

/// The first byte of four is an alpha if it tells texels apart.
bool has_alpha(Header const& header, std::span<std::uint8_t const> rows)
{
    for (std::size_t i = 0; header.bits == 32 && i < rows.size(); i += 4) {
        if (rows[i] != rows[0]) {
            return true;
        }
    }
    return false;
}

Picture read_colours(Header const& header, std::span<std::uint8_t const> rows)
{
    std::size_t const size = header.bits / 8;
    int const channels = has_alpha(header, rows) ? 4 : 3;
    Picture picture = make_picture(header.width, header.height, channels);
    for (int y = 0; y < header.height; ++y) {
        auto from = rows.subspan(static_cast<std::size_t>(y) * header.row());
        auto to = row_from_top<std::uint8_t>(picture, y);
        for (; !to.empty(); to = to.subspan(static_cast<std::size_t>(channels))) {
            auto const colour = from.subspan(size - 3, 3);
            bool const red_first = header.kind == kRedFirst;
            to[0] = colour[red_first ? 0 : 2];
            to[1] = colour[1];
            to[2] = colour[red_first ? 2 : 0];
            if (channels == 4) {
                to[3] = from[0];
            }
            from = from.subspan(size);
        }
    }
    return picture;
}

class SunDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("\x59\xa6\x6a\x95"); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        Header const header = read_header(reader);
        std::vector<std::uint8_t> const rows = read_rows(reader, header);
        return {header.bits <= 8 ? read_numbers(header, rows) : read_colours(header, rows),
                !header.map.empty(), "Sun raster"};
    }
};

} // namespace

Decoder const& sun_decoder()
{
    static SunDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
