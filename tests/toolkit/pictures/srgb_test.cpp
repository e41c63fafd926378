// SPDX-License-Identifier: MIT
/// sRGB to light and back.
#include "toolkit/pictures/srgb.h"

#include "toolkit/pictures/saving.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

TEST(Srgb, IsLinearLightInFloats)
{
    Picture grey = make_picture(4, 1, 2);
    grey.bytes = {0, 9, 10, 9, 128, 9, 255, 9};
    Picture const light = linear_colours(grey);
    ASSERT_EQ(light.channels, 3);
    float const expected[] = {0.0f, 10.0f / 255.0f / 12.92f, 0.2158605f, 1.0f};
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(light.samples<float>()[i], expected[i / 3], 1e-6f) << i;
    }
}

TEST(Srgb, LeavesFloatsAsTheyAre)
{
    Picture floats = make_picture(1, 1, 4, SampleType::kFloat);
    floats.samples<float>()[0] = 2.5f;
    EXPECT_EQ(linear_colours(floats).samples<float>()[0], 2.5f);
}

TEST(Srgb, ComesBackAsItWas)
{
    constexpr int kColours = 65536 / 3;
    Picture words = make_picture(kColours, 1, 3, SampleType::kUint16);
    for (std::size_t i = 0; i < words.samples<std::uint16_t>().size(); ++i) {
        words.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(i);
    }
    Picture floats = linear_colours(words);
    code_as_srgb(floats);
    EXPECT_EQ(in_samples(floats, {SampleType::kUint16, Rounding::kNearest, false}).bytes, words.bytes);
}

TEST(Srgb, CutsWhatLiesOutside)
{
    Picture floats = make_picture(1, 1, 3, SampleType::kFloat);
    floats.samples<float>()[0] = -1.0f;
    floats.samples<float>()[1] = 7.0f;
    code_as_srgb(floats);
    EXPECT_EQ(floats.samples<float>()[0], 0.0f);
    EXPECT_EQ(floats.samples<float>()[1], 1.0f);
}

} // namespace
} // namespace umbrixlib::test
