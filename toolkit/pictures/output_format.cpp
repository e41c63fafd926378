// SPDX-License-Identifier: MIT
#include "toolkit/pictures/output_format.h"

#include "toolkit/base/text.h"

#include <fmt/format.h>

namespace umbrixlib::toolkit {

namespace {

constexpr int kSide = 65535;
constexpr int kJpegSide = 65500; // above it the encoder ends the process
constexpr char const* kJpeg = "JPEG is lossy and halves the resolution of colour, which a map is made of";
constexpr char const* kDds = "DDS is written with lossy DXT1 compression and without alpha";
constexpr char const* kHdr = "Radiance HDR rounds the channels of a texel to a common exponent";

// The fields in their order: extension, lossless, alpha, exact_alpha, powers_of_two, rows_from_the_top,
// longest_side, warning.
constexpr OutputFormat kFormats[] = {
    {".png", true, true, true, false, false, kSide, ""},
    {".tga", true, true, true, false, false, kSide, ""},
    {".tif", true, true, true, false, false, kSide, ""},
    {".tiff", true, true, true, false, false, kSide, ""},
    {".bmp", true, false, false, false, false, kSide, ""},
    {".psd", true, true, false, false, false, 30000, ""},
    {".sgi", true, true, true, false, false, kSide, ""},
    {".rgb", true, true, true, false, false, kSide, ""},
    {".rgba", true, true, true, false, false, kSide, ""},
    {".bw", true, true, true, false, false, kSide, ""},
    {".pcx", true, true, true, false, false, kSide, ""},
    {".ppm", true, false, false, false, false, kSide, ""},
    {".pgm", true, false, false, false, false, kSide, ""},
    {".pbm", true, false, false, false, false, kSide, ""},
    // The writer of this one puts the first row at the top of the picture, unlike all others.
    {".vtf", true, true, true, true, true, 32768, ""},
    {".jpg", false, false, false, false, false, kJpegSide, kJpeg},
    {".jpe", false, false, false, false, false, kJpegSide, kJpeg},
    {".jpeg", false, false, false, false, false, kJpegSide, kJpeg},
    {".dds", false, false, false, false, false, kSide, kDds},
    {".hdr", false, false, false, false, false, kSide, kHdr},
};

} // namespace

OutputFormat const* output_format(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    for (OutputFormat const& format : kFormats) {
        if (extension == format.extension) {
            return &format;
        }
    }
    return nullptr;
}

std::string output_extensions()
{
    std::string all;
    for (OutputFormat const& format : kFormats) {
        all += fmt::format("{}{}", all.empty() ? "" : " ", format.extension);
    }
    return all;
}

} // namespace umbrixlib::toolkit
