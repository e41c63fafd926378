// SPDX-License-Identifier: MIT
#include "toolkit/pictures/picture.h"

#include "toolkit/base/all_threads.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <limits>

namespace umbrixlib::toolkit {

namespace {

constexpr std::uint8_t one_of(std::uint8_t)
{
    return 255;
}

constexpr std::uint16_t one_of(std::uint16_t)
{
    return 65535;
}

constexpr Half one_of(Half)
{
    return {0x3c00};
}

constexpr float one_of(float)
{
    return 1.0f;
}

} // namespace

Picture make_picture(int width, int height, int channels, SampleType type)
{
    Picture picture{width, height, channels, {}, type};
    picture.bytes = TexelBytes(picture.texels() * static_cast<std::size_t>(channels) * sample_size(type));
    return picture;
}

Picture make_alike(Picture const& source, int channels, SampleType type)
{
    Picture result = make_picture(source.width, source.height, channels, type);
    result.kind = source.kind;
    result.attributes = source.attributes;
    return result;
}

Picture without_alpha(Picture const& source)
{
    Picture result = make_alike(source, source.channels - 1, source.type);
    std::size_t const from = static_cast<std::size_t>(source.channels) * sample_size(source.type);
    std::size_t const to = static_cast<std::size_t>(result.channels) * sample_size(source.type);
    for (std::size_t i = 0; i < source.texels(); ++i) {
        std::copy_n(&source.bytes[i * from], to, &result.bytes[i * to]);
    }
    return result;
}

Picture upside_down(Picture const& source)
{
    Picture result = source;
    std::size_t const row = result.bytes.size() / static_cast<std::size_t>(result.height);
    for (std::size_t y = 0; y < static_cast<std::size_t>(result.height); ++y) {
        auto const from = source.bytes.end() - static_cast<std::ptrdiff_t>((y + 1) * row);
        std::copy(from, from + static_cast<std::ptrdiff_t>(row),
                  result.bytes.begin() + static_cast<std::ptrdiff_t>(y * row));
    }
    return result;
}

Picture in_colour(Picture const& source, bool with_alpha)
{
    int const channels = with_alpha ? 4 : 3;
    if (source.channels == channels) {
        return source;
    }
    Picture result = make_alike(source, channels, source.type);
    with_samples(source, [&]<typename Sample>(std::span<Sample const> from) {
        auto const step = static_cast<std::size_t>(source.channels);
        std::size_t const next_colour = step < 3 ? 0 : 1;
        for_pieces(source.texels(), [&](std::size_t first, std::size_t end) {
            Sample* to = &result.samples<Sample>()[first * static_cast<std::size_t>(channels)];
            for (std::size_t i = first * step; i < end * step; i += step) {
                for (std::size_t c = 0; c < 3; ++c) {
                    *to++ = from[i + c * next_colour];
                }
                if (with_alpha) {
                    *to++ = source.has_alpha() ? from[i + step - 1] : one_of(Sample{});
                }
            }
        });
    });
    return result;
}

Picture in_floats(Picture const& source)
{
    Picture result = make_alike(source, source.channels, SampleType::kFloat);
    double const full = full_scale(source.type);
    float* const to = result.samples<float>().data();
    with_samples(source, [&](auto samples) {
        for_pieces(samples.size(), [&](std::size_t first, std::size_t end) {
            std::transform(&samples[first], &samples[first] + (end - first), to + first,
                           [full](auto sample) { return static_cast<float>(to_number(sample) / full); });
        });
    });
    return result;
}

bool has_vectors(Picture const& picture)
{
    if (picture.type != SampleType::kHalf && picture.type != SampleType::kFloat) {
        return false;
    }
    auto const channels = static_cast<std::size_t>(picture.channels);
    auto const colours = std::min<std::size_t>(channels, 3);
    std::atomic<bool> found = false;
    with_samples(picture, [&](auto samples) {
        for_pieces(picture.texels(), [&](std::size_t first, std::size_t end) {
            bool below = found;
            for (std::size_t i = first; i < end && !below; ++i) {
                auto const* const texel = &samples[i * channels];
                below =
                    std::any_of(texel, texel + colours, [](auto sample) { return to_number(sample) < 0.0; });
            }
            if (below) {
                found = true;
            }
        });
    });
    return found;
}

Picture encoded_vectors(Picture const& vectors)
{
    Picture result = in_floats(vectors);
    auto const samples = result.samples<float>();
    auto const channels = static_cast<std::size_t>(result.channels);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (i % channels < 3) {
            samples[i] = samples[i] * 0.5f + 0.5f;
        }
    }
    return result;
}

float to_float(Half half)
{
    std::uint32_t const sign = (half.bits & 0x8000U) << 16U;
    std::uint32_t const exponent = half.bits >> 10U & 31U;
    std::uint32_t const fraction = half.bits & 0x3ffU;
    if (exponent == 0) {
        float const small = std::ldexp(static_cast<float>(fraction), -24);
        return sign != 0 ? -small : small;
    }
    std::uint32_t const wide_exponent = exponent == 31 ? 255 : exponent + 112;
    return std::bit_cast<float>(sign | wide_exponent << 23U | fraction << 13U);
}

Half to_half(float number)
{
    auto const bits = std::bit_cast<std::uint32_t>(number);
    std::uint32_t const sign = bits >> 16U & 0x8000U;
    std::uint32_t const magnitude = bits & 0x7fffffffU;
    auto const half = [sign](std::uint32_t rest) { return Half{static_cast<std::uint16_t>(sign | rest)}; };
    if (magnitude > 0x7f800000U) {
        return half(0x7e00U);
    }
    if (magnitude >= 0x477ff000U) { // what rounds above 65504
        return half(0x7c00U);
    }
    if (magnitude < 0x38800000U) { // below the least normal half, steps of 2^-24
        float const steps = std::nearbyint(std::bit_cast<float>(magnitude) * 0x1p24f);
        return half(static_cast<std::uint32_t>(steps));
    }
    std::uint32_t const even = magnitude >> 13U & 1U;
    return half((magnitude - 0x38000000U + 0xfffU + even) >> 13U);
}

} // namespace umbrixlib::toolkit
