// SPDX-License-Identifier: MIT
#include "toolkit/pictures/output_format.h"

#include "toolkit/base/text.h"
#include "toolkit/pictures/encoder.h"

#include <fmt/format.h>
#include <initializer_list>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

constexpr int kSide = 65535;
constexpr int kJpegSide = 65500; // above it the encoder ends the process
constexpr char const* kJpeg = "JPEG is lossy and halves the resolution of colour, which a map is made of";
constexpr char const* kDds = "DDS is written with lossy DXT1 compression and without alpha";
constexpr char const* kHdr = "Radiance HDR rounds the channels of a texel to a common exponent";

constexpr unsigned bits_of(std::initializer_list<SampleType> depths)
{
    unsigned bits = 0;
    for (SampleType const depth : depths) {
        bits |= OutputFormat::bit_of(depth);
    }
    return bits;
}

std::vector<OutputFormat> make_formats()
{
    using enum SampleType;
    constexpr unsigned kBytes = bits_of({kUint8});
    constexpr unsigned kWhole = bits_of({kUint8, kUint16});
    constexpr unsigned kMost = bits_of({kUint8, kUint16, kFloat});
    constexpr unsigned kFloats = bits_of({kFloat});
    // The fields in their order: extension, lossless, alpha, powers_of_two, longest_side,
    // warning, encoder, depths, heights_only.
    return {
        {".png", true, true, false, kSide, "", &png_encoder(), kWhole},
        {".tga", true, true, false, kSide, "", &tga_encoder(), kBytes},
        {".tif", true, true, false, kSide, "", &tiff_encoder(), kMost},
        {".tiff", true, true, false, kSide, "", &tiff_encoder(), kMost},
        {".exr", true, true, false, kSide, "", &exr_encoder(), bits_of({kHalf, kFloat})},
        {".bmp", true, false, false, kSide, "", &bmp_encoder(), kBytes},
        {".psd", true, true, false, 30000, "", &psd_encoder(), kMost},
        {".sgi", true, true, false, kSide, "", &sgi_encoder(), kWhole},
        {".rgb", true, true, false, kSide, "", &sgi_encoder(), kWhole},
        {".rgba", true, true, false, kSide, "", &sgi_encoder(), kWhole},
        {".bw", true, true, false, kSide, "", &sgi_encoder(), kWhole},
        {".pcx", true, true, false, kSide, "", &pcx_encoder(), kBytes},
        {".ppm", true, false, false, kSide, "", &ppm_encoder(), kWhole},
        {".pgm", true, false, false, kSide, "", &ppm_encoder(), kWhole},
        {".pbm", true, false, false, kSide, "", &ppm_encoder(), kWhole},
        {".pfm", true, false, false, kSide, "", &pfm_encoder(), kFloats},
        {".r16", true, false, false, kSide, "", &raw_encoder(), bits_of({kUint16}), true},
        {".r32", true, false, false, kSide, "", &raw_encoder(), kFloats, true},
        {".vtf", true, true, true, 32768, "", &vtf_encoder(), kBytes},
        {".jpg", false, false, false, kJpegSide, kJpeg, &jpeg_encoder(), kBytes},
        {".jpe", false, false, false, kJpegSide, kJpeg, &jpeg_encoder(), kBytes},
        {".jpeg", false, false, false, kJpegSide, kJpeg, &jpeg_encoder(), kBytes},
        {".dds", false, false, false, kSide, kDds, &dds_encoder(), kBytes},
        {".hdr", false, false, false, kSide, kHdr, &hdr_encoder(), bits_of({kUint8, kFloat})},
    };
}

std::vector<OutputFormat> const& all_formats()
{
    static std::vector<OutputFormat> const formats = make_formats();
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

Failure no_heights(OutputFormat const& format, std::string const& name)
{
    return {Fault::kHeightsOnly, name,
            fmt::format("{} files hold heights alone, in one channel", format.extension)};
}

Failure no_alpha(OutputFormat const& format, std::string const& name, std::string const& remedy)
{
    return {Fault::kNoAlphaInFormat, name, fmt::format("{} files hold no alpha", format.extension), remedy};
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
