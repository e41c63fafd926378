// SPDX-License-Identifier: MIT
// Generation of a layer's normals: when it runs, and what it hands to the conversion.
#include "layers/nlayers.h"

#include "call_log.h"
#include "random_stack.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using namespace umbrixlib::test;

std::vector<std::string> calls_of(NLayers& stack, int index)
{
    CallLog::instance().clear();
    CallLog::instance().buffer(stack.GetLayer(index)); // #1
    stack.GenerateLayer(index);
    return CallLog::instance().calls();
}

n_layer stale_record()
{
    n_layer record = plain_record();
    record.n_scale = 2.0f;
    record.regenerate = true;
    return record;
}

TEST(NLayersGenerate, RunsWithTheParametersOfTheRecord)
{
    n_layer record = stale_record();
    record.L_Detail = 1.5f;
    record.depth = 0.25f;
    record.edge_a = 0.5f;
    record.edge_b = 0.75f;
    ReferenceStack const stack{{height_layer({2, 3}, 1)}, {record}, {}};
    BuiltStack built(stack);
    EXPECT_THAT(calls_of(built.layers, 0),
                ElementsAre("GenerateExp(1.5, #2)", "GenerateExp(128, #3)",
                            "BilateralFilter(#4, #5, 2, 3, 1.5, #2, #3)", "ChangeDepth(#5, 2, 3, 0.25, 2)",
                            "Height2Normal(#5, #1, 2, 3)", "NormalEdges(#1, #5, 2, 3, 0.5, 0.75)"));
    float const height = stack.layers[0].heights[4];
    EXPECT_EQ(built.layers.GetLayer(0)[4].z, (height + 0.125f) * 2.0f + 0.25f);
    EXPECT_EQ(built.layers.heights.Get(0)[4], height) << "only read";
    EXPECT_FALSE(built.records.GetRef(0)->regenerate);
}

TEST(NLayersGenerate, RunsOnceAndAgainWhenTheFlagIsSet)
{
    BuiltStack built({{height_layer({2, 3}, 1)}, {stale_record()}, {}});
    EXPECT_EQ(calls_of(built.layers, 0).size(), 3U);
    EXPECT_TRUE(calls_of(built.layers, 0).empty());
    built.records.GetRef(0)->regenerate = true;
    EXPECT_EQ(calls_of(built.layers, 0).size(), 3U);
}

TEST(NLayersGenerate, AFreshLayerKeepsItsNormals)
{
    ReferenceStack const stack{{height_layer({2, 3}, 1)}, {plain_record()}, {}};
    BuiltStack built(stack);
    EXPECT_TRUE(calls_of(built.layers, 0).empty());
    EXPECT_EQ(built.layers.GetLayer(0)[5].y, stack.layers[0].normals[5].y);
    EXPECT_FALSE(built.records.GetRef(0)->regenerate);
}

TEST(NLayersGenerate, IndicesOutOfRangeChangeNotEvenAFlag)
{
    BuiltStack built({{height_layer({2, 3}, 1)}, {stale_record()}, {}});
    built.records.Add(stale_record());
    EXPECT_TRUE(calls_of(built.layers, -1).empty());
    EXPECT_TRUE(calls_of(built.layers, 1).empty());
    EXPECT_TRUE(built.records.GetRef(0)->regenerate);
    EXPECT_TRUE(built.records.GetRef(1)->regenerate);
}

TEST(NLayersGenerate, ABlankLayerRunsOnNoTexels)
{
    BuiltStack built({{ReferenceLayer{}}, {stale_record()}, {}});
    EXPECT_THAT(calls_of(built.layers, 0),
                ElementsAre("GenerateExp(0, #1)", "GenerateExp(128, #2)", "Height2Normal(#3, null, 0, 0)"));
    EXPECT_FALSE(built.records.GetRef(0)->regenerate);
}

TEST(NLayersGenerate, ALayerWithoutHeightsIsLeftOutAndItsFlagCleared)
{
    ReferenceStack const stack{{normal_layer({2, 3}, 1)}, {stale_record()}, {}};
    BuiltStack built(stack);
    EXPECT_TRUE(calls_of(built.layers, 0).empty());
    EXPECT_EQ(built.layers.GetLayer(0)[5].y, stack.layers[0].normals[5].y);
    EXPECT_FALSE(built.records.GetRef(0)->regenerate);
}

TEST(NLayersGenerate, AllLayersAreFreshAfterwards)
{
    BuiltStack built({{height_layer({2, 3}, 1), normal_layer({1, 1}, 2), height_layer({2, 3}, 3)},
                      {stale_record(), plain_record(), stale_record()},
                      {}});
    CallLog::instance().clear();
    built.layers.GenerateLayers();
    EXPECT_EQ(CallLog::instance().calls().size(), 6U);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(built.records.GetRef(i)->regenerate);
    }
}

} // namespace
