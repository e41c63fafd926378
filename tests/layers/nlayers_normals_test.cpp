// SPDX-License-Identifier: MIT
// Blending of normals: the kernel calls of all forms, and what each does to buffers. The stand-ins of the
// kernels fade plainly; the scale multiplies x.
#include "layers/nlayers.h"

#include "call_log.h"
#include "kernels_fake.h"
#include "random_stack.h"
#include "same_bits.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <memory>
#include <omp.h>
#include <sstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace umbrixlib::test;
using Calls = std::vector<std::string>;

constexpr layer_size kNormalsSize{2, 3};

ReferenceLayer flat_layer(float3 normal, float height = 0.5f)
{
    ReferenceLayer layer{kNormalsSize, true, true, {}, {}};
    layer.heights.assign(6, height);
    layer.normals.assign(6, normal);
    return layer;
}

ReferenceLayer without_heights(ReferenceLayer layer)
{
    layer.has_heights = false;
    return layer;
}

constexpr float3 kUp{0.0f, 0.0f, 1.0f};
constexpr float3 kTilted{0.6f, 0.0f, 0.8f};
constexpr float3 kSteep{0.0f, 0.8f, 0.6f};

class NLayersNormals : public testing::Test {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(3);
        KernelsFake::instance().callers_met = false;
    }
    void TearDown() override
    {
        EXPECT_FALSE(KernelsFake::instance().callers_met) << "kernels see one caller at a time";
        omp_set_num_threads(omp_get_num_procs());
    }

    /// Layers of the mode in question, all alike but for their tilt.
    static ReferenceStack three_layers(int mode, float opacity)
    {
        return {{flat_layer(kUp, 0.5f), flat_layer(kTilted, 0.25f), flat_layer(kSteep, 0.75f)},
                {plain_record(mode, opacity), plain_record(mode, opacity / 2), plain_record(mode, 7.0f)},
                {}};
    }

    /// The calls of @p body. The layers' normals are #1, #2, ... and what stands in `result` before the call
    /// is the next.
    template <typename Body>
    static Calls calls_of(BuiltStack& built, Body&& body)
    {
        CallLog::instance().clear();
        for (int i = 0; i < built.layers.Count(); ++i) {
            CallLog::instance().buffer(built.layers.GetLayer(i));
        }
        CallLog::instance().buffer(built.layers.result);
        body();
        return CallLog::instance().calls();
    }

    /// The overlay of colour buffers @p a and @p b.
    static std::string overlay_call(char const* opacity, int a, int b)
    {
        std::ostringstream call;
        call << "Blend(1, " << opacity << ", #" << a << ", #" << b << ", #" << a << ", 2, 3)";
        return call.str();
    }

    static std::vector<float3> blended(ReferenceStack const& stack)
    {
        BuiltStack built(stack);
        std::vector<float3> destination(stack.layers[0].texels(), {9.0f, 9.0f, 9.0f});
        built.layers.BlendLayers(destination.data());
        return destination;
    }
};

TEST_F(NLayersNormals, TheOrderOfTheModeZeroCallDiffersByForm)
{
    BuiltStack built(three_layers(0, 40.0f));
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(); }),
                ElementsAre("BlendNormal(40, #2, #4, #4, 2, 3)", "BlendNormal(20, #3, #4, #4, 2, 3)",
                            "NormalScale(#4, 2, 3, 1)"));
    std::vector<float3> destination(6);
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(destination.data()); }),
                ElementsAre("BlendNormal(40, #5, #2, #4, 2, 3)", "BlendNormal(20, #5, #3, #4, 2, 3)",
                            "NormalScale(#5, 2, 3, 1)"));
    std::vector<unsigned char> bitmap(24);
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayersToBmp(bitmap.data()); }),
                ElementsAre("BlendNormal(40, #5, #2, #4, 2, 3)", "BlendNormal(20, #5, #3, #4, 2, 3)",
                            "NormalScale(#5, 2, 3, 1)"));
    int order[] = {2, 0, 1};
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(order, 3); }),
                ElementsAre("BlendNormal(7, #5, #1, #5, 2, 3)", "BlendNormal(40, #5, #2, #5, 2, 3)"));
}

TEST_F(NLayersNormals, OverlayWorksOnTwoColourBuffersInEveryForm)
{
    BuiltStack built(three_layers(1, 150.0f));
    auto const shape = [](int a, int b) { return overlay_call("150", a, b); };
    auto const second = [](int a, int b) { return overlay_call("75", a, b); };
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(); }),
                ElementsAre(shape(4, 5), second(4, 5), "NormalScale(#6, 2, 3, 1)"));
    std::vector<float3> destination(6);
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(destination.data()); }),
                ElementsAre(shape(5, 6), second(5, 6), "NormalScale(#7, 2, 3, 1)"));
    std::vector<unsigned char> bitmap(24);
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayersToBmp(bitmap.data()); }),
                ElementsAre(shape(5, 6), second(5, 6), "NormalScale(#7, 2, 3, 1)"));
    int order[] = {0, 1};
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(order, 2); }), ElementsAre(shape(5, 6)));
}

TEST_F(NLayersNormals, MultiplyAndAddCallNoKernelButTheScale)
{
    for (int const mode : {2, 3, -4}) {
        BuiltStack built(three_layers(mode, 50.0f));
        EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(); }),
                    ElementsAre("NormalScale(#4, 2, 3, 1)"));
    }
}

TEST_F(NLayersNormals, OneLayerIsItsNormalsScaled)
{
    n_layer record = plain_record(0, 100.0f);
    record.normal_scale = 0.5f;
    BuiltStack built({{flat_layer(kTilted)}, {record}, {}});
    built.layers.BlendLayers();
    EXPECT_EQ(built.layers.GetResult()[5].x, 0.3f);
    EXPECT_EQ(built.layers.GetResult()[5].z, 0.8f);
    EXPECT_EQ(built.layers.GetResultSize(), 6);
    int order[] = {0};
    built.layers.BlendLayers(order, 1);
    EXPECT_EQ(built.layers.GetResult()[5].x, 0.6f) << "an order is not scaled";
}

TEST_F(NLayersNormals, TheScaleIsThatOfTheFirstRecord)
{
    ReferenceStack stack = three_layers(3, 0.0f);
    stack.records[0].normal_scale = 4.0f;
    stack.records[1].normal_scale = 5.0f;
    BuiltStack built(stack);
    EXPECT_EQ(calls_of(built, [&] { built.layers.BlendLayers(); }).back(), "NormalScale(#4, 2, 3, 4)");
}

TEST_F(NLayersNormals, TheResultIsMadeAnewAndTheOldOneReleased)
{
    BuiltStack built(three_layers(3, 50.0f));
    built.layers.BlendLayers();
    float3 const* const first = built.layers.GetResult();
    built.layers.BlendLayers();
    EXPECT_NE(built.layers.GetResult(), first);
    float3 const* const second = built.layers.GetResult();
    std::vector<float3> destination(6);
    built.layers.BlendLayers(destination.data());
    EXPECT_EQ(built.layers.GetResult(), second) << "stays with the other forms";
}

TEST_F(NLayersNormals, AllLayersAreGeneratedAlsoThoseNotInTheOrder)
{
    ReferenceStack stack = three_layers(3, 50.0f);
    for (n_layer& record : stack.records) {
        record.regenerate = true;
    }
    BuiltStack built(stack);
    int order[] = {1};
    built.layers.BlendLayers(order, 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(built.records.GetRef(i)->regenerate);
        EXPECT_EQ(built.layers.GetLayer(i)[0].x, 0.0f) << "(0, 0, height), as the stand-in generates";
    }
    EXPECT_EQ(built.layers.GetResult()[3].z, 0.25f);
}

TEST_F(NLayersNormals, ModeZeroRewritesTheLayersNormals)
{
    BuiltStack built(
        {{flat_layer(kUp), flat_layer({0.6f, 0.0f, -0.8f})}, {plain_record(0, 0.0f), plain_record()}, {}});
    built.layers.BlendLayers();
    EXPECT_FLOAT_EQ(built.layers.GetLayer(1)[0].x, -0.6f);
    EXPECT_FLOAT_EQ(built.layers.GetLayer(1)[0].z, 0.8f) << "turned round";
    EXPECT_EQ(built.layers.GetLayer(0)[0].z, 1.0f);
}

TEST_F(NLayersNormals, ModeZeroOfTheOtherFormsGoesToTheResult)
{
    ReferenceStack const stack{
        {flat_layer(kUp), flat_layer(kTilted)}, {plain_record(0, 0.0f), plain_record()}, {}};
    BuiltStack built(stack);
    std::vector<float3> destination(6);
    built.layers.BlendLayers(destination.data());
    EXPECT_EQ(built.layers.GetResult(), nullptr);
    EXPECT_EQ(built.layers.GetLayer(1)[0].x, 0.6f) << "without a result the layer is left out";
    built.layers.BlendLayers();
    built.layers.BlendLayers(destination.data());
    EXPECT_EQ(destination[0].x, 0.0f) << "keeps its slopes";
    EXPECT_EQ(built.layers.GetResult()[0].x, 0.75f) << "the layer's slope, neither normalised nor scaled";
    EXPECT_EQ(built.layers.GetResult()[0].z, 1.0f);
}

TEST_F(NLayersNormals, AResultOfAnotherSizeHasNoRoomForModeZero)
{
    ReferenceStack stack{{flat_layer(kUp), flat_layer(kTilted), normal_layer({1, 2}, 4)},
                         {plain_record(0, 0.0f), plain_record(), plain_record()},
                         {}};
    BuiltStack built(stack);
    int order[] = {2};
    built.layers.BlendLayers(order, 1);
    std::vector<float3> destination(6);
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(destination.data()); }),
                ElementsAre("NormalScale(#5, 2, 3, 1)"));
    std::vector<unsigned char> bitmap(24, 1);
    built.layers.CopyResultToBmp(bitmap.data());
    EXPECT_EQ(bitmap, std::vector<unsigned char>(24, 1));
    delete[] std::exchange(built.layers.result, new float3[6]());
    EXPECT_EQ(calls_of(built, [&] { built.layers.BlendLayers(destination.data()); }).size(), 2U)
        << "a result of the front end's is trusted";
}

TEST_F(NLayersNormals, ALayerOfAnotherSizeChangesNothing)
{
    for (int mode = 0; mode < 4; ++mode) {
        for (layer_size const size : {layer_size{3, 2}, layer_size{2, 2}, layer_size{20, 30}}) {
            ReferenceStack stack{{flat_layer(kTilted), height_layer(size, 1)},
                                 {plain_record(mode, 100.0f), plain_record()},
                                 {}};
            EXPECT_EQ(blended(stack)[5].x, 0.6f);
        }
    }
}

TEST_F(NLayersNormals, ABlankLayerIsLeftOutAndItsRecordJoinsTheNext)
{
    ReferenceStack const stack{{flat_layer(kUp), ReferenceLayer{}, flat_layer(kTilted)},
                               {plain_record(3, 0.0f), plain_record(3, 100.0f), plain_record(3, 0.0f)},
                               {}};
    EXPECT_FLOAT_EQ(blended(stack)[0].x, 0.6f);
}

TEST_F(NLayersNormals, AnOrderMultipliesByItsLastLayer)
{
    ReferenceStack const stack = three_layers(2, 100.0f); // heights 1/2, 1/4, 3/4
    {
        BuiltStack built(stack);
        int order[] = {0, 1, 2};
        built.records.GetRef(1)->opacity = 0.0f;
        built.layers.BlendLayers(order, 3);
        float const slope = 0.75f * 0.75f; // the slope of layer 1 times the height of layer 2
        EXPECT_FLOAT_EQ(built.layers.GetResult()[0].x / built.layers.GetResult()[0].z, slope);
    }
    BuiltStack built(stack);
    built.records.GetRef(1)->opacity = 0.0f;
    built.layers.BlendLayers();
    float const slope = 0.75f * 0.5f; // times the height of layer 0
    EXPECT_FLOAT_EQ(built.layers.GetResult()[0].x / built.layers.GetResult()[0].z, slope);
}

TEST_F(NLayersNormals, MultiplyNeedsTheHeightsOfBothLayers)
{
    for (bool const first : {false, true}) {
        ReferenceStack stack{
            {flat_layer(kUp), flat_layer(kTilted)}, {plain_record(2, 100.0f), plain_record()}, {}};
        ReferenceLayer& layer = stack.layers[first ? 0 : 1];
        layer = without_heights(layer);
        EXPECT_EQ(blended(stack)[0].x, 0.0f) << "left out";
    }
    // The last layer of an order, too small for the blend.
    ReferenceStack stack = three_layers(2, 100.0f);
    stack.layers.push_back(height_layer({1, 1}, 1));
    stack.records.push_back(plain_record());
    BuiltStack built(stack);
    int order[] = {0, 1, 3};
    built.layers.BlendLayers(order, 3);
    EXPECT_EQ(built.layers.GetResult()[0].x, 0.0f);
}

TEST_F(NLayersNormals, AnOrderMayLeaveOutAndRepeat)
{
    BuiltStack built({{flat_layer(kUp), flat_layer(kTilted), flat_layer(kSteep)},
                      {plain_record(3, 100.0f), plain_record(3, 100.0f), plain_record(3, 100.0f)},
                      {}});
    int order[] = {1, 1, 1};
    built.layers.BlendLayers(order, 3);
    float3 const sum = built.layers.GetResult()[4];
    EXPECT_NEAR(double(sum.x / sum.z), 3 * 0.75, 1e-6);
    EXPECT_EQ(sum.y, 0.0f);
}

TEST_F(NLayersNormals, AnOrderOfNoEntriesCopiesItsFirstLayer)
{
    for (int const count : {0, -1, -3, std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(count);
        ReferenceStack stack = three_layers(2, 100.0f);
        stack.records[0].normal_scale = 0.5f;
        BuiltStack built(stack);
        int order[] = {1};
        EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(order, count); }), IsEmpty())
            << "neither blended nor scaled";
        ASSERT_NE(built.layers.GetResult(), nullptr);
        EXPECT_SAME_BITS(stack.layers[1].normals,
                         std::vector<float3>(built.layers.GetResult(), built.layers.GetResult() + 6));
        built.records.GetRef(2)->regenerate = true;
        built.layers.BlendLayers(order, count);
        EXPECT_FALSE(built.records.GetRef(2)->regenerate) << "all layers are generated";
    }
}

TEST_F(NLayersNormals, AnEmptyStackReadsNoOrder)
{
    LinkedList<n_layer> records;
    NLayers stack(&records);
    auto const none = std::make_unique<int[]>(0); // a sanitizer ends the test at a read
    stack.BlendLayers(none.get(), 0);
    stack.BlendLayers(none.get(), -1);
    EXPECT_EQ(stack.GetResult(), nullptr);
}

TEST_F(NLayersNormals, OrdersWithoutALayerAreLeftOut)
{
    BuiltStack built(three_layers(3, 100.0f));
    int order[] = {0, -1, 99, 1};
    int outside[] = {3, 0};
    int negative[] = {-1, 0};
    built.layers.BlendLayers(nullptr, 2);
    built.layers.BlendLayers(nullptr, 0);
    built.layers.BlendLayers(outside, 2);
    built.layers.BlendLayers(negative, 2);
    EXPECT_EQ(built.layers.GetResult(), nullptr);
    built.layers.BlendLayers(order, 4);
    EXPECT_EQ(built.layers.GetResult()[0].x, 0.0f)
        << "layer 1 has no record before it that says how it joins";
}

TEST_F(NLayersNormals, AnOpacityOfZeroStillNormalisesTheSlopes)
{
    for (int const mode : {2, 3}) {
        ReferenceStack const stack{{flat_layer({3.0f, 0.0f, -4.0f}), flat_layer(kSteep)},
                                   {plain_record(mode, 0.0f), plain_record()},
                                   {}};
        EXPECT_FLOAT_EQ(blended(stack)[0].x, -0.6f);
        EXPECT_FLOAT_EQ(blended(stack)[0].z, 0.8f) << "z comes out positive";
    }
}

TEST_F(NLayersNormals, AZeroZGivesNaN)
{
    for (int const mode : {2, 3}) {
        EXPECT_TRUE(std::isnan(blended({{flat_layer({1.0f, 0.0f, 0.0f}), flat_layer(kSteep)},
                                        {plain_record(mode, 50.0f), plain_record()},
                                        {}})[0]
                                   .x));
    }
}

TEST_F(NLayersNormals, ModeZeroTurnsRoundAndDividesByZeroAsTheOthersDo)
{
    BuiltStack built({{flat_layer({0.6f, 0.0f, -0.8f}), flat_layer({0.6f, 0.0f, -0.8f})},
                      {plain_record(0, 50.0f), plain_record()},
                      {}});
    built.layers.BlendLayers();
    EXPECT_FLOAT_EQ(built.layers.GetResult()[5].x, -0.6f);
    EXPECT_FLOAT_EQ(built.layers.GetResult()[5].z, 0.8f) << "z comes out positive";

    ReferenceStack upright{
        {flat_layer({1.0f, 0.0f, 0.0f}), flat_layer(kSteep)}, {plain_record(0, 50.0f), plain_record()}, {}};
    upright.layers[0].normals[5] = kUp;
    BuiltStack divided(upright);
    divided.layers.BlendLayers();
    EXPECT_TRUE(std::isnan(divided.layers.GetResult()[0].x));
    EXPECT_FALSE(std::isnan(divided.layers.GetResult()[5].x)) << "of that texel alone";
}

TEST_F(NLayersNormals, OverlayLimitsTheColoursAndLeavesTheLayer)
{
    ReferenceStack const stack{
        {flat_layer(kUp), flat_layer({0.0f, 3.0f, -3.0f})}, {plain_record(1, 100.0f), plain_record()}, {}};
    BuiltStack built(stack);
    built.layers.BlendLayers();
    EXPECT_EQ(built.layers.GetLayer(1)[0].y, 3.0f);
    float3 const shown = built.layers.GetResult()[0]; // the layer as a colour: (1/2, 1, 0)
    EXPECT_EQ(shown.x, 0.0f);
    EXPECT_FLOAT_EQ(shown.y, std::sqrt(0.5f));
    EXPECT_FLOAT_EQ(shown.z, -std::sqrt(0.5f));
}

TEST_F(NLayersNormals, AnEmptyStackAndOneWithoutFirstNormalsChangeNothing)
{
    ReferenceLayer blank_with_size{kNormalsSize, false, false, {}, {}};
    for (ReferenceStack const& stack :
         {ReferenceStack{}, ReferenceStack{{blank_with_size, flat_layer(kUp)}, {{}, {}}, {}}}) {
        BuiltStack built(stack);
        std::vector<float3> destination(6, {9.0f, 9.0f, 9.0f});
        std::vector<unsigned char> bitmap(24, 9);
        int order[] = {0};
        built.layers.BlendLayers();
        built.layers.BlendLayers(destination.data());
        built.layers.BlendLayers(order, 1);
        built.layers.BlendLayersToBmp(bitmap.data());
        built.layers.CopyResultToBmp(bitmap.data());
        EXPECT_EQ(built.layers.GetResult(), nullptr);
        EXPECT_EQ(destination[0].x, 9.0f);
        EXPECT_EQ(bitmap[0], 9);
    }
}

TEST_F(NLayersNormals, LayersWithoutNormalsOrRecordsAreLeftOut)
{
    ReferenceStack stack = three_layers(3, 100.0f);
    stack.layers[1].has_normals = false;
    stack.layers[1].has_heights = false;
    BuiltStack built(stack);
    built.records.Remove(2);
    built.records.Remove(1);
    built.layers.BlendLayers();
    EXPECT_EQ(built.layers.GetResult()[0].y, 0.0f);
    built.records.Remove(0);
    EXPECT_TRUE(calls_of(built, [&] { built.layers.BlendLayers(); }).empty()) << "nobody says how to scale";
    built.layers.BlendLayers(static_cast<float3*>(nullptr));
}

TEST_F(NLayersNormals, AStackOfNoTexelsMakesItsCallsOnNone)
{
    BuiltStack built({{ReferenceLayer{}, ReferenceLayer{}}, {plain_record(), plain_record()}, {}});
    EXPECT_THAT(calls_of(built, [&] { built.layers.BlendLayers(); }),
                ElementsAre("BlendNormal(100, null, #1, #1, 0, 0)", "NormalScale(#1, 0, 0, 1)"));
    EXPECT_NE(built.layers.GetResult(), nullptr);
    EXPECT_EQ(built.layers.GetResultSize(), 0);
}

TEST_F(NLayersNormals, BitmapsHaveTheirRowsReversedAndNoFourthByte)
{
    ReferenceLayer layer = flat_layer(kUp);
    layer.normals[0] = {-1.0f, 0.0f, 1.0f};
    layer.normals[3] = {1.02f, -1.02f, 1.0f}; // the top row's first texel
    BuiltStack built({{layer}, {plain_record()}, {}});
    std::vector<unsigned char> bitmap(24, 77);
    built.layers.BlendLayersToBmp(bitmap.data());
    EXPECT_EQ((std::vector<unsigned char>(bitmap.begin(), bitmap.begin() + 4)),
              (std::vector<unsigned char>{255, 254, 1, 77}))
        << "257 and -2 wrap around";
    EXPECT_EQ((std::vector<unsigned char>(bitmap.begin() + 12, bitmap.begin() + 20)),
              (std::vector<unsigned char>{255, 127, 0, 77, 255, 127, 127, 77}));
    std::vector<unsigned char> copied(24, 77);
    built.layers.BlendLayers();
    built.layers.CopyResultToBmp(copied.data());
    EXPECT_EQ(copied, bitmap);
}

} // namespace
