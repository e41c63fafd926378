// SPDX-License-Identifier: MIT
#include "toolkit/base/whole.h"
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/plain/rows.h"

#include <cstdlib>
#include <map>

namespace umbrixlib::toolkit {

namespace {

constexpr std::size_t kBlock = 2880;
constexpr std::size_t kCard = 80;

/// The numbers of a header by their names.
using Cards = std::map<std::string, double>;

Cards read_cards(ByteReader& reader)
{
    Cards cards;
    for (;;) {
        auto const bytes = reader.take(kCard);
        std::string const card(bytes.begin(), bytes.end());
        std::string const name = card.substr(0, card.find_first_of(" ="));
        if (name == "END") {
            break;
        }
        if (card.compare(8, 2, "= ") == 0) {
            cards[name] = std::strtod(card.c_str() + 10, nullptr);
        }
    }
    reader.go_to((reader.at() + kBlock - 1) / kBlock * kBlock);
    return cards;
}

double number_of(Cards const& cards, char const* name, double otherwise)
{
    auto const found = cards.find(name);
    return found == cards.end() ? otherwise : found->second;
}

struct Header {
    int width;
    int height;
    int channels;
    int bits; ///< Below 0: floats.
    double zero;
    double scale;

    std::size_t sample() const { return static_cast<std::size_t>(std::abs(bits)) / 8; }
    bool is_plain() const { return zero == 0 && scale == 1; }
    /// Whole numbers of 16 bits without a sign, as the format has them.
    bool is_shifted() const { return bits == 16 && zero == 32768 && scale == 1; }
};

Header read_header(ByteReader& reader)
{
    SourceFile const& source = reader.source();
    Cards const cards = read_cards(reader);
    double const axes = number_of(cards, "NAXIS", 0);
    double const width = number_of(cards, "NAXIS1", 0);
    double const height = axes >= 2 ? number_of(cards, "NAXIS2", 0) : 1;
    double const channels = axes >= 3 ? number_of(cards, "NAXIS3", 0) : 1;
    double const bits = number_of(cards, "BITPIX", 0);
    if (axes < 1 || (channels != 1 && channels != 3) || axes > 3) {
        source.refuse("it is a FITS file without a simple picture", "save its picture as TIFF");
    }
    if (!(bits == 8 || bits == 16 || bits == 32 || bits == -32 || bits == -64) || !is_whole(width) ||
        !is_whole(height)) {
        source.refuse_as_damaged();
    }
    source.check_size(width, height);
    return {static_cast<int>(width), static_cast<int>(height),     static_cast<int>(channels),
            static_cast<int>(bits),  number_of(cards, "BZERO", 0), number_of(cards, "BSCALE", 1)};
}

/// Bytes, the high one first, as the number that @p bits says.
double stored_number(std::span<std::uint8_t const> bytes, int bits)
{
    std::uint64_t number = 0;
    for (std::uint8_t const byte : bytes) {
        number = number << 8U | byte;
    }
    switch (bits) {
    case 8:
        return static_cast<double>(number);
    case 16:
        return static_cast<std::int16_t>(number);
    case 32:
        return static_cast<std::int32_t>(number);
    case -32:
        return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(number)));
    default:
        return std::bit_cast<double>(number);
    }
}

SampleType type_of(Header const& header)
{
    return header.bits == 8 && header.is_plain() ? SampleType::kUint8
           : header.is_shifted()                 ? SampleType::kUint16
                                                 : SampleType::kFloat;
}

/// Whole numbers are -1 to 1, or 0 to 1 if they are shifted to have no sign, unless the header says what they
/// stand for.
double full_of(Header const& header)
{
    if (header.bits == 32 && header.zero == 2147483648.0 && header.scale == 1) {
        return 4294967295.0;
    }
    if (!header.is_plain() || header.bits < 0 || header.bits == 8) {
        return 1;
    }
    return header.bits == 16 ? 32767.0 : 2147483647.0;
}

template <typename Sample>
void read_texels(ByteReader& reader, Header const& header, Picture& picture)
{
    auto const samples = picture.samples<Sample>();
    auto const channels = static_cast<std::size_t>(header.channels);
    double const full = full_of(header);
    for (std::size_t channel = 0; channel < channels; ++channel) { // the bottom row first
        for (std::size_t i = channel; i < samples.size(); i += channels) {
            double const number = stored_number(reader.take(header.sample()), header.bits);
            double const value = (header.zero + header.scale * number) / full;
            samples[i] = static_cast<Sample>(value);
        }
    }
}

class FitsDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override { return source.begins_with("SIMPLE  ="); }

    DecodedFile decode(SourceFile& source) const override
    {
        ByteReader reader(source, ByteOrder::kBig);
        Header const header = read_header(reader);
        double const texels = static_cast<double>(header.width) * header.height * header.channels;
        source.check_length(static_cast<double>(reader.at()) + texels * static_cast<double>(header.sample()));
        Picture picture = make_picture(header.width, header.height, header.channels, type_of(header));
        if (picture.type == SampleType::kUint8) {
            read_texels<std::uint8_t>(reader, header, picture);
        } else if (picture.type == SampleType::kUint16) {
            read_texels<std::uint16_t>(reader, header, picture);
        } else {
            read_texels<float>(reader, header, picture);
        }
        return {std::move(picture), false, "FITS"};
    }
};

} // namespace

Decoder const& fits_decoder()
{
    static FitsDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
