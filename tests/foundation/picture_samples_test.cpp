// SPDX-License-Identifier: MIT
#include "foundation/picture_samples_internal.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::PictureView;
using umbrixlib::SampleType;
using umbrixlib::detail::from_byte;
using umbrixlib::detail::from_half;
using umbrixlib::detail::Half;
using umbrixlib::detail::mean_of_bytes;
using umbrixlib::detail::PictureSamples;
using umbrixlib::detail::sample_value;

float quotient(unsigned char byte)
{
    return static_cast<float>(byte / 255.0);
}

TEST(PictureSamples, EveryByteIsTheRoundedQuotient)
{
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(from_byte(static_cast<unsigned char>(byte)), quotient(static_cast<unsigned char>(byte)));
    }
}

TEST(PictureSamples, TheMeanOfAnyThreeBytesIsTheRoundedQuotient)
{
    double of_byte[256];
    for (int byte = 0; byte < 256; ++byte) {
        of_byte[byte] = static_cast<double>(quotient(static_cast<unsigned char>(byte)));
    }
    int different = 0;
    for (int bytes = 0; bytes < 1 << 24; ++bytes) {
        int const a = bytes & 255;
        int const b = bytes >> 8 & 255;
        int const c = bytes >> 16;
        auto const expected = static_cast<float>((of_byte[a] + of_byte[b] + of_byte[c]) / 3.0);
        float const actual = mean_of_bytes(static_cast<unsigned char>(a), static_cast<unsigned char>(b),
                                           static_cast<unsigned char>(c));
        different += actual != expected ? 1 : 0;
    }
    EXPECT_EQ(different, 0);
}

/// The value of a half, from its definition.
double half_by_definition(unsigned bits)
{
    double const sign = (bits & 0x8000U) != 0 ? -1.0 : 1.0;
    int const exponent = static_cast<int>(bits >> 10 & 31U);
    double const fraction = bits & 1023U;
    if (exponent == 31) {
        return fraction != 0 ? std::nan("") : sign * HUGE_VAL;
    }
    return sign * (exponent == 0 ? std::ldexp(fraction, -24) : std::ldexp(1024.0 + fraction, exponent - 25));
}

TEST(PictureSamples, EveryHalfIsItsValue)
{
    for (unsigned bits = 0; bits < 65536; ++bits) {
        float const actual = from_half(Half{static_cast<std::uint16_t>(bits)});
        double const expected = half_by_definition(bits);
        if (std::isnan(expected)) {
            ASSERT_TRUE(std::isnan(actual)) << bits;
        } else {
            ASSERT_EQ(static_cast<double>(actual), expected) << bits;
            ASSERT_EQ(std::signbit(actual), std::signbit(expected)) << bits;
        }
    }
}

TEST(PictureSamples, SixteenBitsOfAnEightBitPictureAreTheSameFloats)
{
    for (unsigned byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(sample_value(static_cast<std::uint16_t>(byte * 257)),
                  sample_value(static_cast<std::uint8_t>(byte)));
    }
}

/// Two texels of every type and number of channels: colours, means and alphas.
template <typename Sample>
void expect_texels(SampleType type, std::vector<Sample> const& samples, std::vector<double> const& values)
{
    for (int channels = 1; channels <= 4; ++channels) {
        PictureView const view{samples.data(), 2, 1, channels, type};
        auto const at = [&](int texel, int channel) {
            return static_cast<float>(values[static_cast<std::size_t>(texel * channels + channel)]);
        };
        bool const coloured = channels > 2;
        PictureSamples::of(view).visit([&](auto const& read) {
            for (int i = 0; i < 2; ++i) {
                float3 const colour = read.colour(i);
                EXPECT_EQ(colour.x, at(i, 0));
                EXPECT_EQ(colour.y, at(i, coloured ? 1 : 0));
                EXPECT_EQ(colour.z, at(i, coloured ? 2 : 0));
                EXPECT_EQ(read.mean(i),
                          static_cast<float>((double(colour.x) + double(colour.y) + double(colour.z)) / 3.0));
                EXPECT_EQ(read.has_alpha(), channels % 2 == 0);
                EXPECT_EQ(read.alpha_or_one(i), channels % 2 == 0 ? at(i, channels - 1) : 1.0f);
                if (channels % 2 == 0) {
                    EXPECT_EQ(static_cast<float>(read.exact_alpha(i)), at(i, channels - 1));
                }
            }
        });
    }
}

TEST(PictureSamples, AreReadByTypeAndChannel)
{
    expect_texels<std::uint8_t>(
        SampleType::kUint8, {0, 1, 127, 255, 3, 200, 77, 128},
        {0, 1 / 255.0, 127 / 255.0, 1, 3 / 255.0, 200 / 255.0, 77 / 255.0, 128 / 255.0});
    expect_texels<std::uint16_t>(
        SampleType::kUint16, {0, 1, 127, 65535, 256, 257, 40000, 12345},
        {0, 1 / 65535.0, 127 / 65535.0, 1, 256 / 65535.0, 257 / 65535.0, 40000 / 65535.0, 12345 / 65535.0});
    expect_texels<std::uint16_t>(
        SampleType::kHalf, {0x0000, 0x3c00, 0x3800, 0xbc00, 0x3555, 0x0001, 0x7bff, 0x4000},
        {0, 1, 0.5, -1, half_by_definition(0x3555), half_by_definition(1), 65504, 2});
    std::vector<float> const floats{0.1f, -2.0f, 0.3f, 1e-30f, 7.0f, 0.5f, 1e20f, 0.25f};
    expect_texels<float>(SampleType::kFloat, floats, std::vector<double>(floats.begin(), floats.end()));
}

} // namespace
