// SPDX-License-Identifier: MIT
// What a stack blends, bit for bit, against the plain reference. Built twice: with the real kernels, and with
// their stand-ins, which are simple enough to be seen through.
#include "layers/nlayers.h"

#include "nlayers_reference.h"
#include "random_stack.h"
#include "same_bits.h"

#include <numeric>
#include <omp.h>

namespace {

using namespace umbrixlib::test;

constexpr std::uint32_t kStacks = 150;

std::vector<float> blended_heights(ReferenceStack const& stack, HeightForm form)
{
    BuiltStack built(stack);
    std::size_t const n = stack.layers[0].texels();
    float* heights = nullptr;
    if (form == HeightForm::kReference) {
        heights = new float[n];
        built.layers.BlendHeightMap(heights);
        std::vector<float> const blended(heights, heights + n);
        delete[] heights;
        return blended;
    }
    built.layers.BlendHeightMap();
    heights = built.layers.height_result;
    return {heights, heights + n};
}

class NLayersValues : public testing::TestWithParam<int> {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(GetParam());
    }
    void TearDown() override { omp_set_num_threads(omp_get_num_procs()); }
};

INSTANTIATE_TEST_SUITE_P(Threads, NLayersValues, testing::Values(1, 5));

TEST_P(NLayersValues, HeightsIntoACallersArrayEqualTheReference)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack const stack = random_stack(seed);
        ASSERT_TRUE(same_bits(reference_heights(stack, HeightForm::kReference),
                              blended_heights(stack, HeightForm::kReference)))
            << seed;
    }
}

TEST_P(NLayersValues, HeightsIntoTheHeightResultEqualTheReference)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack const stack = random_stack(seed);
        ASSERT_TRUE(same_bits(reference_heights(stack, HeightForm::kNoArgument),
                              blended_heights(stack, HeightForm::kNoArgument)))
            << seed;
    }
}

/// The stored normals of all layers, which some modes rewrite, and the result.
void expect_same_state(ReferenceStack const& expected, NLayers& actual, std::uint32_t seed)
{
    for (std::size_t i = 0; i < expected.layers.size(); ++i) {
        std::vector<float3> const& normals = expected.layers[i].normals;
        ASSERT_TRUE(same_bits(reinterpret_cast<float const*>(normals.data()),
                              reinterpret_cast<float const*>(actual.GetLayer(static_cast<int>(i))),
                              normals.size() * 3))
            << seed << ", layer " << i;
    }
    ASSERT_EQ(expected.result.empty(), actual.result == nullptr) << seed;
    ASSERT_TRUE(same_bits(reinterpret_cast<float const*>(expected.result.data()),
                          reinterpret_cast<float const*>(actual.result), expected.result.size() * 3))
        << seed << ", result";
}

TEST_P(NLayersValues, NormalsIntoTheResultEqualTheReference)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack stack = random_stack(seed);
        BuiltStack built(stack);
        for (int again = 0; again < 2; ++again) {
            reference_normals(stack, NormalForm::kResult);
            built.layers.BlendLayers();
            ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, seed));
        }
    }
}

TEST_P(NLayersValues, NormalsIntoACallersArrayEqualTheReference)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack stack = random_stack(seed);
        BuiltStack built(stack);
        if (seed % 2 != 0) {
            reference_normals(stack, NormalForm::kResult);
            built.layers.BlendLayers();
        }
        std::vector<float3> destination(stack.layers[0].texels());
        built.layers.BlendLayers(destination.data());
        ASSERT_TRUE(same_bits(reference_normals(stack, NormalForm::kDestination), destination)) << seed;
        ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, seed));
    }
}

TEST_P(NLayersValues, NormalsInAnOrderEqualTheReference)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack stack = random_stack(seed);
        BuiltStack built(stack);
        std::mt19937 generator(seed);
        auto const count = static_cast<int>(stack.layers.size());
        std::vector<int> order(1 + generator() % 6);
        for (int& index : order) {
            index = static_cast<int>(generator() % static_cast<unsigned>(count));
        }
        while (!stack.layers[static_cast<std::size_t>(order[0])].has_normals) {
            order[0] = (order[0] + 1) % count;
        }
        reference_normals(stack, NormalForm::kOrder, order);
        built.layers.BlendLayers(order.data(), static_cast<int>(order.size()));
        ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, seed));
    }
}

TEST_P(NLayersValues, LargeMapsEqualTheReference)
{
    // More than one band of rows, the last of them shorter; one overlay between other modes.
    layer_size const size{1240, 301}; // five threads share 327680 texels
    ReferenceStack stack;
    for (int const mode : {3, 0, 0, 2, 1, 3}) {
        stack.layers.push_back(height_layer(size, static_cast<std::uint32_t>(stack.layers.size()) * 2));
        stack.records.push_back(plain_record(mode, 35.0f));
    }
    BuiltStack built(stack);
    reference_normals(stack, NormalForm::kResult);
    built.layers.BlendLayers();
    ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, 0));
    std::vector<float3> destination(stack.layers[0].texels());
    built.layers.BlendLayers(destination.data());
    EXPECT_TRUE(same_bits(reference_normals(stack, NormalForm::kDestination), destination));
    ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, 0));
    for (HeightForm const form : {HeightForm::kReference, HeightForm::kNoArgument}) {
        EXPECT_TRUE(same_bits(reference_heights(stack, form), blended_heights(stack, form)));
    }
}

TEST_P(NLayersValues, ALayerThatIsBlendedIntoJoinsAsWhatIsBlendedSoFar)
{
    for (int const mode : {2, 3}) {
        ReferenceStack stack;
        for (std::uint32_t const seed : {1U, 3U}) {
            stack.layers.push_back(height_layer({9, 17}, seed));
            stack.records.push_back(plain_record(mode, 35.0f));
        }
        BuiltStack built(stack);
        float3* const into = built.layers.GetLayer(1);
        built.layers.BlendLayers(into);
        stack.layers[1].normals = stack.layers[0].normals; // the first layer is copied there before it joins
        std::vector<float3> const expected = reference_normals(stack, NormalForm::kDestination);
        EXPECT_TRUE(same_bits(expected, {into, into + expected.size()})) << mode;
    }
}

unsigned char bitmap_byte(float v)
{
    double const scaled = (double(v) + 1.0) * 0.5 * 255.0;
    bool const fits = scaled > -2147483649.0 && scaled < 2147483648.0;
    return static_cast<unsigned char>(static_cast<unsigned>(fits ? static_cast<int>(scaled) : 0) & 0xffU);
}

void expect_bitmap(std::vector<float3> const& normals, layer_size size,
                   std::vector<unsigned char> const& bitmap)
{
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            float3 const v = normals[static_cast<std::size_t>((size.height - 1 - y) * size.width + x)];
            unsigned char const* const texel = bitmap.data() + 4 * (y * size.width + x);
            ASSERT_EQ(texel[0], bitmap_byte(v.z));
            ASSERT_EQ(texel[1], bitmap_byte(v.y));
            ASSERT_EQ(texel[2], bitmap_byte(v.x));
            ASSERT_EQ(texel[3], 0xab) << "never written";
        }
    }
}

TEST_P(NLayersValues, BitmapsShowTheBlendAndTheResult)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack stack = random_stack(seed);
        BuiltStack built(stack);
        layer_size const size = stack.layers[0].size;
        std::vector<unsigned char> bitmap(4 * stack.layers[0].texels(), 0xab);
        built.layers.CopyResultToBmp(bitmap.data());
        ASSERT_EQ(bitmap, std::vector<unsigned char>(bitmap.size(), 0xab)) << "there is no result yet";
        if (seed % 2 != 0) {
            reference_normals(stack, NormalForm::kResult);
            built.layers.BlendLayers();
        }
        built.layers.BlendLayersToBmp(bitmap.data());
        ASSERT_NO_FATAL_FAILURE(expect_bitmap(reference_normals(stack, NormalForm::kBitmap), size, bitmap));
        ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, seed));
        if (stack.result.empty()) {
            reference_normals(stack, NormalForm::kResult);
            built.layers.BlendLayers();
        }
        built.layers.CopyResultToBmp(bitmap.data());
        ASSERT_NO_FATAL_FAILURE(expect_bitmap(stack.result, size, bitmap));
    }
}

TEST_P(NLayersValues, RemovedAndMovedLayersBlendInTheirNewOrder)
{
    for (std::uint32_t seed = 0; seed < kStacks; ++seed) {
        ReferenceStack stack = random_stack(seed);
        if (stack.layers.size() < 3) {
            continue;
        }
        BuiltStack built(stack);
        built.layers.RemoveLayer(1);
        built.records.Remove(1);
        stack.layers.erase(stack.layers.begin() + 1);
        stack.records.erase(stack.records.begin() + 1);
        for (int i = 1; i + 1 < built.layers.Count(); ++i) {
            auto const at = static_cast<std::size_t>(i);
            built.layers.MoveLayerDown(i);
            std::swap(*built.records.GetRef(i), *built.records.GetRef(i + 1));
            std::swap(stack.layers[at], stack.layers[at + 1]);
            std::swap(stack.records[at], stack.records[at + 1]);
        }
        reference_normals(stack, NormalForm::kResult);
        built.layers.BlendLayers();
        ASSERT_NO_FATAL_FAILURE(expect_same_state(stack, built.layers, seed));
        built.layers.BlendHeightMap();
        std::size_t const n = stack.layers[0].texels();
        ASSERT_TRUE(same_bits(reference_heights(stack, HeightForm::kNoArgument),
                              std::vector<float>(built.layers.height_result, built.layers.height_result + n)))
            << seed;
    }
}

TEST(NLayersValuesLarge, AStackOfManyBlocksEqualsTheReference)
{
    for (int const mode : {0, 1, 2, 3}) {
        ReferenceStack stack;
        for (std::uint32_t i = 0; i < 3; ++i) {
            stack.layers.push_back(height_layer({131, 127}, 10 * i));
            stack.records.push_back(plain_record(mode, 60.0f));
        }
        BuiltStack built(stack);
        reference_normals(stack, NormalForm::kResult);
        built.layers.BlendLayers();
        expect_same_state(stack, built.layers, static_cast<std::uint32_t>(mode));
    }
}

} // namespace
