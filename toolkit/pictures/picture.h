// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/picture_view.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace umbrixlib::toolkit {

/// What the samples mean. Normals are encoded as 0 to 1 in whole numbers, and are -1 to 1 in floats.
enum class PictureKind { kUnknown, kHeights, kNormals, kLight };

/// A float of 16 bits (IEEE 754 binary16), as files have it.
struct Half {
    std::uint16_t bits;
};

/// Bytes of a sample.
constexpr std::size_t sample_size(SampleType type)
{
    return type == SampleType::kUint8 ? 1 : type == SampleType::kFloat ? 4 : 2;
}

/// A picture in memory. The first row is the bottom one, as in the library.
struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0;                ///< 1: grey; 2: and alpha; 3: red, green, blue; 4: and alpha.
    std::vector<std::uint8_t> bytes; ///< Of the samples, in the machine's order.
    SampleType type = SampleType::kUint8;
    PictureKind kind = PictureKind::kUnknown;

    std::size_t texels() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
    bool has_alpha() const { return channels % 2 == 0; }

    /// The channels of a texel of a picture of 8 bits.
    std::uint8_t* texel(std::size_t index) { return &bytes[index * static_cast<std::size_t>(channels)]; }
    std::uint8_t const* texel(std::size_t index) const
    {
        return &bytes[index * static_cast<std::size_t>(channels)];
    }

    /// As the library takes it.
    PictureView view() const { return {bytes.data(), width, height, channels, type}; }

    /// All samples, as what they are: std::uint8_t, std::uint16_t, Half or float.
    template <typename Sample>
    std::span<Sample> samples()
    {
        return {reinterpret_cast<Sample*>(bytes.data()), bytes.size() / sizeof(Sample)};
    }
    template <typename Sample>
    std::span<Sample const> samples() const
    {
        return {reinterpret_cast<Sample const*>(bytes.data()), bytes.size() / sizeof(Sample)};
    }
};

/// A picture of zeros.
Picture make_picture(int width, int height, int channels, SampleType type = SampleType::kUint8);

/// @p source without its alpha.
Picture without_alpha(Picture const& source);

/// @p source with the top row first, or back.
Picture upside_down(Picture const& source);

/// @p source in three equal channels if it is grey, with an alpha if asked for: its own, or 1.
Picture in_colour(Picture const& source, bool with_alpha);

/// @p source in 8 bits a sample: rounded to the nearest, floats cut at 0 and 1.
Picture in_8_bits(Picture source);

float to_float(Half half);

/// Calls @p body with a span of all samples of @p picture.
template <typename Body>
decltype(auto) with_samples(Picture const& picture, Body&& body)
{
    switch (picture.type) {
    case SampleType::kUint16:
        return body(picture.samples<std::uint16_t>());
    case SampleType::kHalf:
        return body(picture.samples<Half>());
    case SampleType::kFloat:
        return body(picture.samples<float>());
    default:
        return body(picture.samples<std::uint8_t>());
    }
}

} // namespace umbrixlib::toolkit
