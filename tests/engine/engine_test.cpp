// SPDX-License-Identifier: MIT
// What needs no image files works in a program that has no DevIL.
#include "filters/narrowing.h"
#include "layers/nlayers.h"
#include "normals/make_normals.h"
#include "umbrix/make_map.h"
#include "umbrix_test_options.h"
#include "worklist/umbrix_list.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <link.h>
#include <string>
#include <vector>

namespace {

using umbrixlib::Outcome;
using umbrixlib::PictureView;
using umbrixlib::SampleType;

constexpr int kSide = 16;
constexpr std::ptrdiff_t kTexels = kSide * kSide;

/// A hill in 16 bits.
std::vector<std::uint16_t> hill()
{
    std::vector<std::uint16_t> heights(kTexels);
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            int const away = std::max(std::abs(x - kSide / 2), std::abs(y - kSide / 2));
            heights[static_cast<std::size_t>(y * kSide + x)] =
                static_cast<std::uint16_t>(60000 - away * 7001);
        }
    }
    return heights;
}

PictureView view_of(std::vector<std::uint16_t> const& heights)
{
    return {heights.data(), kSide, kSide, 1, SampleType::kUint16};
}

TEST(Engine, HasNoDevil)
{
    std::string loaded;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* names) {
            *static_cast<std::string*>(names) += std::string(info->dlpi_name) + "\n";
            return 0;
        },
        &loaded);
    EXPECT_NE(loaded.find("libvelloric"), std::string::npos) << loaded;
    EXPECT_EQ(loaded.find("libIL"), std::string::npos) << loaded;
    EXPECT_EQ(loaded.find("libumbrix."), std::string::npos) << loaded;
}

TEST(Engine, MakesAMapAndWhatItIsMadeOf)
{
    auto const heights = hill();
    umbrixlib::MapRequest request;
    request.source = view_of(heights);
    request.options = umbrixlib::test::neutral_options();
    request.options.calc_type = calc_type_light_occlusion;
    request.options.height_map = request.options.generate_normal = true;
    request.options.rays = 16;
    request.wants_light = request.wants_occlusion = request.wants_normals = request.wants_heights = true;
    umbrixlib::MapResult const result = umbrixlib::make_map(request);
    ASSERT_EQ(result.outcome, Outcome::kDone);
    ASSERT_EQ(result.rows, kSide);
    ASSERT_EQ(result.cols, kSide);
    for (std::ptrdiff_t i = 0; i < kTexels; ++i) {
        EXPECT_EQ(result.heights[i], static_cast<float>(heights[static_cast<std::size_t>(i)] / 65535.0));
        EXPECT_NEAR(result.normals[i].x * result.normals[i].x + result.normals[i].y * result.normals[i].y +
                        result.normals[i].z * result.normals[i].z,
                    1.0f, 1e-5f);
        EXPECT_EQ(result.map[i].x, result.light[i].x * result.occlusion[i].x);
        EXPECT_EQ(result.map[i].w, 1.0f);
    }
    EXPECT_LT(result.occlusion[0].z, 1.0f) << "the hill hides some of the sky";
}

TEST(Engine, BlendsLayersOfPictures)
{
    auto const heights = hill();
    LinkedList<n_layer> records;
    for (int i = 0; i < 2; ++i) {
        n_layer record;
        record.blend_mode = 3;
        record.opacity = 100.0f;
        record.n_scale = 1.0f;
        record.normal_scale = 1.0f;
        records.Add(record);
    }
    NLayers stack(&records, umbrixlib::InMemory{});
    ASSERT_TRUE(stack.AddLayer(view_of(heights)));
    ASSERT_TRUE(stack.AddLayer(view_of(heights)));
    std::vector<float3> normals(kTexels);
    stack.BlendLayers(normals.data());
    auto* blended = new float[kTexels]();
    stack.BlendHeightMap(blended);
    umbrixlib::stretch_heights(blended, kTexels);
    EXPECT_EQ(*std::max_element(blended, blended + kTexels), 1.0f);
    EXPECT_EQ(*std::min_element(blended, blended + kTexels), 0.0f);
    std::vector<unsigned char> bytes(3 * kTexels);
    umbrixlib::normals_to_bytes(normals.data(), kTexels, bytes.data());
    EXPECT_GT(bytes[2], 127);
    delete[] blended;
}

TEST(Engine, MakesNormals)
{
    auto const heights = hill();
    umbrixlib::NormalsRequest request;
    request.heights = view_of(heights);
    request.n_scale = 4.0f;
    umbrixlib::NormalsResult const result = umbrixlib::make_normals(request);
    ASSERT_EQ(result.outcome, Outcome::kDone);
    EXPECT_GT(result.normals[kSide * kSide / 2 + 3 * kSide / 4].x, 0.0f) << "falls to the right";
}

TEST(Engine, StacksAndListsNeedNoFiles)
{
    LinkedList<n_layer> records;
    NLayers const stack(&records);
    umbrix_list list;
    EXPECT_EQ(list.get_size(), 0);
}

} // namespace
