// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoded_image.h"

#include "toolkit/base/failure.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <limits>
#include <sys/stat.h>

namespace umbrixlib::toolkit {

namespace {

/// Device, number, size and time of a file: it is the same, unchanged, as long as these are.
using FileStamp = std::array<std::int64_t, 5>;

FileStamp stamp_of(std::filesystem::path const& file)
{
    struct stat status = {};
    if (stat(file.c_str(), &status) != 0) {
        return {};
    }
    return {static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino),
            status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

/// The first that takes the file decodes it. A long signature comes before a name, and that before a short
/// signature, which raw heights may begin with, too; TGA has none.
DecodedFile decoded(SourceFile& source)
{
    for (Decoder const* const decoder :
         {&png_decoder(),   &tiff_decoder(),      &exr_decoder(),  &jpeg_decoder(), &webp_decoder(),
          &gif_decoder(),   &raw_decoder(),       &pnm_decoder(),  &pfm_decoder(),  &bmp_decoder(),
          &dds_decoder(),   &ico_decoder(),       &sgi_decoder(),  &pcx_decoder(),  &sun_decoder(),
          &hdr_decoder(),   &psd_decoder(),       &fits_decoder(), &vtf_decoder(),  &refused_formats(),
          &alias_decoder(), &softimage_decoder(), &tga_decoder()}) {
        if (decoder->takes(source)) {
            return decoder->decode(source);
        }
    }
    source.refuse_as_damaged();
}

DecodedFile decode_unchanged(std::filesystem::path const& file, std::string const& subject, double max_texels)
{
    FileStamp const before = stamp_of(file);
    auto const check = [&] { // what was read may be a part of each
        if (stamp_of(file) != before) {
            throw Failure(Fault::kChangedWhileRead, subject, "it changed while it was read");
        }
    };
    try {
        SourceFile source(file, subject, max_texels);
        DecodedFile result = decoded(source);
        check();
        return result;
    } catch (Failure const&) {
        check();
        throw;
    }
}

} // namespace

DecodedImage::DecodedImage(std::filesystem::path const& file, std::string const& subject, double max_texels)
    : file_(decode_unchanged(file, subject, max_texels))
{
}

std::string DecodedImage::description() const
{
    if (file_.palette) {
        return "palette";
    }
    return fmt::format("{}-bit {}{}", bits_per_channel(), file_.picture.channels < 3 ? "grey" : "colour",
                       has_alpha() ? " with alpha" : "");
}

std::vector<std::string> DecodedImage::channel_names() const
{
    std::vector<std::string> names = file_.picture.channels < 3
                                         ? std::vector<std::string>{"grey"}
                                         : std::vector<std::string>{"red", "green", "blue"};
    if (has_alpha()) {
        names.emplace_back("alpha");
    }
    return names;
}

std::vector<ChannelRange> DecodedImage::ranges() const
{
    std::vector<ChannelRange> ranges;
    for (std::string const& name : channel_names()) {
        ranges.push_back(
            {name, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 0.0});
    }
    with_samples(file_.picture, [&](auto samples) {
        for (std::size_t i = 0; i < samples.size(); i += ranges.size()) {
            for (std::size_t channel = 0; channel < ranges.size(); ++channel) {
                ChannelRange& range = ranges[channel];
                double const number = to_number(samples[i + channel]);
                range.minimum = std::min(range.minimum, number);
                range.maximum = std::max(range.maximum, number);
                range.mean += number;
            }
        }
    });
    for (ChannelRange& range : ranges) {
        range.mean /= static_cast<double>(file_.picture.texels());
    }
    return ranges;
}

} // namespace umbrixlib::toolkit
