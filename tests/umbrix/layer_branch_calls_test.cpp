// SPDX-License-Identifier: MIT
// How a layer stack enters a run of UmbrixFile and of UmbrixFile_GPU, with stand-ins for DevIL, the kernels
// and the graphics library. The input is 4x4 texels; the bilateral filter adds 1/8, pre-processing on the GPU
// 1/16; generated normals are (0, 0, height).
#include "call_log.h"
#include "devil_fake.h"
#include "files/umbrix_file.h"
#include "files/umbrix_file_gpu.h"
#include "forms.h"
#include "graphics_fake.h"
#include "kernels_fake.h"
#include "layer_run.h"
#include "layers/nlayers.h"
#include "picture_depths.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>

namespace {

using testing::Each;
using testing::ElementsAre;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::Form;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::GraphicsStages;
using umbrixlib::test::kCpu;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::kGpu;
using umbrixlib::test::name_of;
using umbrixlib::test::release_kept;

/// What differs between the two forms.
struct Differences {
    /// Pixels of the image are fetched although the layer's heights take their place.
    bool fetches_in_vain;
    unsigned char light;        ///< Byte of the light of a normal without x.
    bool keeps_unlit_normals;   ///< Without light the normals are made all the same.
    float added_to_kept;        ///< Heights are kept before or behind the filter.
    float added_by_preparation; ///< By pre-processing without an option for it.
};
constexpr Differences kOnCpu = {false, 63, true, 0.0f, 0.0f};
constexpr Differences kOnGpu = {true, 31, false, KernelsFake::kFiltered, GraphicsStages::kPre};

class UmbrixFileLayers : public umbrixlib::test::LayerRun, public testing::WithParamInterface<Form> {
protected:
    UmbrixFileLayers() { GraphicsFake::instance().reset(); }
    ~UmbrixFileLayers() override
    {
        EXPECT_EQ(GraphicsFake::instance().faults, std::vector<std::string>());
        release_kept(options_);
    }

    bool run(LinkedList<n_layer>* layers, NLayers* stack)
    {
        CallLog::instance().clear();
        release_kept(options_); // what the run before left
        if (GetParam().graphics) {
            return UmbrixFile_GPU({false, 0, 0}, "in.png", "out.tga", options_, layers, stack, &status_,
                                  &progress_);
        }
        return UmbrixFile("in.png", "out.tga", options_, layers, stack, &status_, &progress_);
    }
    bool run(NLayers* stack) { return run(&layers_, stack); }

    /// Options as before the first run.
    void start_anew()
    {
        release_kept(options_);
        options_ = kept_options();
    }

    std::vector<float> kept_heights(std::size_t texels) const
    {
        return {options_.height_copy, options_.height_copy + texels};
    }

    static Differences const& differences() { return GetParam().graphics ? kOnGpu : kOnCpu; }

    umbrix_options options_ = kept_options();
};
INSTANTIATE_TEST_SUITE_P(Forms, UmbrixFileLayers, testing::Values(kCpu, kGpu), name_of);

TEST_P(UmbrixFileLayers, AnEmptyStackIsFilledBehindTheLoadOfTheImage)
{
    describe({"same.png", "wide.png"});
    NLayers stack(&layers_);
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(stack.Count(), 2);
    EXPECT_EQ(stack.GetLayerWidth(1), 4) << "a height layer, of the first one's size";
    auto const& calls = CallLog::instance().calls();
    std::vector<std::string> loads;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(loads),
                 [](std::string const& call) { return call.rfind("ilLoadImage(", 0) == 0; });
    EXPECT_THAT(loads, ElementsAre("ilLoadImage(in.png)", "ilLoadImage(same.png)", "ilLoadImage(wide.png)"));
    auto const load = std::find(calls.begin(), calls.end(), "ilLoadImage(in.png)");
    EXPECT_THAT(std::vector<std::string>(load + 1, load + 4),
                ElementsAre("ilGetInteger(0x0DE4)", "ilGetInteger(0x0DE5)", "ilGetInteger(0x0DE9)"));
}

TEST_P(UmbrixFileLayers, AStackOfTheSameNumberOfLayersIsNotRebuilt)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    float3 const* const before = stack.GetLayer(0);
    run(&stack);
    EXPECT_EQ(stack.GetLayer(0), before);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
}

TEST_P(UmbrixFileLayers, AStackOfAnotherNumberIsClearedFirst)
{
    describe({"same.png"});
    n_layer spare;
    layers_.Add(spare);
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    layers_.Remove(1);
    stack.AddLayer("wide.png");
    run(&stack);
    EXPECT_EQ(stack.Count(), 1);
    EXPECT_EQ(stack.GetLayerWidth(0), 4);
}

TEST_P(UmbrixFileLayers, NoDescriptionsEmptyTheStackAndTheRunIsOnTheImage)
{
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    options_.blend_height = true;
    options_.height_map = options_.generate_normal = true;
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(stack.Count(), 0);
    EXPECT_FALSE(options_.blend_height);
    EXPECT_EQ(options_.image_width, 4);
    EXPECT_EQ(calls_starting_with("ilCopyPixels(4x4, 0x1908"), 1);
    EXPECT_EQ(calls_starting_with("HeightToNormal_GPU("), GetParam().graphics ? 1 : 0);
}

TEST_P(UmbrixFileLayers, NullListsAndStacksCountAsEmpty)
{
    EXPECT_TRUE(run(nullptr, nullptr));
    EXPECT_TRUE(run(nullptr));
    EXPECT_EQ(options_.image_width, 4);
    describe({"wide.png"});
    start_anew();
    options_.generate_normal = true;
    EXPECT_TRUE(run(nullptr));
    EXPECT_EQ(options_.image_width, 6) << "an empty stack was filled";
    EXPECT_EQ(options_.normal_map[3].z, height_of("wide.png", 3));
}

TEST_P(UmbrixFileLayers, AFirstLayerOfAnotherSizeTakesOverTheMap)
{
    describe({"wide.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    for (bool const is_filled : {false, true}) {
        EXPECT_TRUE(run(&stack));
        EXPECT_TRUE(options_.blend_height);
        EXPECT_EQ(options_.image_width, 6);
        EXPECT_EQ(options_.image_height, 2);
        EXPECT_EQ(calls_starting_with("ilCopyPixels("),
                  (is_filled ? 0 : 1) + (differences().fetches_in_vain ? 1 : 0));
        EXPECT_EQ(calls_starting_with("ilTexImage(6x2x0, 4, 0x1908"), 1) << "channels come from the file";
        EXPECT_EQ(kept_heights(12), stretched("wide.png", 12)) << "stretched, not inverted";
        for (std::size_t i = 0; i < 12; ++i) {
            EXPECT_EQ(options_.normal_map[i].z, height_of("wide.png", i))
                << "of the layer, not of the map's heights";
            EXPECT_EQ(DevilFake::instance().stored[4 * i + 3], 0) << "alpha was never written";
        }
        start_anew();
        options_.generate_normal = true;
    }
}

TEST_P(UmbrixFileLayers, TheBytesOfTheMapHaveTheLayersSizeAndTheImagesDepth)
{
    describe({"wide.png"});
    NLayers stack(&layers_);
    stack.AddLayer("wide.png");
    for (int const depth : umbrixlib::test::kDepths) {
        DevilFake::File& input = DevilFake::instance().files["in.png"];
        input.bits = 8 * depth;
        start_anew();
        options_.generate_normal = true;
        EXPECT_TRUE(run(&stack));
        std::vector<unsigned char> fetched;
        if (differences().fetches_in_vain) {
            fetched = input.bytes;
            fetched.resize(12 * umbrixlib::test::fetched_channels(depth));
        }
        std::size_t texel = 0;
        auto const of_the_layer = [&](unsigned char const*) {
            float const height = height_of("wide.png", texel++);
            return std::array<unsigned char, 4>{differences().light, 0, umbrixlib::test::picture_byte(height),
                                                0};
        };
        int const distance = depth == 1 && !differences().fetches_in_vain ? 3 : depth;
        EXPECT_EQ(DevilFake::instance().stored,
                  umbrixlib::test::through_texels(fetched, {6, 2}, distance, of_the_layer))
            << depth;
    }
}

TEST_P(UmbrixFileLayers, AFirstLayerOfTheImagesSizeLeavesTheChoiceToTheCaller)
{
    describe({"same.png"});
    for (bool const blend_height : {false, true}) {
        NLayers stack(&layers_);
        start_anew();
        options_.generate_normal = true;
        options_.blend_height = blend_height;
        EXPECT_TRUE(run(&stack));
        EXPECT_EQ(options_.blend_height, blend_height);
        EXPECT_EQ(options_.image_width, 4);
        EXPECT_EQ(calls_starting_with("ilCopyPixels(4x4, 0x1908"),
                  blend_height && !differences().fetches_in_vain ? 0 : 1);
        for (std::size_t i = 0; i < 16; ++i) {
            EXPECT_EQ(options_.normal_map[i].z, height_of("same.png", i)) << "normals come from the stack";
        }
    }
}

TEST_P(UmbrixFileLayers, WithoutNormalGenerationTheHeightsFillTheImagesSize)
{
    for (char const* const file : {"same.png", "wide.png", "large.png"}) {
        for (float const detail : {0.0f, 2.0f}) {
            layers_.Remove(0);
            describe({file});
            layers_.GetRef(0)->L_Detail = detail;
            NLayers stack(&layers_);
            start_anew();
            options_.blend_height = true;
            EXPECT_TRUE(run(&stack));
            EXPECT_TRUE(options_.blend_height);
            EXPECT_EQ(options_.image_width, 4);
            EXPECT_EQ(options_.image_height, 4);
            auto const texels = static_cast<std::size_t>(stack.GetResultSize());
            float const added = detail > 1.0f ? KernelsFake::kFiltered : 0.0f;
            std::vector<float> heights(16, 0.0f);
            for (std::size_t i = 0; i < std::min<std::size_t>(16, texels); ++i) {
                heights[i] = height_of(file, i) + added;
            }
            stretch(heights);
            EXPECT_EQ(kept_heights(16), heights) << file;
        }
    }
}

TEST_P(UmbrixFileLayers, PixelsAreThoseOfTheLastLayerLoaded)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    options_.height_map = true;
    run(&stack);
    float const height = height_of("same.png", 0);
    EXPECT_EQ(options_.height_copy[0], GetParam().graphics ? 1.0f - height : height)
        << "copied behind the load of the layer";
}

TEST_P(UmbrixFileLayers, AFlatStackDividesByZero)
{
    describe({"flat.png"});
    NLayers stack(&layers_);
    options_.blend_height = true;
    options_.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(&stack));
    EXPECT_THAT(kept_heights(16), Each(testing::IsNan()));
}

TEST_P(UmbrixFileLayers, AStackWithoutHeightsStillRuns)
{
    describe({"same.png", ""});
    NLayers stack(&layers_);
    stack.AddNormalLayer("same.png");
    stack.AddLayer("");
    options_.generate_normal = true;
    options_.blend_height = true;
    EXPECT_TRUE(run(&stack));
    EXPECT_THAT(options_.height_copy[3], testing::IsNan()) << "nothing to stretch";
    EXPECT_EQ(options_.normal_map[3].x, stack.GetLayer(0)[3].x);
}

TEST_P(UmbrixFileLayers, ABlankFirstLayerMakesAMapOfNoTexels)
{
    describe({"", "same.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    options_.b_radius = 1.0f;
    options_.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(options_.image_width, 0);
    EXPECT_EQ(calls_starting_with("ilTexImage(0x0x0, 4"), 1);
}

TEST_P(UmbrixFileLayers, TheLayersNormalsGoWhereGeneratedNormalsGo)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    run(&stack);
    EXPECT_EQ(calls_starting_with("NormalScale("), 1);
    EXPECT_EQ(calls_starting_with("Height2Normal("), 1) << "for the layer";
    EXPECT_EQ(calls_starting_with("HeightToNormal_GPU("), 0);
    EXPECT_EQ(status_, "Storing Results");
    auto const& stored = DevilFake::instance().stored;
    EXPECT_EQ(stored[0], differences().light);
    EXPECT_EQ(stored[4 * 7 + 2], static_cast<unsigned char>(double(height_of("same.png", 7)) * 255.0));
}

TEST_P(UmbrixFileLayers, ModeZeroWithoutAResultLeavesTheLayerOut)
{
    describe({"same.png", "wide.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(calls_starting_with("BlendNormal("), 0);
    EXPECT_EQ(options_.normal_map[5].z, height_of("same.png", 5));
    stack.BlendLayers();
    EXPECT_TRUE(run(&stack));
    EXPECT_EQ(calls_starting_with("BlendNormal("), 1);
}

TEST_P(UmbrixFileLayers, TheStackKeepsItsLayersForTheNextFile)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    run(&stack);
    run(&stack);
    EXPECT_EQ(calls_starting_with("ilLoadImage("), 1);
    EXPECT_EQ(calls_starting_with("Height2Normal("), 0) << "generated once";
}

TEST_P(UmbrixFileLayers, WithoutLightNormalsAreThoseOfTheStackOrUpright)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    options_.generate_normal = true;
    options_.no_normal = true;
    EXPECT_TRUE(run(&stack));
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(options_.normal_map[i].z,
                  differences().keeps_unlit_normals ? height_of("same.png", i) : 1.0f);
    }
}

TEST_P(UmbrixFileLayers, HeightsOfTheStackGoThroughFilterAndPreProcessing)
{
    describe({"same.png"});
    NLayers stack(&layers_);
    options_.blend_height = true;
    options_.b_radius = 1.0f;
    options_.calc_type = calc_type_light_occlusion;
    EXPECT_TRUE(run(&stack));
    std::vector<float> const expected = stretched("same.png", 16);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(options_.height_copy[i], expected[i] + differences().added_to_kept);
        float const height = expected[i] + KernelsFake::kFiltered + differences().added_by_preparation;
        EXPECT_EQ(DevilFake::instance().stored[4 * i + 3],
                  static_cast<unsigned char>(std::min(double(height), 1.0) * 255.0));
    }
}

} // namespace
