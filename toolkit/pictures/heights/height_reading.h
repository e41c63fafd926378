// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace umbrixlib::toolkit {

/// What of a coloured picture is the height.
enum class HeightChannel {
    kMean, ///< Of red, green and blue.
    kRed,
    kGreen,
    kBlue,
    kAlpha,
    kLuma, ///< 0.2126 red + 0.7152 green + 0.0722 blue (Rec. 709), of the numbers as they are.
};

/// What options and keys call the channels, in their order.
inline constexpr char const* kHeightChannelNames[] = {"mean", "r", "g", "b", "a", "luma"};

/// What heights become 0 and 1. Whole numbers stand for 0 to 1 already.
struct HeightRange {
    enum class How {
        kAsIs,  ///< 0 and 1. Heights outside are an error.
        kOwn,   ///< The lowest and the highest of the picture.
        kGiven, ///< `low` and `high`. What lies outside is cut.
    };
    How how = How::kAsIs;
    double low = 0.0;
    double high = 1.0;

    bool operator==(HeightRange const&) const = default;
};

/// What becomes of texels whose height is NaN or infinite.
struct InvalidTexels {
    std::optional<double> replacement{}; ///< A height, before the range. Empty: they are an error.

    bool operator==(InvalidTexels const&) const = default;
};

/// How heights are made of samples, in the order of the members.
struct HeightReading {
    HeightChannel channel = HeightChannel::kMean;
    InvalidTexels invalid{};
    HeightRange range{};
    bool invert = false; ///< 1 becomes 0.

    bool operator==(HeightReading const&) const = default;
};

/// "none", "auto" or "LO,HI", as options and keys have them; empty if @p text is none of these.
std::string text_of(HeightRange const& range);
std::optional<HeightRange> height_range_called(std::string const& text);

/// "none" or a number.
std::string text_of(InvalidTexels const& invalid);
std::optional<InvalidTexels> invalid_texels_called(std::string const& text);

} // namespace umbrixlib::toolkit
