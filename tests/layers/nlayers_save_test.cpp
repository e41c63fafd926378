// SPDX-License-Identifier: MIT
// Saving of results, with a stand-in for DevIL that keeps the bytes.
#include "layers/nlayers.h"

#include "call_log.h"
#include "devil_fake.h"
#include "random_stack.h"

#include <gmock/gmock.h>
#include <omp.h>

namespace {

using testing::Each;
using testing::ElementsAre;
using namespace umbrixlib::test;

constexpr layer_size kSavedSize{3, 4};

class NLayersSave : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        DevilFake::instance().serve(1, 1, 24);
        CallLog::instance().clear();
    }
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }

    static std::vector<unsigned char> const& stored() { return DevilFake::instance().stored; }

    static ReferenceStack one_layer(ReferenceLayer const& layer)
    {
        return {{layer}, {plain_record()}, std::vector<float3>(layer.texels(), {0.0f, 0.0f, 1.0f})};
    }

    static unsigned char normal_byte(float v)
    {
        return static_cast<unsigned char>(static_cast<int>((double(v) + 1.0) * 0.5 * 255.0));
    }
};

TEST_F(NLayersSave, NothingIsWrittenWithoutAResult)
{
    BuiltStack built({{height_layer(kSavedSize, 1)}, {plain_record()}, {}});
    built.layers.GenerateLayers();
    built.layers.BlendHeightMap();
    CallLog::instance().clear();
    EXPECT_FALSE(built.layers.SaveResult("a.tga"));
    EXPECT_FALSE(built.layers.SaveHeight("a.tga")) << "it asks for the normals";
    EXPECT_TRUE(CallLog::instance().calls().empty());
}

TEST_F(NLayersSave, NormalsGoIntoAFreshImage)
{
    BuiltStack built(one_layer(normal_layer(kSavedSize, 1)));
    EXPECT_TRUE((CallLog::instance().clear(), built.layers.SaveResult("a.tga")));
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("ilInit()", "ilEnable(0x0620)", "ilEnable(0x0600)",
                            "ilSetInteger(0x0600, 0x0602)", "ilGenImage()", "ilBindImage(7)",
                            "ilTexImage(4x3x0, 3, 0x1907, 0x1401, #1)", "ilSaveImage(a.tga)"));
    ASSERT_EQ(stored().size(), 36U);
    for (std::size_t i = 0; i < 36; i += 3) {
        EXPECT_THAT((std::vector<int>{stored()[i], stored()[i + 1], stored()[i + 2]}),
                    ElementsAre(127, 127, 255));
    }
}

TEST_F(NLayersSave, HeightsGoIntoAFreshImageToo)
{
    BuiltStack built(one_layer(height_layer(kSavedSize, 1)));
    EXPECT_TRUE((CallLog::instance().clear(), built.layers.SaveHeight("a.tga")));
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("ilInit()", "ilEnable(0x0620)", "ilEnable(0x0600)",
                            "ilSetInteger(0x0600, 0x0602)", "ilGenImage()", "ilBindImage(7)",
                            "GenerateExp(0, #1)", "GenerateExp(128, #2)",
                            "ilTexImage(4x3x0, 3, 0x1907, 0x1401, #3)", "ilSaveImage(a.tga)"));
}

TEST_F(NLayersSave, AFailedSaveIsNotNoticed)
{
    BuiltStack built(one_layer(height_layer(kSavedSize, 1)));
    DevilFake::instance().save_result = 0;
    EXPECT_TRUE(built.layers.SaveResult("a.tga"));
    EXPECT_TRUE(built.layers.SaveHeight("a.tga"));
}

TEST_F(NLayersSave, BytesAreTruncatedWithoutAClamp)
{
    ReferenceStack stack = one_layer(normal_layer(kSavedSize, 1));
    stack.result = random_image<float3>(12, 3, Values::kSigned);
    BuiltStack built(stack);
    built.layers.SaveResult("a.tga");
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(stored()[3 * i], normal_byte(stack.result[i].x));
        EXPECT_EQ(stored()[3 * i + 1], normal_byte(stack.result[i].y));
        EXPECT_EQ(stored()[3 * i + 2], normal_byte(stack.result[i].z));
    }
}

TEST_F(NLayersSave, TheSizeIsThatOfTheLastLayer)
{
    ReferenceStack stack = one_layer(normal_layer(kSavedSize, 1));
    stack.result = random_image<float3>(12, 3);
    stack.layers.push_back(normal_layer({2, 2}, 2));
    stack.records.push_back(plain_record());
    BuiltStack built(stack);
    EXPECT_TRUE(built.layers.SaveResult("a.tga"));
    ASSERT_EQ(stored().size(), 12U);
    EXPECT_EQ(stored()[9], normal_byte(stack.result[3].x)) << "the first texels, in narrower rows";
}

TEST_F(NLayersSave, AResultWithoutTheRoomIsNotSaved)
{
    BuiltStack built(
        {{normal_layer({2, 2}, 1), normal_layer({3, 2}, 2)}, {plain_record(), plain_record()}, {}});
    built.layers.BlendLayers();
    CallLog::instance().clear();
    EXPECT_FALSE(built.layers.SaveResult("a.tga"));
    EXPECT_TRUE(CallLog::instance().calls().empty());
    built.layers.RemoveLayer(0);
    built.layers.RemoveLayer(0);
    EXPECT_NE(built.layers.GetResult(), nullptr);
    EXPECT_FALSE(built.layers.SaveResult("a.tga")) << "no layer has a size";
    EXPECT_FALSE(built.layers.SaveHeight("a.tga"));
}

TEST_F(NLayersSave, AVtfNameReversesTheRowsAndLosesOne)
{
    ReferenceStack stack = one_layer(normal_layer(kSavedSize, 1));
    stack.result = random_image<float3>(12, 3);
    BuiltStack built(stack);
    for (char const* name : {"a.vtf", "a.vtf.tga", ".vtf"}) {
        built.layers.SaveResult(name);
        EXPECT_THAT(std::vector<unsigned char>(stored().begin(), stored().begin() + 12), Each(0)) << name;
        for (std::size_t row : {1U, 2U}) {
            for (std::size_t x = 0; x < 4; ++x) {
                EXPECT_EQ(stored()[3 * (4 * row + x) + 1], normal_byte(stack.result[4 * (3 - row) + x].y));
            }
        }
    }
    built.layers.SaveResult("a.VTF");
    EXPECT_EQ(stored()[1], normal_byte(stack.result[0].y)) << "the case of the letters must match";
}

TEST_F(NLayersSave, HeightsSpanTheWholeRange)
{
    ReferenceLayer layer = height_layer(kSavedSize, 5, Values::kSigned);
    BuiltStack built(one_layer(layer));
    built.layers.SaveHeight("a.tga");
    auto const [low, high] = std::minmax_element(layer.heights.begin(), layer.heights.end());
    float const range = static_cast<float>(double(*high) - double(*low));
    for (std::size_t i = 0; i < 12; ++i) {
        float const above = static_cast<float>(double(layer.heights[i]) - double(*low));
        auto const byte =
            static_cast<unsigned char>(double(static_cast<float>(double(above) / double(range))) * 255.0);
        EXPECT_THAT(std::vector<unsigned char>(stored().begin() + static_cast<std::ptrdiff_t>(3 * i),
                                               stored().begin() + static_cast<std::ptrdiff_t>(3 * i + 3)),
                    Each(byte));
    }
}

TEST_F(NLayersSave, TwoHeightsBecomeBlackAndWhiteAndAFlatMapBlack)
{
    ReferenceLayer layer = height_layer(kSavedSize, 5);
    layer.heights.assign(12, 0.25f);
    {
        BuiltStack built(one_layer(layer));
        built.layers.SaveHeight("a.tga");
        EXPECT_THAT(stored(), Each(0));
    }
    layer.heights[7] = 0.26f;
    BuiltStack built(one_layer(layer));
    built.layers.SaveHeight("a.tga");
    EXPECT_THAT(stored(), Each(testing::AnyOf(0, 255)));
    EXPECT_EQ(stored()[21], 255);
}

TEST_F(NLayersSave, AStackWithoutFirstHeightsSavesABlackMap)
{
    BuiltStack built(one_layer(normal_layer(kSavedSize, 1)));
    EXPECT_TRUE(built.layers.SaveHeight("a.tga"));
    EXPECT_EQ(stored(), std::vector<unsigned char>(36, 0));
}

TEST_F(NLayersSave, SingleLinesAndOneTexelAreSavedWhole)
{
    for (layer_size const size : {layer_size{1, 1}, layer_size{1, 9}, layer_size{9, 1}}) {
        ReferenceLayer const layer = height_layer(size, 5);
        ReferenceStack stack = one_layer(layer);
        stack.result = random_image<float3>(layer.texels(), 3);
        BuiltStack built(stack);
        EXPECT_TRUE(built.layers.SaveResult("a.tga"));
        ASSERT_EQ(stored().size(), 3 * layer.texels());
        for (std::size_t i = 0; i < layer.texels(); ++i) {
            EXPECT_EQ(stored()[3 * i], normal_byte(stack.result[i].x));
            EXPECT_EQ(stored()[3 * i + 2], normal_byte(stack.result[i].z));
        }
        EXPECT_TRUE(built.layers.SaveHeight("a.tga"));
        ASSERT_EQ(stored().size(), 3 * layer.texels());
        auto const highest = std::max_element(layer.heights.begin(), layer.heights.end());
        std::ptrdiff_t const at = 3 * (highest - layer.heights.begin());
        EXPECT_EQ(stored()[static_cast<std::size_t>(at)], layer.texels() == 1 ? 0 : 255)
            << "one height is flat";
    }
}

TEST_F(NLayersSave, OneThreadSavesAWholeVtfHeightMap)
{
    ReferenceLayer const layer = height_layer(kSavedSize, 5);
    BuiltStack built(one_layer(layer));
    built.layers.SaveHeight("a.tga");
    std::vector<unsigned char> const plain = stored();
    omp_set_num_threads(1);
    built.layers.SaveHeight("a.vtf");
    EXPECT_THAT(std::vector<unsigned char>(stored().begin(), stored().begin() + 12), Each(0));
    EXPECT_TRUE(std::equal(stored().begin() + 12, stored().begin() + 24, plain.begin() + 24));
    EXPECT_TRUE(std::equal(stored().begin() + 24, stored().end(), plain.begin() + 12));
    built.layers.SaveHeight("a.VTF.tga");
    EXPECT_EQ(stored(), plain) << "the case of the letters must match";
}

TEST_F(NLayersSave, ManyThreadsSaveAVtfHeightMapOfTexelsInTheirPlaces)
{
    constexpr layer_size kLarge{200, 150};
    ReferenceLayer const layer = height_layer(kLarge, 5);
    BuiltStack built(one_layer(layer));
    built.layers.SaveHeight("a.tga");
    std::vector<unsigned char> const plain = stored();
    omp_set_num_threads(8);
    for (int again = 0; again < 5; ++again) {
        built.layers.SaveHeight("a.vtf");
        for (std::size_t y = 0; y < 200; ++y) {
            for (std::size_t x = 0; x < 3 * 150; ++x) {
                unsigned char const byte = stored()[y * 450 + x];
                ASSERT_TRUE(byte == 0 || byte == plain[(200 - y) * 450 + x]) << "left out, or in its place";
            }
        }
    }
}

TEST_F(NLayersSave, AnImageOfOneRowWithAVtfNameIsZeros)
{
    for (layer_size const size : {layer_size{1, 5}, layer_size{0, 0}}) {
        ReferenceLayer layer = height_layer(size, 5);
        layer.has_heights = size.height != 0;
        ReferenceStack stack = one_layer(layer);
        stack.result.resize(5, {1.0f, 1.0f, 1.0f});
        BuiltStack built(stack);
        EXPECT_TRUE(built.layers.SaveResult("a.vtf"));
        EXPECT_THAT(stored(), Each(0));
        EXPECT_TRUE(built.layers.SaveHeight("a.vtf"));
        EXPECT_THAT(stored(), Each(0));
        EXPECT_EQ(stored().size(), size.height == 0 ? 0U : 15U);
    }
}

TEST_F(NLayersSave, TheNextHeightMapTakesTheBufferOfTheLast)
{
    n_layer record = plain_record();
    record.L_Detail = 2.0f;
    BuiltStack built({{height_layer(kSavedSize, 1)}, {record}, std::vector<float3>(12)});
    auto const filter_call = [&] {
        for (std::string const& call : CallLog::instance().calls()) {
            if (call.rfind("BilateralFilter(", 0) == 0) {
                return call;
            }
        }
        return std::string();
    };
    built.layers.SaveHeight("a.tga");
    CallLog::instance().clear();
    built.layers.SaveHeight("a.tga");
    std::string const first = filter_call();
    std::string const filtered = first.substr(first.find(", ") + 2, 2);
    std::string const log_entry = "BilateralFilter(" + filtered;
    built.layers.SaveHeight("a.tga");
    EXPECT_EQ(CallLog::instance().calls()[CallLog::instance().calls().size() - 3].substr(0, log_entry.size()),
              log_entry)
        << "the filtered heights of one call are the buffer of the next";
}

} // namespace
