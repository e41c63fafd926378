// SPDX-License-Identifier: MIT
// Samples of every depth, from floats and back.
#include "toolkit/pictures/saving.h"

#include "toolkit/base/failure.h"
#include "toolkit/pictures/output_format.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

Picture of_floats(std::vector<float> const& values, PictureKind kind = PictureKind::kLight)
{
    Picture picture = make_picture(static_cast<int>(values.size()), 1, 1, SampleType::kFloat);
    picture.kind = kind;
    std::ranges::copy(values, picture.samples<float>().begin());
    return picture;
}

template <typename Sample>
std::vector<int> numbers(Picture const& picture)
{
    auto const samples = picture.samples<Sample>();
    return {samples.begin(), samples.end()};
}

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(Saving, EachHalfIsItselfAgain)
{
    for (unsigned bits = 0; bits < 65536; ++bits) {
        Half const half{static_cast<std::uint16_t>(bits)};
        float const number = to_float(half);
        if (std::isnan(number)) {
            EXPECT_TRUE(std::isnan(to_float(to_half(number)))) << bits;
        } else {
            EXPECT_EQ(to_half(number).bits, bits);
        }
    }
}

TEST(Saving, AFloatBecomesTheNearestHalf)
{
    for (unsigned bits = 0; bits < 0x7bffU; ++bits) {
        float const low = to_float({static_cast<std::uint16_t>(bits)});
        float const high = to_float({static_cast<std::uint16_t>(bits + 1)});
        float const middle = low + (high - low) / 2;
        EXPECT_EQ(to_half(std::nextafter(middle, low)).bits, bits);
        EXPECT_EQ(to_half(middle).bits, bits % 2 == 0 ? bits : bits + 1);
        EXPECT_EQ(to_half(std::nextafter(middle, high)).bits, bits + 1);
    }
    EXPECT_EQ(to_half(65519.996f).bits, 0x7bffU);
    EXPECT_EQ(to_half(65520.0f).bits, 0x7c00U);
    EXPECT_EQ(to_half(-1e30f).bits, 0xfc00U);
}

TEST(Saving, BytesAreCutOrRounded)
{
    Picture const floats = of_floats({-1.0f, 0.0f, 0.9f / 255, 100.6f / 255, 1.0f, 7.0f, kNan});
    EXPECT_EQ(numbers<std::uint8_t>(in_samples(floats, {})), (std::vector{0, 0, 0, 100, 255, 255, 0}));
    EXPECT_EQ(numbers<std::uint8_t>(in_samples(floats, {SampleType::kUint8, Rounding::kNearest})),
              (std::vector{0, 0, 1, 101, 255, 255, 0}));
}

TEST(Saving, SixteenBitsAreRounded)
{
    Picture const floats = of_floats({0.4f / 65535, 0.6f / 65535, 0.5f, 2.0f, kNan});
    EXPECT_EQ(numbers<std::uint16_t>(in_samples(floats, {SampleType::kUint16})),
              (std::vector{0, 1, 32768, 65535, 0}));
}

TEST(Saving, WholeNumbersOfNormalsStandForMinusOneToOne)
{
    Picture const normals = of_floats({-1.0f, 0.0f, 1.0f}, PictureKind::kNormals);
    EXPECT_EQ(numbers<std::uint16_t>(in_samples(normals, {SampleType::kUint16})),
              (std::vector{0, 32768, 65535}));
    Picture const halves = in_samples(normals, {SampleType::kHalf});
    EXPECT_EQ(to_float(halves.samples<Half>()[0]), -1.0f);
}

TEST(Saving, NoiseHidesTheStepsOfBytesAndKeepsTheirMean)
{
    std::vector<float> const flat(100000, 100.25f / 255);
    SavedAs const as{SampleType::kUint8, Rounding::kCut, true};
    Picture const dithered = in_samples(of_floats(flat), as);
    EXPECT_EQ(dithered.bytes, in_samples(of_floats(flat), as).bytes) << "the same noise in every run";
    double mean = 0;
    for (std::uint8_t const byte : dithered.bytes) {
        ASSERT_TRUE(byte == 100 || byte == 101);
        mean += byte / 100000.0;
    }
    EXPECT_NEAR(mean, 100.25, 0.01);
}

TEST(Saving, FormatsRefuseDepthsThatTheyDoNotHold)
{
    Saving const deep{SampleType::kUint16};
    EXPECT_EQ(saved_as(deep, *output_format("a.png"), PictureKind::kLight, "a.png").depth,
              SampleType::kUint16);
    EXPECT_EQ(saved_as({}, *output_format("a.png"), PictureKind::kLight, "a.png").depth, SampleType::kUint8);
    try {
        saved_as(deep, *output_format("a.tga"), PictureKind::kLight, "a.tga");
        FAIL() << "a TGA has 8 bits";
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kDepthNotInFormat);
        EXPECT_EQ(failure.subject, "a.tga");
        EXPECT_EQ(failure.remedy, "8");
    }
}

} // namespace
} // namespace umbrixlib::test
