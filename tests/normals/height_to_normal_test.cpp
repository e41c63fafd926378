// SPDX-License-Identifier: MIT
// HeightToNormal with the real kernels and the real DevIL.
#include "normals/height_to_normal.h"

#include "boundary/message_box.h"
#include "boundary/texture_kernels.h"
#include "filters/recursive_gaussian.h"
#include "random_image.h"
#include "same_bits.h"
#include "temporary_folder.h"
#include "test_picture.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using umbrixlib::test::Picture;
using umbrixlib::test::random_image;
using umbrixlib::test::TemporaryFolder;

/// The steps of the buffer form one by one, with a filter radius of 2, a scale of 3 and a blur of 1.5.
std::vector<float3> step_by_step(std::vector<float>& heights, int height, int width)
{
    std::vector<float> filtered(heights.size());
    std::vector<float> scratch(heights.size());
    float spatial[3];
    float range[256] = {};
    GenerateExp(2.0f, spatial);
    GenerateExp(128.0f, range);
    BilateralFilter(heights.data(), filtered.data(), height, width, 2.0f, spatial, range);
    for (float& each : filtered) {
        each *= 3.0f;
    }
    gaussianFilterRGBA(filtered.data(), filtered.data(), scratch.data(), width, height, 1.5f);
    ChangeDepth(filtered.data(), height, width, 0.5f, 3.0f);
    std::vector<float3> normals(heights.size());
    Height2Normal(filtered.data(), normals.data(), height, width);
    NormalEdges(normals.data(), filtered.data(), height, width, 0.5f, 0.25f);
    return normals;
}

TEST(HeightToNormalBuffer, IsTheChainOfItsSteps)
{
    for (auto const& [height, width] : {std::pair{19, 33}, {1, 9}, {9, 1}, {1, 1}}) {
        auto heights = random_image<float>(static_cast<std::size_t>(height * width), 3);
        std::vector<float3> normals(heights.size());
        std::string text;
        int progress = 0;
        HeightToNormal(heights.data(), normals.data(), height, width, 3.0f, 1.5f, 0.5f, false, 0, 2.0f, false,
                       0.5f, 0.25f, false, &text, &progress);
        EXPECT_SAME_BITS(step_by_step(heights, height, width), normals) << height << " x " << width;
    }
}

TEST(HeightToNormalBuffer, ARadiusBelowOneHasATableOfOneFloatAndFiltersNothing)
{
    // Under address sanitizer a table that is too short would end the test.
    auto heights = random_image<float>(6 * 7, 4);
    auto const with_radius = [&](float radius) {
        std::vector<float3> normals(heights.size());
        std::string text;
        int progress = 0;
        HeightToNormal(heights.data(), normals.data(), 6, 7, 2.0f, 0.0f, 0.0f, false, 0, radius, false, 0.0f,
                       0.0f, false, &text, &progress);
        return normals;
    };
    auto const unfiltered = with_radius(1.0f);
    for (float const radius :
         {0.0f, -0.0f, 0.5f, -0.5f, -1.0f, -7.0f, -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_SAME_BITS(unfiltered, with_radius(radius)) << radius;
    }
    EXPECT_FALSE(umbrixlib::test::same_bits(unfiltered, with_radius(1.01f)));
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

int messages_shown = 0;

TEST(HeightToNormalFile, AMissingSourceGivesTheNormalsOfTheImageThatIsBound)
{
    TemporaryFolder const folder;
    Picture before(4, 4, 3, 100);
    before.set(1, 2, {250, 250, 250});
    before.save(folder / "before.tga");
    std::string text;
    int progress = 1;
    auto const convert = [&](char const* source, char const* destination) {
        return HeightToNormal((folder / source).c_str(), (folder / destination).c_str(), 1.0f, 0.0f, false, 0,
                              0.0f, false, false, &text, &progress);
    };
    auto const handler = set_message_handler([](char const*, char const*) { ++messages_shown; });
    EXPECT_TRUE(convert("before.tga", "normals.tga"));
    EXPECT_TRUE(convert("missing.tga", "out.tga"));
    set_message_handler(handler);
    EXPECT_EQ(messages_shown, 0);
    // The bound image is the normal map that the first call has left there.
    EXPECT_TRUE(convert("normals.tga", "normals_of_normals.tga"));
    EXPECT_EQ(Picture::load(folder / "out.tga").bytes,
              Picture::load(folder / "normals_of_normals.tga").bytes);
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
