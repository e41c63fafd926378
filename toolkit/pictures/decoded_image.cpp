// SPDX-License-Identifier: MIT
#include "toolkit/pictures/decoded_image.h"

#include "toolkit/base/failure.h"
#include "toolkit/pictures/devil/dds_file.h"
#include "toolkit/pictures/devil/devil.h"
#include "toolkit/pictures/devil/hdr_file.h"

#include <IL/il.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <new>
#include <sys/stat.h>

namespace umbrixlib::toolkit {

namespace {

constexpr int kLongestSide = 65535; // of the intermediate files

std::uint8_t to_byte(std::uint8_t value)
{
    return value;
}

std::uint8_t to_byte(std::uint16_t value)
{
    return static_cast<std::uint8_t>((value * 255U + 32767U) / 65535U);
}

std::uint8_t to_byte(float value)
{
    return static_cast<std::uint8_t>(value > 0.0f ? std::min(value, 1.0f) * 255.0f + 0.5f : 0.0f);
}

template <typename Value>
Value value_at(std::uint8_t const* data, std::size_t index)
{
    Value value;
    std::memcpy(&value, data + index * sizeof value, sizeof value);
    return value;
}

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

/// Whether a call of DevIL that failed was for want of memory.
bool ran_out_of_memory()
{
    for (ILenum error = 0; (error = ilGetError()) != IL_NO_ERROR;) {
        if (error == IL_OUT_OF_MEMORY) {
            return true;
        }
    }
    return false;
}

} // namespace

DecodedImage::DecodedImage(std::filesystem::path const& file, std::string const& subject, double max_texels)
{
    refuse_dds_with_too_little_data(file, subject);
    refuse_hdr_with_damaged_rows(file, subject);
    start_devil();
    FileStamp const before = stamp_of(file);
    bool const loaded = ilLoadImage(file.c_str()) != 0;
    if (stamp_of(file) != before) { // what was read may be a part of each
        throw Failure(Fault::kChangedWhileRead, subject, "it changed while it was read");
    }
    if (!loaded) {
        if (ran_out_of_memory()) {
            throw std::bad_alloc();
        }
        throw Failure(Fault::kDamagedPicture, subject, "it is damaged, or not an image of a known format");
    }
    width_ = ilGetInteger(IL_IMAGE_WIDTH);
    height_ = ilGetInteger(IL_IMAGE_HEIGHT);
    double const texels = static_cast<double>(width_) * height_;
    if (width_ < 1 || height_ < 1 || texels > max_texels) {
        throw Failure(
            Fault::kTooManyTexels, subject,
            fmt::format("its size of {} x {} is more than {:.0f} texels", width_, height_, max_texels));
    }
    if (width_ > kLongestSide || height_ > kLongestSide) {
        throw Failure(Fault::kSideTooLong, subject,
                      fmt::format("its size of {} x {} has a side above {}", width_, height_, kLongestSide));
    }
    take_over();
}

DecodedImage::~DecodedImage()
{
    stop_devil();
}

void DecodedImage::convert(unsigned int format, Sample sample)
{
    // Copying as luminance can crash; as colours it is right for every source.
    channels_ = format == IL_RGBA ? 4 : 3;
    sample_ = sample;
    bytes_per_channel_ = sample == Sample::kFloat ? 4 : 1;
    std::size_t const texels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    converted_.resize(texels * static_cast<std::size_t>(channels_ * bytes_per_channel_));
    ilCopyPixels(0, 0, 0, static_cast<ILuint>(width_), static_cast<ILuint>(height_), 1, format,
                 sample == Sample::kFloat ? IL_FLOAT : IL_UNSIGNED_BYTE, converted_.data());
    data_ = converted_.data();
}

void DecodedImage::take_over()
{
    ILint const format = ilGetInteger(IL_IMAGE_FORMAT);
    channels_ = ilGetInteger(IL_IMAGE_CHANNELS);
    bytes_per_channel_ = ilGetInteger(IL_IMAGE_BPC);
    blue_first_ = format == IL_BGR || format == IL_BGRA;
    data_ = ilGetData();
    palette_ = format == IL_COLOUR_INDEX;
    if (palette_) {
        convert(IL_RGB, Sample::kByte);
        return;
    }
    switch (ilGetInteger(IL_IMAGE_TYPE)) {
    case IL_UNSIGNED_BYTE:
        sample_ = Sample::kByte;
        break;
    case IL_UNSIGNED_SHORT:
        sample_ = Sample::kShort;
        break;
    case IL_FLOAT:
        sample_ = Sample::kFloat;
        break;
    default:
        blue_first_ = false;
        convert(channels_ == 2 || channels_ == 4 ? IL_RGBA : IL_RGB, Sample::kFloat);
        break;
    }
}

std::string DecodedImage::description() const
{
    if (palette_) {
        return "palette";
    }
    return fmt::format("{}-bit {}{}", bits_per_channel(), channels_ < 3 ? "grey" : "colour",
                       has_alpha() ? " with alpha" : "");
}

std::vector<std::string> DecodedImage::channel_names() const
{
    std::vector<std::string> names =
        channels_ < 3 ? std::vector<std::string>{"grey"} : std::vector<std::string>{"red", "green", "blue"};
    if (has_alpha()) {
        names.emplace_back("alpha");
    }
    return names;
}

/// Calls @p body(texel, channel, value) for every sample, the value in the file's type. Channels are counted
/// in the order of their names.
template <typename Body>
void DecodedImage::for_each_sample(Body&& body) const
{
    auto const walk = [&]<typename Value>(Value) {
        std::size_t const texels = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
        auto const channels = static_cast<std::size_t>(channels_);
        for (std::size_t i = 0; i < texels; ++i) {
            for (std::size_t c = 0; c < channels; ++c) {
                std::size_t const stored = blue_first_ && c < 3 ? 2 - c : c;
                body(i, c, value_at<Value>(data_, i * channels + stored));
            }
        }
    };
    switch (sample_) {
    case Sample::kByte:
        walk(std::uint8_t{});
        break;
    case Sample::kShort:
        walk(std::uint16_t{});
        break;
    case Sample::kFloat:
        walk(float{});
        break;
    }
}

Picture DecodedImage::to_picture(bool with_alpha) const
{
    Picture picture = make_picture(width_, height_, with_alpha ? 4 : 3);
    auto const target = static_cast<std::size_t>(picture.channels);
    bool const grey = channels_ < 3;
    std::size_t const alpha = has_alpha() ? static_cast<std::size_t>(channels_) - 1 : target;
    if (with_alpha && !has_alpha()) {
        std::fill(picture.bytes.begin(), picture.bytes.end(), std::uint8_t{255});
    }
    for_each_sample([&](std::size_t texel, std::size_t channel, auto value) {
        std::uint8_t* const to = &picture.bytes[texel * target];
        if (channel == alpha) {
            if (with_alpha) {
                to[3] = to_byte(value);
            }
        } else if (grey) {
            to[0] = to[1] = to[2] = to_byte(value);
        } else {
            to[channel] = to_byte(value);
        }
    });
    return picture;
}

std::vector<ChannelRange> DecodedImage::ranges() const
{
    std::vector<ChannelRange> ranges;
    for (std::string const& name : channel_names()) {
        ranges.push_back(
            {name, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 0.0});
    }
    for_each_sample([&](std::size_t, std::size_t channel, auto value) {
        ChannelRange& range = ranges[channel];
        auto const number = static_cast<double>(value);
        range.minimum = std::min(range.minimum, number);
        range.maximum = std::max(range.maximum, number);
        range.mean += number;
    });
    for (ChannelRange& range : ranges) {
        range.mean /= static_cast<double>(width_) * height_;
    }
    return ranges;
}

} // namespace umbrixlib::toolkit
