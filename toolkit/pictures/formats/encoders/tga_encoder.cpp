// SPDX-License-Identifier: MIT
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/encoders/output_stream.h"

#include <array>
#include <utility>

namespace umbrixlib::toolkit {

namespace {

std::array<std::uint8_t, 18> header_of(Picture const& picture)
{
    auto const low = [](int value) { return static_cast<std::uint8_t>(value & 255); };
    auto const high = [](int value) { return static_cast<std::uint8_t>(value >> 8); };
    std::array<std::uint8_t, 18> header{};
    header[2] = picture.channels < 3 ? 3 : 2; // greys or colours, without run lengths
    header[12] = low(picture.width);
    header[13] = high(picture.width);
    header[14] = low(picture.height);
    header[15] = high(picture.height);
    header[16] = low(picture.channels * 8);
    header[17] = picture.has_alpha() ? 8 : 0; // bits of alpha; the first row is the bottom one
    return header;
}

class TgaEncoder : public Encoder {
public:
    bool encode(std::filesystem::path const& file, Picture const& picture) const override
    {
        if (picture.type != SampleType::kUint8) {
            return false;
        }
        auto const channels = static_cast<std::size_t>(picture.channels);
        std::size_t const row_bytes = static_cast<std::size_t>(picture.width) * channels;
        OutputStream stream(file);
        bool good = stream.write(header_of(picture));
        std::vector<std::uint8_t> row;
        for (std::size_t at = 0; good && at < picture.bytes.size(); at += row_bytes) {
            auto const first = picture.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            row.assign(first, first + static_cast<std::ptrdiff_t>(row_bytes));
            for (std::size_t i = 0; channels >= 3 && i < row_bytes; i += channels) {
                std::swap(row[i], row[i + 2]);
            }
            good = stream.write(row);
        }
        return stream.close();
    }
};

} // namespace

Encoder const& tga_encoder()
{
    static TgaEncoder const encoder;
    return encoder;
}

} // namespace umbrixlib::toolkit
