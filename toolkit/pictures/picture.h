// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/picture_view.h"
#include "toolkit/pictures/formats/attributes.h"
#include "toolkit/pictures/texel_numbers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

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

/// The number that stands for 1.
constexpr double full_scale(SampleType type)
{
    return type == SampleType::kUint8 ? 255.0 : type == SampleType::kUint16 ? 65535.0 : 1.0;
}

/// Whether samples are whole numbers, which stand for 0 to 1 and are all finite.
constexpr bool is_whole(SampleType type)
{
    return type == SampleType::kUint8 || type == SampleType::kUint16;
}

/// A picture in memory. The first row is the bottom one, as in the library.
struct Picture {
    int width = 0;
    int height = 0;
    int channels = 0; ///< 1: grey; 2: and alpha; 3: red, green, blue; 4: and alpha.
    TexelBytes bytes; ///< Of the samples, in the machine's order.
    SampleType type = SampleType::kUint8;
    PictureKind kind = PictureKind::kUnknown;
    Attributes attributes{}; ///< What it tells of how it was made; results of other pictures have their own.

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

/// A picture of zeros of the same size, kind and attributes.
Picture make_alike(Picture const& source, int channels, SampleType type);

/// @p source without its alpha.
Picture without_alpha(Picture const& source);

/// @p source with the top row first, or back.
Picture upside_down(Picture const& source);

/// @p source in three equal channels if it is grey, with an alpha if asked for: its own, or 1.
Picture in_colour(Picture const& source, bool with_alpha);

/// @p source in floats.
Picture in_floats(Picture const& source);

/// Whether the colours are floats of which any lies below 0, as in a normal map of vectors.
bool has_vectors(Picture const& picture);

/// @p vectors as floats whose colours are 0 to 1 for -1 to 1; the alpha stays.
Picture encoded_vectors(Picture const& vectors);

float to_float(Half half);

/// The nearest half; of two, the one whose last bit is 0. Above 65504 it is infinite, and NaN stays NaN.
Half to_half(float number);

/// A sample in 8 bits: rounded to the nearest, floats cut at 0 and 1; NaN gives 0.
inline std::uint8_t to_byte(std::uint8_t sample)
{
    return sample;
}
inline std::uint8_t to_byte(std::uint16_t sample)
{
    return static_cast<std::uint8_t>((sample * 255U + 32767U) / 65535U);
}
inline std::uint8_t to_byte(float sample)
{
    return static_cast<std::uint8_t>(sample > 0.0f ? std::min(sample, 1.0f) * 255.0f + 0.5f : 0.0f);
}
inline std::uint8_t to_byte(Half sample)
{
    return to_byte(to_float(sample));
}

/// A sample in the picture's own numbers.
inline double to_number(Half sample)
{
    return static_cast<double>(to_float(sample));
}
template <typename Sample>
double to_number(Sample sample)
{
    return static_cast<double>(sample);
}

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
