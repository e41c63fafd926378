// SPDX-License-Identifier: MIT
/// Pictures in memory, and how one sample type becomes another.
#include "toolkit/pictures/picture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace umbrixlib::toolkit {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

template <typename Sample>
Picture row_of(SampleType type, std::vector<Sample> const& samples)
{
    Picture picture = make_picture(static_cast<int>(samples.size()), 1, 1, type);
    std::copy(samples.begin(), samples.end(), picture.samples<Sample>().begin());
    return picture;
}

TEST(Halves, AreTheFloatsThatTheyStandFor)
{
    EXPECT_EQ(to_float({0x0000}), 0.0f);
    EXPECT_TRUE(std::signbit(to_float({0x8000})));
    EXPECT_EQ(to_float({0x3c00}), 1.0f);
    EXPECT_EQ(to_float({0xc000}), -2.0f);
    EXPECT_EQ(to_float({0x3555}), 0.333251953125f);
    EXPECT_EQ(to_float({0x7bff}), 65504.0f);
    EXPECT_EQ(to_float({0x0001}), std::ldexp(1.0f, -24)) << "the smallest";
    EXPECT_EQ(to_float({0x83ff}), -1023.0f * std::ldexp(1.0f, -24));
    EXPECT_EQ(to_float({0x0400}), std::ldexp(1.0f, -14));
    EXPECT_EQ(to_float({0x7c00}), kInfinity);
    EXPECT_EQ(to_float({0xfc00}), -kInfinity);
    EXPECT_TRUE(std::isnan(to_float({0x7e00})));
}

TEST(Samples, InBytesAreRoundedToTheNearest)
{
    auto const bytes_of = [](auto const& samples) {
        std::vector<int> bytes;
        for (auto const sample : samples) {
            bytes.push_back(to_byte(sample));
        }
        return bytes;
    };
    EXPECT_EQ(bytes_of(std::vector<std::uint16_t>{0, 128, 129, 32767, 32768, 65535}),
              (std::vector<int>{0, 0, 1, 127, 128, 255}));
    EXPECT_EQ(bytes_of(std::vector<float>{-1.0f, 0.5f, 1.0f, 7.0f, kNan, kInfinity}),
              (std::vector<int>{0, 128, 255, 255, 0, 255}));
    EXPECT_EQ(bytes_of(std::vector<Half>{{0x3800}, {0x3c00}, {0xbc00}}), (std::vector<int>{128, 255, 0}));
    EXPECT_EQ(bytes_of(std::vector<std::uint8_t>{1, 2, 255}), (std::vector<int>{1, 2, 255}));
}

TEST(PictureInFloats, HasEachSampleFromZeroToOne)
{
    auto const floats_of = [](Picture const& picture) {
        Picture const floats = in_floats(picture);
        auto const samples = floats.samples<float>();
        return std::vector<float>(samples.begin(), samples.end());
    };
    EXPECT_EQ(floats_of(row_of<std::uint8_t>(SampleType::kUint8, {0, 51, 255})),
              (std::vector<float>{0.0f, 0.2f, 1.0f}));
    EXPECT_EQ(floats_of(row_of<std::uint16_t>(SampleType::kUint16, {0, 13107, 65535})),
              (std::vector<float>{0.0f, 0.2f, 1.0f}));
    EXPECT_EQ(floats_of(row_of<Half>(SampleType::kHalf, {{0x3800}, {0xc000}})),
              (std::vector<float>{0.5f, -2.0f}));
    EXPECT_EQ(floats_of(row_of<float>(SampleType::kFloat, {-1.0f, 7.0f})), (std::vector<float>{-1.0f, 7.0f}));
}

TEST(PictureInColour, KeepsTheSampleType)
{
    Picture const grey = row_of<float>(SampleType::kFloat, {0.25f, 3.0f});
    Picture const colour = in_colour(grey, true);
    EXPECT_EQ(colour.type, SampleType::kFloat);
    auto const samples = colour.samples<float>();
    EXPECT_EQ(std::vector<float>(samples.begin(), samples.end()),
              (std::vector<float>{0.25f, 0.25f, 0.25f, 1.0f, 3.0f, 3.0f, 3.0f, 1.0f}));
    Picture const halves = in_colour(row_of<Half>(SampleType::kHalf, {{7}}), true);
    EXPECT_EQ(to_float(halves.samples<Half>()[3]), 1.0f);
}

TEST(PictureWithoutAlpha, KeepsTheOtherChannels)
{
    Picture picture = make_picture(2, 1, 4, SampleType::kUint16);
    for (std::size_t i = 0; i < 8; ++i) {
        picture.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(1000 * i);
    }
    Picture const result = without_alpha(picture);
    auto const samples = result.samples<std::uint16_t>();
    EXPECT_EQ(std::vector<int>(samples.begin(), samples.end()),
              (std::vector<int>{0, 1000, 2000, 4000, 5000, 6000}));
}

TEST(PictureUpsideDown, TurnsRows)
{
    Picture picture = make_picture(2, 3, 1);
    picture.bytes = {1, 2, 3, 4, 5, 6};
    EXPECT_EQ(upside_down(picture).bytes, (std::vector<std::uint8_t>{5, 6, 3, 4, 1, 2}));
}

TEST(PictureHasVectors, WhenOneColourIsBelowZero)
{
    Picture picture = make_picture(300, 700, 4, SampleType::kFloat);
    auto const samples = picture.samples<float>();
    EXPECT_FALSE(has_vectors(picture));
    samples.back() = -1.0f; // an alpha
    EXPECT_FALSE(has_vectors(picture));
    samples[samples.size() - 2] = -1.0f;
    EXPECT_TRUE(has_vectors(picture));
}

TEST(TexelNumbers, AreZeroAndCopied)
{
    for (std::size_t const size : {std::size_t{0}, std::size_t{5}, std::size_t{5} << 20U}) {
        TexelBytes bytes(size);
        EXPECT_TRUE(std::ranges::all_of(bytes, [](int byte) { return byte == 0; })) << size;
        std::ranges::fill(bytes, std::uint8_t{7});
        TexelBytes const copy = bytes;
        EXPECT_TRUE(copy == bytes);
        TexelBytes const moved = std::move(bytes);
        EXPECT_TRUE(moved == copy);
        EXPECT_TRUE(bytes.empty()); // NOLINT(bugprone-use-after-move): as it is told
    }
}

} // namespace
} // namespace umbrixlib::toolkit
