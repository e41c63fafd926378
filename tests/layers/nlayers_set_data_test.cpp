// SPDX-License-Identifier: MIT
// Layers whose heights come from memory.
#include "nlayers_stack.h"

#include "call_log.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::NLayersStack;

TEST_F(NLayersStack, SetLayerDataReplacesTheHeightsAndKeepsTheBuffers)
{
    provide("a.png", 3, 2);
    provide("b.png", 2, 2, 24, 90);
    add("a.png");
    add("a.png");
    records_.GetRef(1)->regenerate = false;
    float* const heights_before = heights(1);
    float3* const normals_before = stack_.GetLayer(1);
    CallLog::instance().clear();
    stack_.SetLayerData(1, "b.png");
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("ilInit()", "ilEnable(0x0620)", "ilEnable(0x0600)",
                            "ilSetInteger(0x0600, 0x0602)", "ilLoadImage(b.png)", "ilGetInteger(0x0DE4)",
                            "ilGetInteger(0x0DE5)", "ilGetInteger(0x0DE9)",
                            "ilCopyPixels(2x2, 0x1907, 0x1401, #1)"));
    EXPECT_EQ(heights(1), heights_before);
    EXPECT_EQ(stack_.GetLayer(1), normals_before);
    EXPECT_EQ(stack_.GetLayerWidth(1), 3);
    EXPECT_EQ(heights(1)[5], height_of(DevilFake::instance().files["b.png"], 0, 1));
    EXPECT_TRUE(records_.GetRef(1)->regenerate);
}

TEST_F(NLayersStack, SetLayerDataAppendsAtBothEndsAndStopsBehindTheList)
{
    provide("a.png", 3, 2);
    for (int i = 0; i < 3; ++i) {
        records_.Add({});
    }
    stack_.SetLayerData(-1, "a.png");
    EXPECT_EQ(stack_.Count(), 1);
    stack_.SetLayerData(1, "a.png");
    EXPECT_EQ(stack_.Count(), 2);
    CallLog::instance().clear();
    stack_.SetLayerData(3, "a.png");
    EXPECT_EQ(stack_.Count(), 2);
    EXPECT_TRUE(CallLog::instance().calls().empty());
    stack_.SetLayerData(-7, "");
    EXPECT_EQ(stack_.GetLayer(2), nullptr) << "a blank layer, as AddLayer adds it";
}

TEST_F(NLayersStack, SetLayerDataTurnsANormalLayerIntoAHeightLayer)
{
    provide("base.png", 3, 2);
    provide("small.png", 2, 1);
    provide("large.png", 9, 9);
    add("base.png");
    add_normal("small.png");
    add_normal("large.png");
    float3* const small_before = stack_.GetLayer(1);
    float3* const large_before = stack_.GetLayer(2);
    float const seen = small_before[1].x;
    stack_.SetLayerData(1, "base.png");
    stack_.SetLayerData(2, "base.png");
    for (int index : {1, 2}) {
        EXPECT_EQ(stack_.GetLayerWidth(index), 3);
        EXPECT_EQ(stack_.GetLayerHeight(index), 2);
        EXPECT_EQ(heights(index)[5], heights(0)[5]);
    }
    EXPECT_NE(stack_.GetLayer(1), small_before) << "two texels have no room for six";
    EXPECT_EQ(small_before[1].x, seen) << "what was replaced stays until Clear";
    EXPECT_EQ(stack_.GetLayer(2), large_before);
    stack_.GenerateLayers();
}

TEST_F(NLayersStack, ABlankFirstLayerHasNoSizeUntilSetLayerDataGivesIt)
{
    provide("a.png", 3, 2, 24, 7);
    add("");
    add("a.png");
    EXPECT_EQ(stack_.GetLayerWidth(1), 0);
    EXPECT_NE(stack_.GetLayer(1), nullptr) << "an empty buffer";
    EXPECT_TRUE(records_.GetRef(1)->regenerate);
    stack_.SetLayerData(1, "a.png");
    EXPECT_EQ(stack_.GetLayerWidth(0), 3);
    EXPECT_EQ(stack_.GetLayerHeight(0), 2);
    EXPECT_EQ(stack_.GetLayer(0), nullptr) << "still without buffers";
    EXPECT_EQ(stack_.GetLayerWidth(1), 3);
    EXPECT_EQ(heights(1)[5], height_of(DevilFake::instance().files["a.png"], 2, 1));
    add("a.png");
    EXPECT_EQ(stack_.GetLayerHeight(2), 2) << "the stack has a size now";
}

TEST_F(NLayersStack, SetLayerDataOnABlankFirstLayerMakesItAHeightLayer)
{
    provide("a.png", 3, 2, 24, 7);
    add("");
    stack_.SetLayerData(0, "a.png");
    EXPECT_EQ(stack_.GetLayerWidth(0), 3);
    ASSERT_NE(stack_.GetLayer(0), nullptr);
    EXPECT_EQ(heights(0)[4], height_of(DevilFake::instance().files["a.png"], 1, 1));
}

TEST_F(NLayersStack, AnEmptyBufferThatComesFirstGrowsWithTheStack)
{
    provide("a.png", 3, 2);
    add("");
    add("a.png");
    add("a.png");
    stack_.MoveLayerUp(1);
    stack_.SetLayerData(2, "a.png");
    EXPECT_EQ(stack_.GetLayerWidth(0), 3);
    EXPECT_EQ(heights(0)[5], 0.0f) << "room for the new size, and nothing in it";
    EXPECT_EQ(stack_.GetLayerWidth(1), 0);
    stack_.GenerateLayers();
    stack_.BlendLayers();
    stack_.BlendHeightMap();
    EXPECT_NE(stack_.height_result, nullptr);
}

} // namespace
