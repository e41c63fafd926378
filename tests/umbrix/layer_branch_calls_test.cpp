// SPDX-License-Identifier: MIT
// How a layer stack enters a run of UmbrixFile, with stand-ins for DevIL and the kernels. The input is 4x4
// texels; the bilateral filter adds 1/8, generated normals are (0, 0, height), light adds 1/4 to x.
#include "files/umbrix_file.h"

#include "call_log.h"
#include "devil_fake.h"
#include "kernels_fake.h"
#include "layer_run.h"
#include "layers/nlayers.h"
#include "picture_depths.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <omp.h>

namespace {

using testing::Contains;
using testing::Each;
using testing::StartsWith;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::neutral_options;

class UmbrixFileLayers : public umbrixlib::test::LayerRun {
protected:
    bool run(umbrix_options& options, NLayers* stack)
    {
        CallLog::instance().clear();
        return UmbrixFile("in.png", "out.tga", options, &layers_, stack, &status_, &progress_);
    }
};

TEST_F(UmbrixFileLayers, AnEmptyStackIsFilledFromTheDescriptions)
{
    describe({"same.png", "wide.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(stack.Count(), 2);
    EXPECT_EQ(stack.GetLayerWidth(1), 4) << "a height layer, of the first one's size";
    auto const& calls = CallLog::instance().calls();
    std::vector<std::string> const opening(calls.begin() + 4, calls.begin() + 8);
    EXPECT_THAT(opening, testing::ElementsAre("ilLoadImage(in.png)", "ilGetInteger(0x0DE4)",
                                              "ilGetInteger(0x0DE5)", "ilGetInteger(0x0DE9)"));
    EXPECT_THAT(calls, Contains("ilLoadImage(same.png)"));
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 3);
}

TEST_F(UmbrixFileLayers, AStackOfTheSameNumberOfLayersIsNotRebuilt)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    float3 const* const before = stack.GetLayer(0);
    umbrix_options options = neutral_options();
    run(options, &stack);
    EXPECT_EQ(stack.GetLayer(0), before);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
}

TEST_F(UmbrixFileLayers, AStackOfAnotherNumberIsClearedFirst)
{
    describe({"same.png"});
    n_layer spare;
    layers_.Add(spare);
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    layers_.Remove(1);
    stack.AddLayer("wide.png");
    umbrix_options options = neutral_options();
    run(options, &stack);
    EXPECT_EQ(stack.Count(), 1);
    EXPECT_EQ(stack.GetLayerWidth(0), 4);
}

TEST_F(UmbrixFileLayers, NoDescriptionsEmptyTheStackAndTheRunIsOnTheImage)
{
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    umbrix_options options = neutral_options();
    options.blend_height = true;
    options.height_map = options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_FALSE(options.blend_height);
    EXPECT_EQ(options.image_width, 4);
    EXPECT_EQ(calls_starting_with("ilCopyPixels(4x4, 0x1908"), 1);
}

TEST_F(UmbrixFileLayers, NullListsAndStacksCountAsEmpty)
{
    umbrix_options options = neutral_options();
    EXPECT_TRUE(UmbrixFile("in.png", "out.tga", options, nullptr, nullptr, &status_, &progress_));
    EXPECT_TRUE(run(options, nullptr));
    describe({"wide.png"});
    options = kept_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, nullptr));
    EXPECT_EQ(options.image_width, 6) << "an empty stack was filled";
    EXPECT_EQ(options.normal_map[3].z, height_of("wide.png", 3));
    release(options);
}

TEST_F(UmbrixFileLayers, AFirstLayerOfAnotherSizeTakesOverTheMap)
{
    describe({"wide.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_TRUE(options.blend_height);
    EXPECT_EQ(options.image_width, 6);
    EXPECT_EQ(options.image_height, 2);
    EXPECT_EQ(calls_starting_with("ilCopyPixels("), 1) << "the layer's, not the picture's";
    EXPECT_EQ(calls_starting_with("ilTexImage(6x2x0, 4, 0x1908"), 1) << "channels come from the file";
    EXPECT_EQ(std::vector<float>(options.height_copy, options.height_copy + 12), stretched("wide.png", 12));
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(options.normal_map[i].z, height_of("wide.png", i))
            << "of the layer, not of the map's heights";
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3], 0) << "alpha was never written";
    }
    release(options);
}

class UmbrixFileLayersDepths : public UmbrixFileLayers, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, UmbrixFileLayersDepths, testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(UmbrixFileLayersDepths, TheBytesOfTheMapHaveTheLayersSizeAndTheImagesDepth)
{
    DevilFake::instance().files["in.png"].bits = 8 * GetParam();
    describe({"wide.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    std::size_t texel = 0;
    auto const of_the_layer = [&](unsigned char const*) {
        return std::array<unsigned char, 4>{63, 0,
                                            umbrixlib::test::picture_byte(height_of("wide.png", texel++)), 0};
    };
    int const depth = GetParam() == 1 ? 3 : GetParam();
    EXPECT_EQ(DevilFake::instance().stored, umbrixlib::test::through_texels({}, {6, 2}, depth, of_the_layer));
}

TEST_F(UmbrixFileLayers, AFirstLayerOfTheImagesSizeLeavesTheChoiceToTheCaller)
{
    describe({"same.png"});
    for (bool const blend_height : {false, true}) {
        NLayers stack(&layers_);
        umbrix_options options = kept_options();
        options.generate_normal = true;
        options.blend_height = blend_height;
        EXPECT_TRUE(run(options, &stack));
        EXPECT_EQ(options.blend_height, blend_height);
        EXPECT_EQ(options.image_width, 4);
        EXPECT_EQ(calls_starting_with("ilCopyPixels(4x4, 0x1908"), blend_height ? 0 : 1);
        for (std::size_t i = 0; i < 16; ++i) {
            EXPECT_EQ(options.normal_map[i].z, height_of("same.png", i)) << "normals come from the stack";
        }
        release(options);
    }
}

TEST_F(UmbrixFileLayers, WithoutNormalGenerationTheHeightsFillTheImagesSize)
{
    for (char const* const file : {"same.png", "wide.png", "large.png"}) {
        for (float const detail : {0.0f, 2.0f}) {
            layers_.Remove(0);
            describe({file});
            layers_.GetRef(0)->L_Detail = detail;
            NLayers stack(&layers_);
            umbrix_options options = kept_options();
            options.blend_height = true;
            EXPECT_TRUE(run(options, &stack));
            EXPECT_TRUE(options.blend_height);
            EXPECT_EQ(options.image_width, 4);
            EXPECT_EQ(options.image_height, 4);
            auto const texels = static_cast<std::size_t>(stack.GetResultSize());
            float const added = detail > 1.0f ? KernelsFake::kFiltered : 0.0f;
            std::vector<float> heights(16, 0.0f);
            for (std::size_t i = 0; i < std::min<std::size_t>(16, texels); ++i) {
                heights[i] = height_of(file, i) + added;
            }
            auto const [low, high] = std::minmax_element(heights.begin(), heights.end());
            double const lowest = double(*low);
            double const range = double(static_cast<float>(double(*high) - lowest));
            for (std::size_t i = 0; i < 16; ++i) {
                EXPECT_EQ(options.height_copy[i], static_cast<float>((double(heights[i]) - lowest) / range))
                    << file << " " << i;
            }
            release(options);
        }
    }
}

TEST_F(UmbrixFileLayers, PixelsAreThoseOfTheLastLayerLoaded)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    options.height_map = true;
    options.keep_buffers = options.preserve = true;
    run(options, &stack);
    EXPECT_EQ(options.height_copy[0], height_of("same.png", 0)) << "copied behind the load of the layer";
    release(options);
}

TEST_F(UmbrixFileLayers, AFlatStackDividesByZero)
{
    describe({"flat.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.blend_height = true;
    options.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_THAT(std::vector<float>(options.height_copy, options.height_copy + 16), Each(testing::IsNan()));
    release(options);
}

TEST_F(UmbrixFileLayers, AStackWithoutHeightsStillRuns)
{
    describe({"same.png", ""});
    NLayers stack(&layers_);
    stack.AddNormalLayer("same.png");
    stack.AddLayer("");
    umbrix_options options = kept_options();
    options.generate_normal = true;
    options.blend_height = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_THAT(options.height_copy[3], testing::IsNan()) << "nothing to stretch";
    EXPECT_EQ(options.normal_map[3].x, stack.GetLayer(0)[3].x);
    release(options);
}

TEST_F(UmbrixFileLayers, ABlankFirstLayerMakesAMapOfNoTexels)
{
    describe({"", "same.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    options.generate_normal = true;
    options.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(options.image_width, 0);
    EXPECT_EQ(calls_starting_with("ilTexImage(0x0x0, 4"), 1);
}

TEST_F(UmbrixFileLayers, TheLayersNormalsGoWhereGeneratedNormalsGo)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    options.generate_normal = true;
    run(options, &stack);
    EXPECT_EQ(calls_starting_with("NormalScale("), 1);
    EXPECT_EQ(calls_starting_with("Height2Normal("), 1) << "for the layer";
    EXPECT_EQ(status_, "Storing Results");
    auto const& stored = DevilFake::instance().stored;
    EXPECT_EQ(stored[0], 63) << "x of the light";
    EXPECT_EQ(stored[4 * 7 + 2], static_cast<unsigned char>(double(height_of("same.png", 7)) * 255.0));
}

TEST_F(UmbrixFileLayers, ModeZeroWithoutAResultLeavesTheLayerOut)
{
    describe({"same.png", "wide.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(calls_starting_with("BlendNormal("), 0);
    EXPECT_EQ(options.normal_map[5].z, height_of("same.png", 5));
    release(options);
    stack.BlendLayers();
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(calls_starting_with("BlendNormal("), 1);
    release(options);
}

TEST_F(UmbrixFileLayers, TheStackKeepsItsLayersForTheNextFile)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    umbrix_options options = neutral_options();
    options.generate_normal = true;
    run(options, &stack);
    run(options, &stack);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
    EXPECT_EQ(calls_starting_with("Height2Normal("), 0) << "generated once";
}

} // namespace
