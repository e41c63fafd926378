// SPDX-License-Identifier: MIT
// Blending of heights: the kernel calls of both forms, and results that can be worked out by hand. The
// stand-ins of the kernels: the bilateral filter adds 1/8, the depth is added.
#include "layers/nlayers.h"

#include "call_log.h"
#include "float_bits.h"
#include "random_stack.h"

#include <gmock/gmock.h>
#include <limits>
#include <omp.h>

namespace {

using testing::Each;
using testing::ElementsAre;
using namespace umbrixlib::test;

constexpr layer_size kSize{2, 3};

ReferenceLayer flat_layer(float height)
{
    ReferenceLayer layer{kSize, true, true, {}, {}};
    layer.heights.assign(6, height);
    layer.normals.assign(6, {0.0f, 0.0f, 1.0f});
    return layer;
}

class NLayersHeights : public testing::Test {
protected:
    void SetUp() override { CallLog::instance().clear(); }

    /// What the form with an argument blends.
    std::vector<float> blended(ReferenceStack const& stack)
    {
        BuiltStack built(stack);
        CallLog::instance().clear();
        auto* heights = new float[6]{9, 9, 9, 9, 9, 9};
        CallLog::instance().buffer(heights); // #1
        float const* const before = heights;
        built.layers.BlendHeightMap(heights);
        replaced_ = heights != before;
        std::vector<float> const result(heights, heights + 6);
        delete[] heights;
        return result;
    }

    /// What the form without one blends.
    std::vector<float> blended_result(ReferenceStack const& stack)
    {
        BuiltStack built(stack);
        CallLog::instance().clear();
        built.layers.BlendHeightMap();
        return {built.layers.height_result, built.layers.height_result + 6};
    }

    static std::vector<std::string> const& calls() { return CallLog::instance().calls(); }

    bool replaced_ = false;
};

TEST_F(NLayersHeights, OneLayerIsThatLayerFiltered)
{
    n_layer record = plain_record(2, std::numeric_limits<float>::quiet_NaN());
    record.n_scale = 2.0f;
    record.depth = 0.5f;
    EXPECT_THAT(blended({{flat_layer(0.25f)}, {record}, {}}), Each(1.0f));
    EXPECT_THAT(calls(),
                ElementsAre("GenerateExp(0, #2)", "GenerateExp(128, #3)", "ChangeDepth(#1, 2, 3, 0.5, 2)"));
    EXPECT_FALSE(replaced_);
    EXPECT_THAT(blended_result({{flat_layer(0.25f)}, {record}, {}}), Each(1.0f));
}

TEST_F(NLayersHeights, TheFilterOfTheFirstLayerReplacesTheCallersArray)
{
    n_layer record = plain_record();
    record.L_Detail = 1.5f;
    record.n_scale = 2.0f;
    EXPECT_THAT(blended({{flat_layer(0.25f)}, {record}, {}}), Each(0.75f));
    EXPECT_TRUE(replaced_);
    EXPECT_THAT(calls(), ElementsAre("GenerateExp(1.5, #2)", "GenerateExp(128, #3)",
                                     "BilateralFilter(#1, #4, 2, 3, 1.5, #2, #3)"));
    record.L_Detail = 1.0f;
    EXPECT_THAT(blended({{flat_layer(0.25f)}, {record}, {}}), Each(0.5f));
    EXPECT_FALSE(replaced_);
    EXPECT_THAT(calls(), ElementsAre("GenerateExp(1, #2)", "GenerateExp(128, #3)"));
}

TEST_F(NLayersHeights, ADepthOfMinusZeroMeansNoCallAndNaNMeansOne)
{
    n_layer record = plain_record();
    record.depth = -0.0f;
    blended({{flat_layer(0.25f)}, {record}, {}});
    EXPECT_EQ(calls().size(), 2U);
    record.depth = std::numeric_limits<float>::quiet_NaN();
    blended({{flat_layer(0.25f)}, {record}, {}});
    EXPECT_EQ(calls().size(), 3U);
}

TEST_F(NLayersHeights, ALaterLayerIsFilteredInAnArrayOfItsOwn)
{
    n_layer filtered = plain_record();
    filtered.L_Detail = 2.0f;
    filtered.depth = 0.5f;
    EXPECT_THAT(blended({{flat_layer(0.25f), flat_layer(1.0f)}, {plain_record(), filtered}, {}}),
                Each(1.625f));
    EXPECT_FALSE(replaced_);
    EXPECT_THAT(calls(),
                ElementsAre("GenerateExp(0, #2)", "GenerateExp(128, #3)", "GenerateExp(2, #4)",
                            testing::StartsWith("GenerateExp(128, "),
                            testing::MatchesRegex("BilateralFilter\\(#[0-9], #[0-9], 2, 3, 2, #4, #[0-9]\\)"),
                            testing::MatchesRegex("ChangeDepth\\(#[0-9], 2, 3, 0.5, 1\\)")));
}

TEST_F(NLayersHeights, TheFilterNeverReadsTheArrayThatItWrites)
{
    n_layer filtered = plain_record(3);
    filtered.L_Detail = 2.0f;
    ReferenceStack const stack{
        {flat_layer(0.25f), flat_layer(0.5f), flat_layer(1.0f)}, {filtered, filtered, filtered}, {}};
    auto const expect_two_arrays = [] {
        int filters = 0;
        for (std::string const& call : calls()) {
            if (call.rfind("BilateralFilter(", 0) == 0) {
                std::size_t const from = call.find('(') + 1;
                std::size_t const to = call.find(", ") + 2;
                EXPECT_NE(call.substr(from, to - 2 - from), call.substr(to, call.find(", ", to) - to))
                    << call;
                ++filters;
            }
        }
        EXPECT_EQ(filters, 3);
    };
    blended(stack);
    expect_two_arrays();
    blended_result(stack);
    expect_two_arrays();
}

TEST_F(NLayersHeights, TheFormWithoutAnArgumentHasRulesOfItsOwn)
{
    // The filtered last layer starts the blend afresh: an opacity of 0 shows it alone, without its scale.
    n_layer filtered = plain_record();
    filtered.L_Detail = 2.0f;
    filtered.n_scale = 2.0f;
    ReferenceStack const restarted{{flat_layer(0.25f), flat_layer(0.5f), flat_layer(1.0f)},
                                   {plain_record(), plain_record(0, 0.0f), filtered},
                                   {}};
    EXPECT_THAT(blended_result(restarted), Each(1.125f));
    EXPECT_THAT(blended(restarted), Each(0.5f)) << "the other form keeps what was blended";

    // At full opacity the unfiltered, scaled layer covers it.
    ReferenceStack covered = restarted;
    covered.records[1].opacity = 100.0f;
    EXPECT_THAT(blended_result(covered), Each(2.0f));
    EXPECT_THAT(blended(covered), Each(2.25f));

    // Overlay by the opacity of the layer that joins.
    ReferenceStack overlaid{
        {flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(1, 0.0f), plain_record(0, 100.0f)}, {}};
    EXPECT_THAT(blended(overlaid), Each(0.5f));
    EXPECT_THAT(blended_result(overlaid), Each(0.625f * 0.5f + 0.125f * 0.5f));

    // Blur asked of the first record. A point spreads only if the layer is blurred.
    ReferenceStack blurred{{flat_layer(0.0f), flat_layer(0.0f)}, {plain_record(3), plain_record()}, {}};
    blurred.layers[1].heights[0] = 1.0f;
    blurred.records[1].gaussian = 1.0f;
    EXPECT_EQ(blended_result(blurred)[1], 0.0f);
    EXPECT_GT(blended(blurred)[1], 0.0f);
    blurred.records[0].gaussian = 1.0f;
    EXPECT_GT(blended_result(blurred)[1], 0.0f);
}

TEST_F(NLayersHeights, OpacityIsLimitedInBlendAndOverlayOnly)
{
    auto const two = [](int mode, float opacity) {
        return ReferenceStack{
            {flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(mode, opacity), plain_record()}, {}};
    };
    EXPECT_EQ(blended(two(0, 150.0f)), blended(two(0, 100.0f)));
    EXPECT_EQ(blended(two(0, -5.0f)), blended(two(0, 0.0f)));
    EXPECT_EQ(blended(two(1, 150.0f)), blended(two(1, 100.0f)));
    EXPECT_EQ(blended(two(1, -5.0f)), blended(two(1, 0.0f)));
    EXPECT_THAT(blended(two(2, 150.0f)), Each(0.125f * 1.5f + 0.5f * -0.5f));
    EXPECT_THAT(blended(two(3, 150.0f)), Each(0.75f * 1.5f + 0.5f * -0.5f));
    EXPECT_THAT(blended(two(3, -50.0f)), Each(0.75f * -0.5f + 0.5f * 1.5f));
}

TEST_F(NLayersHeights, EachModeHasItsFormula)
{
    auto const of_mode = [&](int mode, float opacity) {
        return blended(
            {{flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(mode, opacity), plain_record()}, {}});
    };
    EXPECT_THAT(of_mode(0, 100.0f), Each(0.25f));
    EXPECT_THAT(of_mode(0, 50.0f), Each(0.375f));
    EXPECT_THAT(of_mode(1, 100.0f), Each(0.375f));
    EXPECT_THAT(of_mode(2, 100.0f), Each(0.125f)) << "the product";
    EXPECT_THAT(of_mode(2, 0.0f), Each(0.5f)) << "the first layer";
    for (int const added : {3, 4, -1}) {
        EXPECT_THAT(of_mode(added, 100.0f), Each(0.75f));
    }
}

TEST_F(NLayersHeights, ANaNOpacitySpreadsToEveryTexel)
{
    for (int mode = 0; mode < 4; ++mode) {
        EXPECT_THAT(
            blended({{flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(mode, kNaN), plain_record()}, {}}),
            Each(testing::IsNan()));
    }
}

TEST_F(NLayersHeights, TheModeOfTheLastRecordIsNotRead)
{
    EXPECT_THAT(blended({{flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(2), plain_record(3)}, {}}),
                Each(0.125f));
}

TEST_F(NLayersHeights, AScaleOfZeroMultipliesToZero)
{
    n_layer zero = plain_record();
    zero.n_scale = 0.0f;
    EXPECT_THAT(blended({{flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(2), zero}, {}}), Each(0.0f));
}

TEST_F(NLayersHeights, ASkippedLayersRecordStillJoinsTheNext)
{
    ReferenceStack const stack{
        {flat_layer(0.5f), normal_layer(kSize, 3), ReferenceLayer{}, flat_layer(0.25f)},
        {plain_record(3), plain_record(3), plain_record(2, 100.0f), plain_record(3)},
        {}};
    EXPECT_THAT(blended(stack), Each(0.125f)) << "the blank layer's record multiplies";
    EXPECT_EQ(calls().size(), 4U) << "nothing runs for a layer without heights";
}

TEST_F(NLayersHeights, AnEmptyStackAndOneWithoutFirstHeightsChangeNothing)
{
    for (ReferenceStack const& stack :
         {ReferenceStack{}, ReferenceStack{{normal_layer(kSize, 1), flat_layer(0.5f)}, {{}, {}}, {}},
          ReferenceStack{{ReferenceLayer{}, flat_layer(0.5f)}, {{}, {}}, {}}}) {
        EXPECT_THAT(blended(stack), Each(9.0f));
        EXPECT_FALSE(replaced_);
        BuiltStack built(stack);
        CallLog::instance().clear();
        built.layers.BlendHeightMap();
        EXPECT_EQ(built.layers.height_result, nullptr);
        EXPECT_TRUE(calls().empty());
    }
}

TEST_F(NLayersHeights, ALayerWithoutRoomOrRecordIsLeftOut)
{
    ReferenceLayer small{{1, 2}, true, true, {0.5f, 0.5f}, {{}, {}}};
    EXPECT_THAT(blended({{flat_layer(0.5f), small}, {plain_record(3), plain_record()}, {}}), Each(0.5f));
    BuiltStack built({{flat_layer(0.5f), flat_layer(0.25f)}, {plain_record(3), plain_record()}, {}});
    built.records.Remove(1);
    built.layers.BlendHeightMap();
    EXPECT_EQ(built.layers.height_result[5], 0.5f);
    float* none = nullptr;
    built.layers.BlendHeightMap(none);
    EXPECT_EQ(none, nullptr);
}

TEST_F(NLayersHeights, ALargerLayerGivesItsFirstTexels)
{
    ReferenceLayer large = height_layer({4, 4}, 5);
    std::vector<float> const result =
        blended({{flat_layer(0.5f), large}, {plain_record(3), plain_record()}, {}});
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(result[i], static_cast<float>(double(large.heights[i]) + 0.5));
    }
}

TEST_F(NLayersHeights, TheHeightResultIsMadeAnewWithEachBlend)
{
    BuiltStack built({{flat_layer(0.5f)}, {plain_record()}, {}});
    built.layers.BlendHeightMap();
    float const* const first = built.layers.height_result;
    built.layers.BlendHeightMap();
    EXPECT_NE(built.layers.height_result, first);
    EXPECT_EQ(built.layers.height_result[0], 0.5f);
}

} // namespace
