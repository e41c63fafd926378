// SPDX-License-Identifier: MIT
#include "formats/direct.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <png.h>
#include <tiffio.h>

namespace umbrixlib::bench {

namespace {

void need(bool good, char const* what)
{
    if (!good) {
        std::fprintf(stderr, "%s failed\n", what);
        std::exit(1);
    }
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File opened(std::string const& file, char const* mode)
{
    File stream(std::fopen(file.c_str(), mode), std::fclose);
    need(stream != nullptr, file.c_str());
    return stream;
}

std::vector<png_bytep> rows_of(DirectPicture const& picture)
{
    std::vector<png_bytep> rows(static_cast<std::size_t>(picture.height));
    std::size_t const row = picture.bytes.size() / rows.size();
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = const_cast<png_bytep>(picture.bytes.data() + y * row);
    }
    return rows;
}

constexpr bool kSwaps = std::endian::native == std::endian::little;

} // namespace

void write_png_directly(std::string const& file, DirectPicture const& picture)
{
    File const stream = opened(file, "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, stream.get());
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 16, picture.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (kSwaps) {
        png_set_swap(png);
    }
    png_write_image(png, rows_of(picture).data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
}

DirectPicture read_png_directly(std::string const& file)
{
    File const stream = opened(file, "rb");
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, stream.get());
    png_read_info(png, info);
    if (kSwaps) {
        png_set_swap(png);
    }
    png_read_update_info(png, info);
    DirectPicture picture{static_cast<int>(png_get_image_width(png, info)),
                          static_cast<int>(png_get_image_height(png, info)),
                          png_get_channels(png, info),
                          {}};
    picture.bytes.resize(png_get_rowbytes(png, info) * static_cast<std::size_t>(picture.height));
    png_read_image(png, rows_of(picture).data());
    png_destroy_read_struct(&png, &info, nullptr);
    return picture;
}

void write_tiff_directly(std::string const& file, DirectPicture const& picture, int bits, int compression)
{
    TIFF* const tiff = TIFFOpen(file.c_str(), "w");
    need(tiff != nullptr, file.c_str());
    std::size_t const row = picture.bytes.size() / static_cast<std::size_t>(picture.height);
    auto const strip = static_cast<int>(std::max<std::size_t>(std::size_t{256} * 1024 / row, 1));
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.channels);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, bits == 32 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, picture.channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, bits == 32 ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, strip);
    std::vector<std::uint8_t> rows; // the predictor changes them
    for (int y = 0; y < picture.height; y += strip) {
        auto const begin = picture.bytes.begin() + static_cast<std::ptrdiff_t>(row) * y;
        rows.assign(begin, begin + static_cast<std::ptrdiff_t>(row) * std::min(strip, picture.height - y));
        auto const size = static_cast<tmsize_t>(rows.size());
        need(TIFFWriteEncodedStrip(tiff, static_cast<std::uint32_t>(y / strip), rows.data(), size) == size,
             "a strip");
    }
    TIFFClose(tiff);
}

DirectPicture read_tiff_directly(std::string const& file)
{
    TIFF* const tiff = TIFFOpen(file.c_str(), "r");
    need(tiff != nullptr, file.c_str());
    DirectPicture picture;
    std::uint16_t channels = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &picture.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &picture.height);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &channels);
    picture.channels = channels;
    auto const row = static_cast<std::size_t>(TIFFScanlineSize(tiff));
    picture.bytes.resize(row * static_cast<std::size_t>(picture.height));
    std::size_t at = 0;
    for (std::uint32_t strip = 0; strip < TIFFNumberOfStrips(tiff); ++strip) {
        auto const left = static_cast<tmsize_t>(picture.bytes.size() - at);
        tmsize_t const size = TIFFReadEncodedStrip(tiff, strip, &picture.bytes[at], left);
        need(size > 0, "a strip");
        at += static_cast<std::size_t>(size);
    }
    TIFFClose(tiff);
    return picture;
}

} // namespace umbrixlib::bench
