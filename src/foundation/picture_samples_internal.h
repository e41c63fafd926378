// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// How the samples of a picture are read, whatever type they have.

#include "common/rounding.h"
#include "common/vector_types.h"
#include "foundation/picture_view.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace umbrixlib::detail {

/// Every byte as 0..1.
inline constexpr auto kFromByte = [] {
    std::array<float, 256> values{};
    for (std::size_t byte = 0; byte < values.size(); ++byte) {
        values[byte] = narrow(static_cast<double>(byte) / 255.0);
    }
    return values;
}();

/// A byte as 0..1.
inline float from_byte(unsigned char byte)
{
    return kFromByte[byte];
}

/// The mean of three bytes as 0..1. Rounded to float the product is the quotient by 3, whatever the bytes
/// are; it takes a quarter of the time.
inline float mean_of_bytes(unsigned char a, unsigned char b, unsigned char c)
{
    return narrow((wide(from_byte(a)) + wide(from_byte(b)) + wide(from_byte(c))) * (1.0 / 3.0));
}

/// IEEE 754 binary16; a type of its own, so that it is not taken for a number.
struct Half {
    std::uint16_t bits;
};

/// @p half as a float; exact.
inline float from_half(Half half)
{
    constexpr std::uint32_t kTopExponent = 31;
    std::uint32_t const sign = std::uint32_t{half.bits & 0x8000U} << 16;
    std::uint32_t const exponent = half.bits >> 10 & 31U;
    std::uint32_t const fraction = half.bits & 1023U;
    if (exponent == 0) {
        float const magnitude = static_cast<float>(fraction) * 0x1p-24f;
        return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | sign);
    }
    std::uint32_t const wide_exponent = exponent == kTopExponent ? 255 : exponent + 112;
    return std::bit_cast<float>(sign | wide_exponent << 23 | fraction << 13);
}

// What a sample stands for, in double and rounded to float.

inline double exact_sample(std::uint8_t sample)
{
    return sample / 255.0;
}
inline double exact_sample(std::uint16_t sample)
{
    return sample / 65535.0;
}
inline double exact_sample(Half sample)
{
    return wide(from_half(sample));
}
inline double exact_sample(float sample)
{
    return wide(sample);
}

inline float sample_value(std::uint8_t sample)
{
    return from_byte(sample);
}
inline float sample_value(std::uint16_t sample)
{
    return narrow(exact_sample(sample));
}
inline float sample_value(Half sample)
{
    return from_half(sample);
}
inline float sample_value(float sample)
{
    return sample;
}

/// Samples of one type, by texel.
template <typename Sample>
struct TexelSamples {
    Sample const* first;
    std::ptrdiff_t stride;
    int green, blue; ///< Behind a texel's red one.
    int alpha;       ///< As `green`; below 0 if there is none.

    float3 colour(std::ptrdiff_t texel) const
    {
        Sample const* const at = first + texel * stride;
        return {sample_value(at[0]), sample_value(at[green]), sample_value(at[blue])};
    }

    /// The three colours before they are rounded to floats.
    std::array<double, 3> exact_colour(std::ptrdiff_t texel) const
    {
        Sample const* const at = first + texel * stride;
        return {exact_sample(at[0]), exact_sample(at[green]), exact_sample(at[blue])};
    }

    /// Mean of the three colours.
    float mean(std::ptrdiff_t texel) const
    {
        Sample const* const at = first + texel * stride;
        if constexpr (std::is_same_v<Sample, std::uint8_t>) {
            return mean_of_bytes(at[0], at[green], at[blue]);
        } else {
            float3 const c = colour(texel);
            return narrow((wide(c.x) + wide(c.y) + wide(c.z)) / 3.0);
        }
    }

    bool has_alpha() const { return alpha >= 0; }
    /// There must be one.
    double exact_alpha(std::ptrdiff_t texel) const { return exact_sample(first[texel * stride + alpha]); }
    /// 1 if there is none.
    float alpha_or_one(std::ptrdiff_t texel) const
    {
        return has_alpha() ? sample_value(first[texel * stride + alpha]) : 1.0f;
    }
};

/// Samples of any type and where a texel's lie.
struct PictureSamples {
    void const* samples; ///< Null for none.
    SampleType type;
    int stride;             ///< Samples from one texel to the next.
    int green, blue, alpha; ///< As in TexelSamples.

    /// Those of @p view, which has one to four channels. Grey stands for all three colours.
    static PictureSamples of(PictureView const& view)
    {
        bool const coloured = view.channels > 2;
        int const alpha = view.channels % 2 == 0 ? view.channels - 1 : -1;
        return {view.samples, view.type, view.channels, coloured ? 1 : 0, coloured ? 2 : 0, alpha};
    }

    /// Whether the samples of @p view can be read.
    static bool are_readable(PictureView const& view)
    {
        bool const is_empty = view.width == 0 || view.height == 0;
        return view.width >= 0 && view.height >= 0 && view.channels >= 1 && view.channels <= 4 &&
               (is_empty || view.samples != nullptr);
    }

    /// Calls @p body with the samples as TexelSamples of their type.
    template <typename Body>
    void visit(Body&& body) const
    {
        switch (type) {
        case SampleType::kUint8:
            return body(as<std::uint8_t>());
        case SampleType::kUint16:
            return body(as<std::uint16_t>());
        case SampleType::kHalf:
            return body(as<Half>());
        case SampleType::kFloat:
            return body(as<float>());
        }
    }

private:
    template <typename Sample>
    TexelSamples<Sample> as() const
    {
        return {static_cast<Sample const*>(samples), stride, green, blue, alpha};
    }
};

} // namespace umbrixlib::detail
