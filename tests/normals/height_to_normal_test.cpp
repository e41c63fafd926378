// SPDX-License-Identifier: MIT
// HeightToNormal with the real kernels and the real DevIL.
#include "normals/height_to_normal.h"

#include "boundary/texture_kernels.h"
#include "filters/recursive_gaussian.h"
#include "random_image.h"
#include "same_bits.h"
#include "temporary_folder.h"
#include "test_picture.h"

#include <gtest/gtest.h>

namespace {

using umbrixlib::test::Picture;
using umbrixlib::test::random_image;
using umbrixlib::test::TemporaryFolder;

TEST(HeightToNormalBuffer, IsTheChainOfItsSteps)
{
    constexpr int kHeight = 19;
    constexpr int kWidth = 33;
    constexpr std::size_t kTexels = std::size_t{kHeight} * kWidth;
    std::vector<float> heights = random_image<float>(kTexels, 3);
    std::vector<float3> normals(kTexels);
    std::string text;
    int progress = 0;
    HeightToNormal(heights.data(), normals.data(), kHeight, kWidth, 3.0f, 1.5f, 0.5f, false, 0, 2.0f, false,
                   0.5f, 0.25f, false, &text, &progress);

    std::vector<float> filtered(kTexels);
    std::vector<float> scratch(kTexels);
    float spatial[3];
    float range[256] = {};
    GenerateExp(2.0f, spatial);
    GenerateExp(128.0f, range);
    BilateralFilter(heights.data(), filtered.data(), kHeight, kWidth, 2.0f, spatial, range);
    for (float& height : filtered) {
        height *= 3.0f;
    }
    gaussianFilterRGBA(filtered.data(), filtered.data(), scratch.data(), kWidth, kHeight, 1.5f);
    ChangeDepth(filtered.data(), kHeight, kWidth, 0.5f, 3.0f);
    std::vector<float3> expected(kTexels);
    Height2Normal(filtered.data(), expected.data(), kHeight, kWidth);
    NormalEdges(expected.data(), filtered.data(), kHeight, kWidth, 0.5f, 0.25f);
    EXPECT_SAME_BITS(expected, normals);
}

TEST(HeightToNormalFile, AFlatGreyImageGivesTheFlatNormal)
{
    TemporaryFolder const folder;
    Picture(8, 4, 3, 100).save(folder / "flat.tga");
    std::string text;
    int progress = 1;
    EXPECT_TRUE(HeightToNormal((folder / "flat.tga").c_str(), (folder / "out.tga").c_str(), 5.0f, 0.0f, false,
                               0, 3.0f, false, false, &text, &progress));
    Picture const out = Picture::load(folder / "out.tga");
    ASSERT_EQ(out.width, 8);
    ASSERT_EQ(out.height, 4);
    for (std::size_t i = 0; i < out.bytes.size(); i += 3) {
        EXPECT_EQ(out.bytes[i], 127);
        EXPECT_EQ(out.bytes[i + 1], 127);
        EXPECT_EQ(out.bytes[i + 2], 255);
    }
}

TEST(HeightToNormalFile, ReplacesAnExistingFile)
{
    TemporaryFolder const folder;
    Picture(4, 4, 3, 100).save(folder / "in.tga");
    Picture(9, 9, 3, 1).save(folder / "out.tga");
    std::string text;
    int progress = 1;
    HeightToNormal((folder / "in.tga").c_str(), (folder / "out.tga").c_str(), 1.0f, 0.0f, false, 0, 0.0f,
                   false, false, &text, &progress);
    EXPECT_EQ(Picture::load(folder / "out.tga").width, 4);
}

TEST(HeightToNormalFile, GreenPointsUpThePicture)
{
    // A ramp that rises towards the top of the picture: its normals lean towards the bottom.
    TemporaryFolder const folder;
    Picture ramp(4, 8, 3, 0);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 4; ++x) {
            ramp.set(x, y,
                     {static_cast<unsigned char>(y * 16), static_cast<unsigned char>(y * 16),
                      static_cast<unsigned char>(y * 16)});
        }
    }
    ramp.save(folder / "ramp.tga"); // y counts from the bottom row
    std::string text;
    int progress = 1;
    HeightToNormal((folder / "ramp.tga").c_str(), (folder / "out.tga").c_str(), 1.0f, 0.0f, false, 0, 0.0f,
                   false, false, &text, &progress);
    Picture const out = Picture::load(folder / "out.tga");
    EXPECT_LT(out.at(1, 4)[1], 127);
    EXPECT_EQ(out.at(1, 4)[0], 127);
}

} // namespace
