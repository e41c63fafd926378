// SPDX-License-Identifier: MIT
// How a layer stack enters a run of UmbrixFile_GPU, with stand-ins for DevIL, the kernels and the graphics
// library. The input is 4x4 texels; the bilateral filter adds 1/8, pre-processing 1/16.
#include "files/umbrix_file_gpu.h"

#include "call_log.h"
#include "devil_fake.h"
#include "graphics_fake.h"
#include "kernels_fake.h"
#include "layer_run.h"
#include "layers/nlayers.h"
#include "picture_depths.h"

#include <array>
#include <gmock/gmock.h>

namespace {

using testing::Each;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::GraphicsStages;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::neutral_options;

class UmbrixFileGpuLayers : public umbrixlib::test::LayerRun {
protected:
    UmbrixFileGpuLayers() { GraphicsFake::instance().reset(); }
    ~UmbrixFileGpuLayers() override
    {
        EXPECT_EQ(GraphicsFake::instance().faults, std::vector<std::string>());
    }

    bool run(umbrix_options& options, NLayers* stack)
    {
        CallLog::instance().clear();
        return UmbrixFile_GPU({false, 0, 0}, "in.png", "out.tga", options, &layers_, stack, &status_,
                              &progress_);
    }

    static std::vector<float> kept_heights(umbrix_options const& options, std::size_t texels)
    {
        return {options.height_copy, options.height_copy + texels};
    }
};

TEST_F(UmbrixFileGpuLayers, AnEmptyStackIsFilledBehindTheLoadOfTheImage)
{
    describe({"same.png", "wide.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(stack.Count(), 2);
    std::vector<std::string> loads;
    for (std::string const& call : CallLog::instance().calls()) {
        if (call.rfind("ilLoadImage(", 0) == 0) {
            loads.push_back(call);
        }
    }
    EXPECT_THAT(
        loads, testing::ElementsAre("ilLoadImage(in.png)", "ilLoadImage(same.png)", "ilLoadImage(wide.png)"));
    release(options);
}

TEST_F(UmbrixFileGpuLayers, AStackOfTheSameNumberOfLayersIsNotRebuilt)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    float3 const* const before = stack.GetLayer(0);
    umbrix_options options = kept_options();
    run(options, &stack);
    EXPECT_EQ(stack.GetLayer(0), before);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
    release(options);
}

TEST_F(UmbrixFileGpuLayers, NoDescriptionsEmptyTheStackAndTheRunIsOnTheImage)
{
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    umbrix_options options = kept_options();
    options.blend_height = options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_FALSE(options.blend_height);
    EXPECT_EQ(options.image_width, 4);
    EXPECT_EQ(calls_starting_with("HeightToNormal_GPU("), 1);
    release(options);
}

TEST_F(UmbrixFileGpuLayers, NullListsAndStacksCountAsEmpty)
{
    umbrix_options options = kept_options();
    EXPECT_TRUE(
        UmbrixFile_GPU({false, 0, 0}, "in.png", "out.tga", options, nullptr, nullptr, &status_, &progress_));
    release(options);
    describe({"wide.png"});
    options = kept_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, nullptr));
    EXPECT_EQ(options.image_width, 6) << "an empty stack was filled";
    EXPECT_EQ(options.normal_map[3].z, height_of("wide.png", 3));
    release(options);
}

TEST_F(UmbrixFileGpuLayers, AFirstLayerOfAnotherSizeTakesOverTheMap)
{
    describe({"wide.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    umbrix_options options = kept_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_TRUE(options.blend_height);
    EXPECT_EQ(options.image_width, 6);
    EXPECT_EQ(options.image_height, 2);
    EXPECT_EQ(calls_starting_with("ilCopyPixels(6x2, 0x1908"), 1) << "fetched all the same";
    EXPECT_EQ(calls_starting_with("ilTexImage(6x2x0, 4, 0x1908"), 1) << "channels come from the file";
    EXPECT_EQ(kept_heights(options, 12), stretched("wide.png", 12)) << "stretched, not inverted";
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(options.normal_map[i].z, height_of("wide.png", i))
            << "of the layer, not of the map's heights";
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3], 0) << "alpha was never written";
    }
    release(options);
}

class UmbrixFileGpuLayersDepths : public UmbrixFileGpuLayers, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, UmbrixFileGpuLayersDepths,
                         testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(UmbrixFileGpuLayersDepths, TheBytesOfTheMapHaveTheLayersSizeAndTheImagesDepth)
{
    DevilFake::File& input = DevilFake::instance().files["in.png"];
    input.bits = 8 * GetParam();
    describe({"wide.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    umbrix_options options = neutral_options();
    options.generate_normal = true;
    EXPECT_TRUE(run(options, &stack));
    std::vector<unsigned char> fetched = input.bytes;
    fetched.resize(12 * umbrixlib::test::fetched_channels(GetParam()));
    std::size_t texel = 0;
    auto const of_the_layer = [&](unsigned char const*) {
        return std::array<unsigned char, 4>{31, 0,
                                            umbrixlib::test::picture_byte(height_of("wide.png", texel++)), 0};
    };
    EXPECT_EQ(DevilFake::instance().stored,
              umbrixlib::test::through_texels(fetched, {6, 2}, GetParam(), of_the_layer));
    delete[] options.height_copy;
}

TEST_F(UmbrixFileGpuLayers, HeightsOfTheStackGoThroughFilterAndPreProcessing)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.blend_height = true;
    options.b_radius = 1.0f;
    options.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(options, &stack));
    std::vector<float> const expected = stretched("same.png", 16);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(options.height_copy[i], expected[i] + KernelsFake::kFiltered);
        float const height = options.height_copy[i] + GraphicsStages::kPre;
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3],
                  static_cast<unsigned char>(std::min(double(height), 1.0) * 255.0));
    }
    release(options);
}

TEST_F(UmbrixFileGpuLayers, WithoutNormalGenerationTheHeightsFillTheImagesSize)
{
    for (char const* const file : {"same.png", "wide.png", "large.png"}) {
        layers_.Remove(0);
        describe({file});
        NLayers stack(&layers_);
        umbrix_options options = kept_options();
        options.blend_height = true;
        EXPECT_TRUE(run(options, &stack));
        EXPECT_EQ(options.image_width, 4);
        EXPECT_EQ(options.image_height, 4);
        std::vector<float> heights(16, 0.0f);
        for (std::size_t i = 0; i < std::min<std::size_t>(16, std::size_t(stack.GetResultSize())); ++i) {
            heights[i] = height_of(file, i);
        }
        auto const [low, high] = std::minmax_element(heights.begin(), heights.end());
        double const lowest = double(*low);
        double const range = double(static_cast<float>(double(*high) - lowest));
        for (float& height : heights) {
            height = static_cast<float>((double(height) - lowest) / range);
        }
        EXPECT_EQ(kept_heights(options, 16), heights) << file;
        release(options);
    }
}

TEST_F(UmbrixFileGpuLayers, NormalsComeFromTheStackUnlessTheyAreSwitchedOff)
{
    describe({"same.png"});
    for (bool const no_normal : {false, true}) {
        NLayers stack(&layers_);
        umbrix_options options = kept_options();
        options.generate_normal = true;
        options.no_normal = no_normal;
        EXPECT_TRUE(run(options, &stack));
        EXPECT_EQ(calls_starting_with("HeightToNormal_GPU("), 0);
        for (std::size_t i = 0; i < 16; ++i) {
            EXPECT_EQ(options.normal_map[i].z, no_normal ? 1.0f : height_of("same.png", i));
        }
        release(options);
    }
}

TEST_F(UmbrixFileGpuLayers, AFlatStackDividesByZero)
{
    describe({"flat.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.blend_height = true;
    options.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_THAT(kept_heights(options, 16), Each(testing::IsNan()));
    release(options);
}

TEST_F(UmbrixFileGpuLayers, ABlankFirstLayerMakesAMapOfNoTexels)
{
    describe({"", "same.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.generate_normal = true;
    options.b_radius = 1.0f;
    options.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(options, &stack));
    EXPECT_EQ(options.image_width, 0);
    EXPECT_EQ(calls_starting_with("ilTexImage(0x0x0, 4"), 1);
    release(options);
}

TEST_F(UmbrixFileGpuLayers, TheStackKeepsItsLayersForTheNextFile)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    umbrix_options options = kept_options();
    options.generate_normal = true;
    run(options, &stack);
    release(options);
    run(options, &stack);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
    EXPECT_EQ(calls_starting_with("Height2Normal("), 0) << "generated once";
    release(options);
}

} // namespace
