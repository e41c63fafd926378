// SPDX-License-Identifier: MIT
/// What is written reads back, in each type and each number of channels that a format has.
#include "decoding.h"
#include "toolkit/pictures/encoder.h"

#include <cmath>

namespace umbrixlib::test {
namespace {

using toolkit::Encoder;
using toolkit::make_picture;

/// Samples that are neither equal nor in order, with runs of some lengths.
Picture some_picture(int width, int height, int channels, SampleType type)
{
    Picture picture = make_picture(width, height, channels, type);
    for (std::size_t i = 0; i < picture.bytes.size() / toolkit::sample_size(type); ++i) {
        std::size_t const texel = i / static_cast<std::size_t>(channels);
        std::size_t const number = texel % 20 < 9 ? 200 : (i * i + i / 7) % 251;
        if (type == SampleType::kUint8) {
            picture.samples<std::uint8_t>()[i] = static_cast<std::uint8_t>(number);
        } else if (type == SampleType::kUint16) {
            picture.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(number * 257 + i % 200);
        } else if (type == SampleType::kFloat) {
            picture.samples<float>()[i] = static_cast<float>(number) * 3.7f - 100;
        }
    }
    return picture;
}

class Encoders : public Decoding {
protected:
    /// As it reads back, without more than its own channels.
    Picture read_back(Encoder const& encoder, char const* name, Picture const& picture) const
    {
        EXPECT_TRUE(encoder.encode(folder_ / name, picture)) << name;
        DecodedImage const image(folder_ / name, "input", kMostTexels);
        return image.to_picture(image.has_alpha());
    }

    void expect_same(Encoder const& encoder, char const* name, Picture const& picture, bool with_alpha) const
    {
        Picture const wanted = toolkit::in_colour(picture, with_alpha);
        Picture const read = read_back(encoder, name, picture);
        EXPECT_EQ(read.type, wanted.type) << name;
        EXPECT_EQ(read.channels, wanted.channels) << name;
        EXPECT_EQ(read.bytes, wanted.bytes) << name << ' ' << picture.channels << " channels";
    }
};

TEST_F(Encoders, KeepAllThatTheirFormatHolds)
{
    struct Case {
        Encoder const& encoder;
        char const* name;
        SampleType type;
        bool has_alpha;
    };
    Case const cases[] = {
        {toolkit::bmp_encoder(), "a.bmp", SampleType::kUint8, false},
        {toolkit::pcx_encoder(), "a.pcx", SampleType::kUint8, true},
        {toolkit::pfm_encoder(), "a.pfm", SampleType::kFloat, false},
        {toolkit::ppm_encoder(), "a.ppm", SampleType::kUint8, false},
        {toolkit::ppm_encoder(), "a.pgm", SampleType::kUint16, false},
        {toolkit::psd_encoder(), "a.psd", SampleType::kUint8, true},
        {toolkit::psd_encoder(), "a.psd", SampleType::kUint16, true},
        {toolkit::psd_encoder(), "a.psd", SampleType::kFloat, true},
        {toolkit::sgi_encoder(), "a.sgi", SampleType::kUint8, true},
        {toolkit::sgi_encoder(), "a.rgba", SampleType::kUint16, true},
        {toolkit::tga_encoder(), "a.tga", SampleType::kUint8, true},
        {toolkit::vtf_encoder(), "a.vtf", SampleType::kUint8, true},
    };
    for (Case const& one : cases) {
        for (int const channels : {1, 2, 3, 4}) {
            Picture const picture = some_picture(33, 5, channels, one.type);
            expect_same(one.encoder, one.name, picture, one.has_alpha && picture.has_alpha());
        }
        expect_same(one.encoder, one.name, some_picture(1, 1, 3, one.type), false);
    }
}

TEST_F(Encoders, OfRawHeightsKeepSquares)
{
    expect_same(toolkit::raw_encoder(), "a.r16", some_picture(7, 7, 1, SampleType::kUint16), false);
    expect_same(toolkit::raw_encoder(), "a.R32", some_picture(7, 7, 1, SampleType::kFloat), false);
    EXPECT_FALSE(
        toolkit::raw_encoder().encode(folder_ / "a.r16", some_picture(7, 6, 1, SampleType::kUint16)));
    EXPECT_FALSE(
        toolkit::raw_encoder().encode(folder_ / "a.r16", some_picture(7, 7, 3, SampleType::kUint16)));
    EXPECT_FALSE(
        toolkit::raw_encoder().encode(folder_ / "a.r32", some_picture(7, 7, 1, SampleType::kUint16)));
}

TEST_F(Encoders, OfHdrRoundToTheExponentOfATexel)
{
    for (int const width : {1, 7, 8, 300}) {
        Picture const picture = some_picture(width, 3, 3, SampleType::kFloat);
        Picture const read = read_back(toolkit::hdr_encoder(), "a.hdr", picture);
        auto const from = picture.samples<float>();
        auto const to = read.samples<float>();
        ASSERT_EQ(from.size(), to.size());
        for (std::size_t i = 0; i < from.size(); i += 3) {
            float const most = std::max({from[i], from[i + 1], from[i + 2], 0.0f});
            for (std::size_t c = 0; c < 3; ++c) {
                EXPECT_NEAR(static_cast<double>(std::max(from[i + c], 0.0f)), static_cast<double>(to[i + c]),
                            static_cast<double>(most) / 127)
                    << width << ' ' << i;
            }
        }
    }
    Picture odd = make_picture(8, 1, 3, SampleType::kFloat);
    odd.samples<float>()[0] = NAN;
    odd.samples<float>()[1] = INFINITY;
    odd.samples<float>()[2] = -1;
    Picture const read = read_back(toolkit::hdr_encoder(), "a.hdr", odd);
    EXPECT_EQ(read.samples<float>()[0], 0.0f);
    EXPECT_GT(read.samples<float>()[1], 9e37f);
    EXPECT_EQ(read.samples<float>()[2], 0.0f);
}

TEST_F(Encoders, OfDdsComeNearWhatTheyAreGiven)
{
    for (int const width : {1, 5, 16}) {
        Picture picture = make_picture(width, 6, 3);
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            std::size_t const x = i % static_cast<std::size_t>(width);
            for (std::size_t c = 0; c < 3; ++c) {
                picture.texel(i)[c] = static_cast<std::uint8_t>(10 * x + 40 * c);
            }
        }
        Picture const read = read_back(toolkit::dds_encoder(), "a.dds", picture);
        ASSERT_EQ(read.channels, 3);
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            EXPECT_NEAR(read.bytes[i], picture.bytes[i], 5) << width << ' ' << i;
        }
    }
}

TEST_F(Encoders, SayWhatTheyDoNotWrite)
{
    for (Encoder const* const encoder :
         {&toolkit::bmp_encoder(), &toolkit::dds_encoder(), &toolkit::pcx_encoder(), &toolkit::tga_encoder(),
          &toolkit::vtf_encoder()}) {
        EXPECT_FALSE(encoder->encode(folder_ / "x", some_picture(2, 2, 3, SampleType::kUint16)));
    }
    Picture const large = some_picture(99, 99, 3, SampleType::kUint8);
    for (Encoder const* const encoder :
         {&toolkit::bmp_encoder(), &toolkit::dds_encoder(), &toolkit::hdr_encoder(), &toolkit::pcx_encoder(),
          &toolkit::pfm_encoder(), &toolkit::ppm_encoder(), &toolkit::psd_encoder(), &toolkit::sgi_encoder(),
          &toolkit::vtf_encoder()}) {
        EXPECT_FALSE(encoder->encode("/nowhere/x", large));
        EXPECT_FALSE(encoder->encode("/dev/full", large));
    }
}

} // namespace
} // namespace umbrixlib::test
