// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/pictures/picture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace umbrixlib::toolkit {

/// What one channel of a file holds, in the file's own numbers: 0 to 255, 0 to 65535, or any.
struct ChannelRange {
    std::string name;
    double minimum;
    double maximum;
    double mean;
};

/// A file as DevIL decoded it. Hostile files can crash a decoder, so an object of this class is made in a
/// worker process only. It has DevIL to itself: one object at a time, and none while the library works on a
/// file.
class DecodedImage {
public:
    /// Reads @p file; @p subject names it in the Failure thrown if it cannot be read, or has more than
    /// @p max_texels texels or a side above 65535.
    DecodedImage(std::filesystem::path const& file, std::string const& subject, double max_texels);
    ~DecodedImage();
    DecodedImage(DecodedImage const&) = delete;
    DecodedImage& operator=(DecodedImage const&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    bool has_alpha() const { return channels_ == 2 || channels_ == 4; }
    int bits_per_channel() const { return 8 * bytes_per_channel_; }

    /// The library reads it without a conversion: 24 or 32 bits a texel.
    bool is_plain() const { return !palette_ && bytes_per_channel_ == 1 && channels_ >= 3; }

    /// "8-bit grey with alpha", "palette", "16-bit colour" and the like.
    std::string description() const;

    /// "grey", "red", "alpha" and the like.
    std::vector<std::string> channel_names() const;

    /// The picture in 8 bits a channel: rounded to the nearest, floats cut at 0 and 1, grey as three equal
    /// channels.
    Picture to_picture(bool with_alpha) const;

    /// Ranges of the channels as they are in the file; of a palette's colours.
    std::vector<ChannelRange> ranges() const;

private:
    enum class Sample { kByte, kShort, kFloat };

    void take_over();
    void convert(unsigned int format, Sample sample);
    template <typename Body>
    void for_each_sample(Body&& body) const;

    int width_ = 0;
    int height_ = 0;
    int channels_ = 0;
    int bytes_per_channel_ = 0;
    bool palette_ = false;
    bool blue_first_ = false;
    Sample sample_ = Sample::kByte;
    std::uint8_t const* data_ = nullptr; ///< DevIL's, or `converted_`.
    std::vector<std::uint8_t> converted_;
};

} // namespace umbrixlib::toolkit
