// SPDX-License-Identifier: MIT
#include "toolkit/pictures/output_format.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/devil/devil_formats.h"
#include "toolkit/pictures/encoder.h"

#include <fmt/format.h>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr int kSide = 65535;
constexpr int kJpegSide = 65500; // above it the encoder ends the process
constexpr char const* kJpeg = "JPEG is lossy and halves the resolution of colour, which a map is made of";
constexpr char const* kDds = "DDS is written with lossy DXT1 compression and without alpha";
constexpr char const* kHdr = "Radiance HDR rounds the channels of a texel to a common exponent";

std::vector<OutputFormat> formats_of_this_build()
{
    Encoder const* const png = &png_encoder();
    Encoder const* const tga = &tga_encoder();
    Encoder const* const ppm = &ppm_encoder();
    Encoder const* const devil = devil_encoder();
    // The fields in their order: extension, lossless, alpha, exact_alpha, powers_of_two, rows_from_the_top,
    // longest_side, warning, encoder.
    std::vector<OutputFormat> formats = {
        {".png", true, true, true, false, false, kSide, "", png},
        {".tga", true, true, true, false, false, kSide, "", tga},
        {".tif", true, true, true, false, false, kSide, "", devil},
        {".tiff", true, true, true, false, false, kSide, "", devil},
        {".bmp", true, false, false, false, false, kSide, "", devil},
        {".psd", true, true, false, false, false, 30000, "", devil},
        {".sgi", true, true, true, false, false, kSide, "", devil},
        {".rgb", true, true, true, false, false, kSide, "", devil},
        {".rgba", true, true, true, false, false, kSide, "", devil},
        {".bw", true, true, true, false, false, kSide, "", devil},
        {".pcx", true, true, true, false, false, kSide, "", devil},
        {".ppm", true, false, false, false, false, kSide, "", ppm},
        {".pgm", true, false, false, false, false, kSide, "", ppm},
        {".pbm", true, false, false, false, false, kSide, "", ppm},
        // The writer of this one puts the first row at the top of the picture, unlike all others.
        {".vtf", true, true, true, true, true, 32768, "", devil},
        {".jpg", false, false, false, false, false, kJpegSide, kJpeg, devil},
        {".jpe", false, false, false, false, false, kJpegSide, kJpeg, devil},
        {".jpeg", false, false, false, false, false, kJpegSide, kJpeg, devil},
        {".dds", false, false, false, false, false, kSide, kDds, devil},
        {".hdr", false, false, false, false, false, kSide, kHdr, devil},
    };
    std::erase_if(formats, [](OutputFormat const& format) { return format.encoder == nullptr; });
    return formats;
}

std::vector<OutputFormat> const& all_formats()
{
    static std::vector<OutputFormat> const formats = formats_of_this_build();
    return formats;
}

} // namespace

OutputFormat const* output_format(std::filesystem::path const& file)
{
    std::string const extension = lower_case(file.extension().string());
    for (OutputFormat const& format : all_formats()) {
        if (extension == format.extension) {
            return &format;
        }
    }
    return nullptr;
}

std::string output_extensions()
{
    std::string all;
    for (OutputFormat const& format : all_formats()) {
        all += fmt::format("{}{}", all.empty() ? "" : " ", format.extension);
    }
    return all;
}

} // namespace umbrixlib::toolkit
