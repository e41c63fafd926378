// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// TIFF files of each kind, written by libtiff from raw numbers.

#include "picture_files.h"

#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <tiffio.h>

namespace umbrixlib::test {

struct TiffKind {
    std::string mode = "w"; ///< Of TIFFOpen: "wb" has the high byte first, "w8" is BigTIFF.
    std::uint32_t width = 5;
    std::uint32_t height = 4;
    unsigned bits = 8;
    unsigned channels = 1;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int format = SAMPLEFORMAT_UINT;
    int compression = COMPRESSION_NONE;
    int predictor = 0;
    bool planar = false;
    std::uint32_t tile = 0;           ///< Texels a side; 0: strips.
    std::uint32_t rows_per_strip = 3; ///< The last strip is shorter.
    std::vector<std::uint16_t> extras{};
    std::function<void(TIFF*)> tags{}; ///< Sets further ones.
};

/// The raw numbers of a picture, channel by channel, texel by texel, the top row first.
using RawNumbers = std::vector<std::uint64_t>;

namespace tiff_detail {

/// One row, packed from the high end, or in the machine's bytes.
inline Bytes pack(RawNumbers const& numbers, unsigned bits)
{
    Bytes row;
    std::uint64_t held = 0;
    unsigned bits_held = 0;
    for (std::uint64_t const number : numbers) {
        if (bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64) { // of a little-endian machine
            for (unsigned shift = 0; shift < bits; shift += 8) {
                row.push_back(static_cast<std::uint8_t>(number >> shift));
            }
            continue;
        }
        held = held << bits | number;
        for (bits_held += bits; bits_held >= 8; bits_held -= 8) {
            row.push_back(static_cast<std::uint8_t>(held >> (bits_held - 8)));
        }
    }
    if (bits_held > 0) {
        row.push_back(static_cast<std::uint8_t>(held << (8 - bits_held)));
    }
    return row;
}

inline void check(bool good)
{
    if (!good) {
        throw std::runtime_error("libtiff has not written the file");
    }
}

/// Packs the rows of a block, and fills up with 0 what is outside the picture.
inline Bytes block_of(TiffKind const& kind, RawNumbers const& numbers, std::uint32_t left, std::uint32_t top,
                      std::uint32_t width, std::uint32_t height, unsigned plane)
{
    Bytes block;
    for (std::uint32_t y = top; y < top + height; ++y) {
        RawNumbers row;
        for (std::uint32_t x = left; x < left + width; ++x) {
            for (unsigned c = 0; c < kind.channels; ++c) {
                if (!kind.planar || c == plane) {
                    std::size_t const at = (static_cast<std::size_t>(y) * kind.width + x) * kind.channels + c;
                    row.push_back(x < kind.width && y < kind.height ? numbers.at(at) : 0);
                }
            }
        }
        Bytes const packed = pack(row, kind.bits);
        block.insert(block.end(), packed.begin(), packed.end());
    }
    return block;
}

} // namespace tiff_detail

inline Bytes tiff_file(TiffKind const& kind, RawNumbers const& numbers, std::filesystem::path const& scratch)
{
    using namespace tiff_detail;
    TIFF* const tiff = TIFFOpen(scratch.c_str(), kind.mode.c_str());
    check(tiff != nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kind.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kind.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.channels);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, kind.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
    if (kind.predictor != 0) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, kind.predictor);
    }
    if (!kind.extras.empty()) {
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(kind.extras.size()), kind.extras.data());
    }
    if (kind.tile > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kind.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, kind.tile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kind.rows_per_strip);
    }
    if (kind.tags) {
        kind.tags(tiff);
    }
    std::uint32_t const step_x = kind.tile > 0 ? kind.tile : kind.width;
    std::uint32_t const step_y = kind.tile > 0 ? kind.tile : kind.rows_per_strip;
    for (unsigned plane = 0; plane < (kind.planar ? kind.channels : 1); ++plane) {
        for (std::uint32_t y = 0; y < kind.height; y += step_y) {
            for (std::uint32_t x = 0; x < kind.width; x += step_x) {
                std::uint32_t const rows = kind.tile > 0 ? step_y : std::min(step_y, kind.height - y);
                Bytes block = block_of(kind, numbers, x, y, step_x, rows, plane);
                auto const size = static_cast<tmsize_t>(block.size());
                auto const sample = static_cast<std::uint16_t>(plane);
                check((kind.tile > 0 ? TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, sample),
                                                            block.data(), size)
                                     : TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, sample),
                                                             block.data(), size)) == size);
            }
        }
    }
    TIFFClose(tiff);
    return read_file(scratch);
}

} // namespace umbrixlib::test
