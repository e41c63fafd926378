// SPDX-License-Identifier: MIT
// The stack as a list and its way from files to layers, with a stand-in for DevIL.
#include "nlayers_stack.h"

#include "boundary/message_box.h"
#include "call_log.h"
#include "picture_depths.h"

#include <cstddef>
#include <gmock/gmock.h>
#include <type_traits>

namespace {

using testing::ElementsAre;
using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::NLayersStack;

static_assert(!std::is_copy_constructible_v<NLayers> && !std::is_copy_assignable_v<NLayers>);
static_assert(!std::is_polymorphic_v<NLayers>);
static_assert(std::is_same_v<decltype(layer_size::height), int> && offsetof(layer_size, width) == 4);

TEST_F(NLayersStack, FieldsStandInTheirOrder)
{
    auto const at = [this](auto const& field) {
        return reinterpret_cast<char const*>(&field) - reinterpret_cast<char const*>(&stack_);
    };
    EXPECT_EQ(at(stack_.normals), 0);
    EXPECT_LT(at(stack_.normals), at(stack_.heights));
    EXPECT_LT(at(stack_.heights), at(stack_.sizes));
    EXPECT_LT(at(stack_.sizes), at(stack_.records));
    EXPECT_LT(at(stack_.records), at(stack_.result));
    EXPECT_LT(at(stack_.result), at(stack_.height_result));
}

TEST_F(NLayersStack, AFreshStackIsEmptyAndHasPreparedDevil)
{
    CallLog::instance().clear();
    {
        NLayers const fresh(&records_);
        EXPECT_EQ(fresh.records, &records_);
        EXPECT_EQ(fresh.result, nullptr);
        EXPECT_EQ(fresh.height_result, nullptr);
        EXPECT_EQ(fresh.normals.count + fresh.heights.count + fresh.sizes.count, 0);
    }
    EXPECT_THAT(CallLog::instance().calls(), ElementsAre("ilInit()", "ilEnable(0x0620)", "ilEnable(0x0600)",
                                                         "ilSetInteger(0x0600, 0x0602)"))
        << "and its end does not touch DevIL";
}

TEST_F(NLayersStack, AddingReadsTheFileIntoTheBoundImage)
{
    provide("a.png", 3, 2);
    auto const expected = ElementsAre("ilInit()", "ilEnable(0x0600)", "ilSetInteger(0x0600, 0x0602)",
                                      "ilLoadImage(a.png)", "ilGetInteger(0x0DE4)", "ilGetInteger(0x0DE5)",
                                      "ilGetInteger(0x0DE9)", "ilCopyPixels(3x2, 0x1907, 0x1401, #1)");
    CallLog::instance().clear();
    add("a.png");
    EXPECT_THAT(CallLog::instance().calls(), expected);
    CallLog::instance().clear();
    add_normal("a.png");
    EXPECT_THAT(CallLog::instance().calls(), expected);
}

TEST_F(NLayersStack, AHeightLayerHoldsTheMeansOfTheColours)
{
    provide("a.png", 3, 2, 32, 250);
    add("a.png");
    EXPECT_EQ(stack_.Count(), 1);
    EXPECT_EQ(stack_.GetLayerWidth(0), 3);
    EXPECT_EQ(stack_.GetLayerHeight(0), 2);
    EXPECT_EQ(stack_.GetResultSize(), 6);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(heights(0)[3 * y + x], height_of(DevilFake::instance().files["a.png"], x, y));
        }
    }
    EXPECT_EQ(stack_.GetLayer(0)[5].z, 0.0f) << "normals wait for their generation";
    EXPECT_TRUE(records_.GetRef(0)->regenerate);
}

TEST_F(NLayersStack, TheMeanOfThreeBytesIsTruncated)
{
    DevilFake::instance().files["a.png"] = {1, 1, 24, {1, 1, 2}};
    add("a.png");
    EXPECT_EQ(heights(0)[0], static_cast<float>(1 / 255.0));
}

TEST_F(NLayersStack, ASmallerImageRepeatsAndALargerOneIsCutOff)
{
    provide("base.png", 256, 128);
    provide("small.png", 64, 64, 24, 3);
    provide("odd.png", 100, 51, 24, 4);
    provide("large.png", 300, 200, 24, 5);
    add("base.png");
    int index = 0;
    for (char const* name : {"small.png", "odd.png", "large.png"}) {
        add(name);
        ++index;
        EXPECT_EQ(stack_.GetLayerWidth(index), 256);
        EXPECT_EQ(stack_.GetLayerHeight(index), 128);
        DevilFake::File const& file = DevilFake::instance().files[name];
        for (int y = 0; y < 128; ++y) {
            for (int x = 0; x < 256; ++x) {
                ASSERT_EQ(heights(index)[256 * y + x], height_of(file, x % file.width, y % file.height))
                    << name << " " << x << " " << y;
            }
        }
    }
}

TEST_F(NLayersStack, ANormalLayerKeepsItsOwnSize)
{
    provide("base.png", 4, 4);
    provide("normal.png", 3, 2, 24, 100);
    add("base.png");
    add_normal("normal.png");
    EXPECT_EQ(stack_.GetLayerWidth(1), 3);
    EXPECT_EQ(stack_.GetLayerHeight(1), 2);
    EXPECT_EQ(heights(1), nullptr);
    EXPECT_FALSE(records_.GetRef(1)->regenerate);
    auto const component = [](int byte) { return static_cast<float>(byte / 255.0 * 2.0 - 1.0); };
    EXPECT_EQ(stack_.GetLayer(1)[4].x, component(112));
    EXPECT_EQ(stack_.GetLayer(1)[4].y, component(113));
    EXPECT_EQ(stack_.GetLayer(1)[4].z, component(114));
}

TEST_F(NLayersStack, AnImageOfOneByteATexelHasNoHeights)
{
    provide("grey.png", 4, 2, 8);
    CallLog::instance().clear();
    add("grey.png");
    EXPECT_EQ(CallLog::instance().calls().back(), "ilCopyPixels(4x2, 0x1400, 0x1401, #1)");
    add_normal("grey.png");
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(heights(0)[i], 0.0f);
        EXPECT_EQ(stack_.GetLayer(1)[i].x, 0.0f);
    }
    EXPECT_EQ(stack_.GetLayerWidth(1), 4);
}

class NLayersDepths : public NLayersStack, public testing::WithParamInterface<int> {
protected:
    /// An image of the depth; its colours, which a copy lays out as three bytes a texel.
    DevilFake::File const& provide_picture(umbrixlib::test::PictureSize size, int start = 9)
    {
        provide("picture.png", size.width, size.height, 8 * GetParam(), start);
        return DevilFake::instance().files["picture.png"];
    }

    /// Whether layer @p index holds @p file at @p size: repeated, and zeros where there are no colours.
    void expect_heights(int index, DevilFake::File const& file, umbrixlib::test::PictureSize size)
    {
        ASSERT_EQ(stack_.GetLayerWidth(index), size.width);
        ASSERT_EQ(stack_.GetLayerHeight(index), size.height);
        bool const has_colours = GetParam() > 1 && file.width * file.height > 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                float const expected = has_colours ? height_of(file, x % file.width, y % file.height) : 0.0f;
                ASSERT_EQ(heights(index)[y * size.width + x], expected) << x << " " << y;
            }
        }
    }
};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, NLayersDepths, testing::ValuesIn(umbrixlib::test::kDepths));

TEST_P(NLayersDepths, HeightLayersHoldTheColoursOfPicturesOfEverySize)
{
    for (auto const& base : umbrixlib::test::kPictureSizes) {
        SCOPED_TRACE(testing::Message() << base.width << " x " << base.height);
        start_afresh();
        DevilFake::File const first = provide_picture(base);
        add("picture.png");
        expect_heights(0, first, base);
        for (auto const& size : umbrixlib::test::kPictureSizes) {
            DevilFake::File const next = provide_picture(size, 77);
            add("picture.png");
            expect_heights(1, next, base);
            if (base.texels() != 0) {
                stack_.SetLayerData(0, "picture.png");
                expect_heights(0, next, base);
            }
            stack_.RemoveLayer(1);
            records_.Remove(1);
        }
    }
}

TEST_P(NLayersDepths, NormalLayersHoldTheColoursOfPicturesOfEverySize)
{
    auto const component = [](int byte) { return static_cast<float>(byte / 255.0 * 2.0 - 1.0); };
    int index = 0;
    for (auto const& size : umbrixlib::test::kPictureSizes) {
        DevilFake::File const file = provide_picture(size);
        add_normal("picture.png");
        EXPECT_EQ(stack_.GetLayerWidth(index), size.width);
        EXPECT_EQ(stack_.GetLayerHeight(index), size.height);
        for (std::size_t i = 0; i < size.texels(); ++i) {
            float3 const normal = stack_.GetLayer(index)[i];
            EXPECT_EQ(normal.x, GetParam() > 1 ? component(file.bytes[3 * i]) : 0.0f);
            EXPECT_EQ(normal.y, GetParam() > 1 ? component(file.bytes[3 * i + 1]) : 0.0f);
            EXPECT_EQ(normal.z, GetParam() > 1 ? component(file.bytes[3 * i + 2]) : 0.0f);
        }
        ++index;
    }
}

TEST_P(NLayersDepths, WhatIsLoadedIsBlendedAndSavedAtEverySize)
{
    for (auto const& size : umbrixlib::test::kPictureSizes) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        start_afresh();
        provide_picture(size);
        add("picture.png");
        add("picture.png");
        stack_.BlendLayers();
        stack_.BlendHeightMap();
        for (char const* const name : {"out.tga", "out.vtf"}) {
            EXPECT_TRUE(stack_.SaveResult(name));
            EXPECT_EQ(DevilFake::instance().stored.size(), 3 * size.texels());
            EXPECT_TRUE(stack_.SaveHeight(name));
            EXPECT_EQ(DevilFake::instance().stored.size(), 3 * size.texels());
        }
    }
}

TEST_F(NLayersStack, ABlankLayerTouchesNothing)
{
    records_.Add({});
    records_.Add({});
    records_.GetRef(0)->regenerate = true;
    CallLog::instance().clear();
    stack_.AddLayer("");
    stack_.AddNormalLayer("");
    EXPECT_TRUE(CallLog::instance().calls().empty());
    EXPECT_EQ(stack_.Count(), 2);
    for (int index : {0, 1}) {
        EXPECT_EQ(stack_.GetLayer(index), nullptr);
        EXPECT_EQ(heights(index), nullptr);
        EXPECT_EQ(stack_.GetLayerWidth(index), 0);
        EXPECT_EQ(stack_.GetLayerHeight(index), 0);
    }
    EXPECT_TRUE(records_.GetRef(0)->regenerate) << "left as it was";
}

int messages_shown = 0;

TEST_F(NLayersStack, AFailedLoadTakesTheBoundImage)
{
    provide("a.png", 3, 2, 24, 40);
    add("a.png");
    auto const handler = set_message_handler([](char const*, char const*) { ++messages_shown; });
    DevilFake::instance().load_result = 0;
    add("missing.png");
    add_normal("missing.png");
    set_message_handler(handler);
    EXPECT_EQ(messages_shown, 0);
    EXPECT_EQ(stack_.Count(), 3);
    EXPECT_EQ(heights(1)[5], heights(0)[5]);
    EXPECT_EQ(stack_.GetLayerWidth(2), 3);
}

TEST_F(NLayersStack, IndicesOutOfRangeGiveNothing)
{
    provide("a.png", 3, 2);
    EXPECT_EQ(stack_.GetResultSize(), 0) << "an empty stack";
    add("a.png");
    for (int index : {-1, 1, 100}) {
        EXPECT_EQ(stack_.GetLayer(index), nullptr);
        EXPECT_EQ(stack_.GetLayerWidth(index), 0);
        EXPECT_EQ(stack_.GetLayerHeight(index), 0);
        stack_.RemoveLayer(index);
        stack_.MoveLayerUp(index);
        stack_.MoveLayerDown(index);
    }
    EXPECT_EQ(stack_.Count(), 1);
}

TEST_F(NLayersStack, MovingExchangesTheLayersAndLeavesTheRecords)
{
    provide("a.png", 3, 2);
    provide("n.png", 5, 4);
    add("a.png");
    add_normal("n.png");
    add("");
    records_.GetRef(0)->name = "first";
    float3* const a = stack_.GetLayer(0);
    float3* const n = stack_.GetLayer(1);
    stack_.MoveLayerUp(0);
    stack_.MoveLayerDown(2);
    EXPECT_EQ(stack_.GetLayer(0), a) << "the ends stay";
    stack_.MoveLayerUp(1);
    EXPECT_EQ(stack_.GetLayer(0), n);
    EXPECT_EQ(stack_.GetLayerWidth(0), 5);
    EXPECT_EQ(heights(0), nullptr);
    EXPECT_EQ(stack_.GetLayer(1), a);
    EXPECT_NE(heights(1), nullptr);
    EXPECT_EQ(records_.GetRef(0)->name, "first");
    stack_.MoveLayerDown(1);
    EXPECT_EQ(stack_.GetLayer(1), nullptr);
    EXPECT_EQ(stack_.GetLayer(2), a);
    EXPECT_EQ(stack_.GetLayerWidth(2), 3);
}

TEST_F(NLayersStack, RemovingTakesTheEntriesOfOneLayer)
{
    provide("a.png", 3, 2);
    provide("n.png", 5, 4);
    add("a.png");
    add_normal("n.png");
    add("");
    stack_.RemoveLayer(1);
    EXPECT_EQ(stack_.Count(), 2);
    EXPECT_EQ(stack_.heights.count, 2);
    EXPECT_EQ(stack_.sizes.count, 2);
    EXPECT_EQ(stack_.GetLayer(1), nullptr);
    stack_.RemoveLayer(1);
    stack_.RemoveLayer(0);
    EXPECT_EQ(stack_.Count(), 0);
    EXPECT_EQ(records_.count, 3) << "the caller's";
}

TEST_F(NLayersStack, ClearTakesLayersAndResultsAndKeepsTheRecords)
{
    stack_.Clear();
    EXPECT_EQ(stack_.Count(), 0);
    provide("a.png", 3, 2);
    add("a.png");
    stack_.BlendLayers();
    stack_.BlendHeightMap();
    EXPECT_NE(stack_.GetResult(), nullptr);
    stack_.Clear();
    EXPECT_EQ(stack_.GetResult(), nullptr);
    EXPECT_EQ(stack_.height_result, nullptr);
    EXPECT_EQ(stack_.heights.count + stack_.sizes.count + stack_.Count(), 0);
    EXPECT_EQ(records_.count, 1);
    stack_.AddLayer("a.png");
    EXPECT_EQ(stack_.GetLayerWidth(0), 3) << "one object serves many images";
}

TEST_F(NLayersStack, NoLayerThatWasGeneratedIsStale)
{
    provide("a.png", 3, 2);
    add("a.png");
    add("a.png");
    add_normal("a.png");
    EXPECT_TRUE(records_.GetRef(1)->regenerate);
    stack_.GenerateLayers();
    for (int index : {0, 1, 2}) {
        EXPECT_FALSE(records_.GetRef(index)->regenerate) << index;
    }
}

TEST_F(NLayersStack, LayersWithoutARecordAreLeftOut)
{
    provide("a.png", 3, 2);
    stack_.AddLayer("a.png");
    stack_.AddNormalLayer("a.png");
    stack_.SetLayerData(0, "a.png");
    stack_.GenerateLayers();
    stack_.BlendHeightMap();
    EXPECT_EQ(stack_.height_result, nullptr);
    stack_.BlendLayers();
    NLayers without_list(nullptr);
    without_list.AddLayer("a.png");
    without_list.BlendHeightMap();
    without_list.BlendLayers();
    EXPECT_EQ(without_list.Count(), 1);
}

} // namespace
