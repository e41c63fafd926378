// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoder.h"
#include "toolkit/pictures/formats/colour_models.h"
#include "toolkit/pictures/formats/orientation.h"
#include "toolkit/pictures/formats/tiff_form.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace umbrixlib::toolkit {

namespace {

constexpr double kMostBlock =
    64.0 * 1024 * 1024; ///< Bytes that a strip or tile may have beyond the picture's.

/// The first picture of a TIFF file.
class TiffReader {
public:
    explicit TiffReader(SourceFile& source) : file_(source), form_(read_form(source, file_)) {}

    DecodedFile decode()
    {
        Picture picture = form_.by_rgba ? read_by_rgba() : read_samples();
        bool const palette = !form_.by_rgba && form_.photometric == PHOTOMETRIC_PALETTE;
        if (palette) {
            picture = in_palette_colours(picture);
        } else if (form_.photometric == PHOTOMETRIC_SEPARATED) {
            picture = from_inks(picture);
        } else if (form_.is_xyz) {
            make_rgb_of_xyz(picture);
        }
        picture.attributes = std::move(form_.attributes);
        if (form_.divide_by_alpha) {
            picture = divided_by_alpha(std::move(picture));
        }
        return {oriented(std::move(picture), form_.orientation), palette, "TIFF", std::move(form_.notes)};
    }

private:
    Picture read_by_rgba()
    {
        auto const orientation = form_.orientation; // rows come as they are in the file
        std::vector<std::uint32_t> texels(static_cast<std::size_t>(form_.width) * form_.height);
        file_.check(TIFFReadRGBAImageOriented(file_.get(), form_.width, form_.height, texels.data(),
                                              orientation, 1) != 0);
        Picture picture = make_picture(static_cast<int>(form_.width), static_cast<int>(form_.height), 3);
        for (std::size_t y = 0; y < form_.height; ++y) {
            for (std::size_t x = 0; x < form_.width; ++x) {
                std::uint32_t const from = texels[y * form_.width + x];
                std::uint8_t* const to = picture.texel((form_.height - 1 - y) * form_.width + x);
                to[0] = static_cast<std::uint8_t>(TIFFGetR(from));
                to[1] = static_cast<std::uint8_t>(TIFFGetG(from));
                to[2] = static_cast<std::uint8_t>(TIFFGetB(from));
            }
        }
        return picture;
    }

    /// All samples that are taken, strip by strip or tile by tile.
    Picture read_samples()
    {
        Picture picture = make_picture(static_cast<int>(form_.width), static_cast<int>(form_.height),
                                       static_cast<int>(form_.taken.size()), form_.samples.type());
        bool const tiled = TIFFIsTiled(file_.get()) != 0;
        std::uint32_t block_width = form_.width;
        std::uint32_t block_height = form_.height;
        if (tiled) {
            block_width = file_.number<std::uint32_t>(TIFFTAG_TILEWIDTH, 0);
            block_height = file_.number<std::uint32_t>(TIFFTAG_TILELENGTH, 0);
        } else {
            TIFFGetFieldDefaulted(file_.get(), TIFFTAG_ROWSPERSTRIP, &block_height);
            block_height = std::min(block_height, form_.height);
        }
        unsigned const in_block = form_.planar ? 1 : form_.samples_per_texel;
        auto const row_bytes =
            static_cast<std::size_t>(bytes_of_row(block_width, in_block, form_.samples.bits));
        double const block_bytes = static_cast<double>(row_bytes) * block_height;
        file_.check(block_width > 0 && block_height > 0 &&
                    block_bytes <= static_cast<double>(picture.bytes.size()) * 16 + kMostBlock);
        auto const told = tiled ? TIFFTileRowSize(file_.get()) : TIFFScanlineSize(file_.get());
        file_.check(static_cast<std::size_t>(told) == row_bytes);
        std::vector<std::uint8_t> block(row_bytes * block_height);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(form_.width) * in_block *
                                      sample_size(picture.type));
        for (unsigned plane = 0; plane < (form_.planar ? form_.samples_per_texel : 1U); ++plane) {
            auto const channel = std::find(form_.taken.begin(), form_.taken.end(), plane);
            if (form_.planar && channel == form_.taken.end()) {
                continue;
            }
            for (std::uint32_t top = 0; top < form_.height; top += block_height) {
                std::uint32_t const rows = std::min(block_height, form_.height - top);
                for (std::uint32_t left = 0; left < form_.width; left += block_width) {
                    read_block(tiled, left, top, plane, row_bytes * (tiled ? block_height : rows), block);
                    std::uint32_t const columns = std::min(block_width, form_.width - left);
                    for (std::uint32_t y = 0; y < rows; ++y) {
                        std::size_t const at =
                            static_cast<std::size_t>(form_.height - 1 - top - y) * form_.width + left;
                        take_row(&block[y * row_bytes], columns,
                                 static_cast<std::size_t>(channel - form_.taken.begin()), picture, at, row);
                    }
                }
            }
        }
        return picture;
    }

    void read_block(bool tiled, std::uint32_t left, std::uint32_t top, unsigned plane, std::size_t size,
                    std::vector<std::uint8_t>& block) const
    {
        auto const sample = static_cast<std::uint16_t>(plane);
        auto const bytes = static_cast<tmsize_t>(size);
        std::uint32_t const number = tiled ? TIFFComputeTile(file_.get(), left, top, 0, sample)
                                           : TIFFComputeStrip(file_.get(), top, sample);
        if (form_.compression == COMPRESSION_JBIG) {
            check_bits_of_jbig(number, bytes);
        }
        tmsize_t const read = tiled ? TIFFReadEncodedTile(file_.get(), number, block.data(), bytes)
                                    : TIFFReadEncodedStrip(file_.get(), number, block.data(), bytes);
        file_.check(read == bytes);
    }

    /// JBIG has a size and a number of planes of its own, which libtiff takes as they are: a short file could
    /// ask for very much memory and time.
    void check_bits_of_jbig(std::uint32_t number, tmsize_t bytes) const
    {
        constexpr std::size_t kPlanesAt = 2;
        constexpr std::size_t kWidthAt = 4;
        constexpr std::size_t kHeightAt = 8;
        constexpr std::size_t kEnd = 12;
        auto const content = file_.content();
        std::uint64_t const start = TIFFGetStrileOffset(file_.get(), number);
        file_.check(start <= content.size() && content.size() - start >= kEnd);
        auto const header = content.subspan(static_cast<std::size_t>(start), kEnd);
        // libtiff turns the bits of each byte over where the highest one is first.
        bool const turned = file_.defaulted(TIFFTAG_FILLORDER) == FILLORDER_MSB2LSB;
        auto const* const bits = TIFFGetBitRevTable(turned ? 1 : 0);
        auto const byte = [&](std::size_t at) { return std::uint64_t{bits[header[at]]}; };
        auto const word = [&](std::size_t at) {
            return byte(at) << 24 | byte(at + 1) << 16 | byte(at + 2) << 8 | byte(at + 3);
        };
        std::uint64_t const row = bytes_of_row(word(kWidthAt), 1, 1);
        file_.check(byte(kPlanesAt) == 1 && row * word(kHeightAt) <= static_cast<std::uint64_t>(bytes));
    }

    /// Puts a row of a block into the picture, from texel @p at on. @p row has room for its samples.
    void take_row(std::uint8_t const* packed, std::size_t columns, std::size_t channel, Picture& picture,
                  std::size_t at, std::vector<std::uint8_t>& row) const
    {
        std::size_t const size = sample_size(picture.type);
        auto const channels = static_cast<std::size_t>(picture.channels);
        std::uint8_t* const to = &picture.bytes[at * channels * size];
        std::size_t const in_block = form_.planar ? 1 : form_.samples_per_texel;
        if (in_block == channels) { // there is no order but theirs
            unpack(form_.samples, packed, columns * in_block, to);
            return;
        }
        unpack(form_.samples, packed, columns * in_block, row.data());
        auto const scatter = [&]<typename Sample>(Sample) {
            for (std::size_t i = form_.planar ? channel : 0; i < (form_.planar ? channel + 1 : channels);
                 ++i) {
                std::uint8_t const* from = row.data() + (form_.planar ? 0 : form_.taken[i] * sizeof(Sample));
                for (std::size_t x = 0; x < columns; ++x) {
                    std::memcpy(to + (x * channels + i) * sizeof(Sample),
                                from + x * in_block * sizeof(Sample), sizeof(Sample));
                }
            }
        };
        switch (size) {
        case 1:
            return scatter(std::uint8_t{});
        case 2:
            return scatter(std::uint16_t{});
        default:
            return scatter(std::uint32_t{});
        }
    }

    Picture in_palette_colours(Picture const& indexes) const
    {
        std::uint16_t* red = nullptr;
        std::uint16_t* green = nullptr;
        std::uint16_t* blue = nullptr;
        file_.check(TIFFGetField(file_.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 0);
        std::size_t const colours = std::size_t{1} << form_.samples.bits;
        return colours_of(indexes, {std::span{red, colours}, {green, colours}, {blue, colours}});
    }

    TiffFile file_;
    TiffForm form_;
};

class TiffDecoder : public Decoder {
public:
    bool takes(SourceFile const& source) const override
    {
        using namespace std::string_view_literals; // 42 is TIFF, 43 the one with offsets of 64 bits
        return source.begins_with("II*\0"sv) || source.begins_with("MM\0*"sv) ||
               source.begins_with("II+\0"sv) || source.begins_with("MM\0+"sv);
    }

    DecodedFile decode(SourceFile& source) const override { return TiffReader(source).decode(); }
};

} // namespace

Decoder const& tiff_decoder()
{
    static TiffDecoder const decoder;
    return decoder;
}

} // namespace umbrixlib::toolkit
