// SPDX-License-Identifier: MIT
// Heights that do not repeat: their normals know nothing of the opposite border.
#include "layers/nlayers.h"
#include "normals/make_normals.h"
#include "umbrix/make_map.h"
#include "umbrix_test_options.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::Borders;
using umbrixlib::Outcome;
using umbrixlib::PictureView;
using umbrixlib::SampleType;

constexpr int kWidth = 24;
constexpr int kHeight = 20;
constexpr std::ptrdiff_t kPlaneTexels = kWidth * kHeight;
constexpr Borders kOpen{false, false};

/// A plane that rises to the right and upwards, so that each border is a cliff where it repeats.
std::vector<float> plane()
{
    std::vector<float> heights;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            heights.push_back(static_cast<float>(x) / 32.0f + static_cast<float>(y) / 64.0f);
        }
    }
    return heights;
}

PictureView plane_view(std::vector<float> const& heights)
{
    return {heights.data(), kWidth, kHeight, 1, SampleType::kFloat};
}

std::vector<float3> normals_of(std::vector<float> const& heights, Borders const& borders, float gaussian)
{
    umbrixlib::NormalsRequest request;
    request.heights = plane_view(heights);
    request.n_scale = 8.0f;
    request.gaussian = gaussian;
    request.borders = borders;
    auto const made = umbrixlib::make_normals(request);
    EXPECT_EQ(made.outcome, Outcome::kDone);
    return {made.normals.get(), made.normals.get() + kPlaneTexels};
}

/// Largest distance of a normal in the given rows and columns from that in the middle of the plane.
float largest_step(float3 const* normals, int first_row = 0, int first_column = 0)
{
    float3 const& middle = normals[kHeight / 2 * kWidth + kWidth / 2];
    float largest = 0.0f;
    for (int y = first_row; y < kHeight - first_row; ++y) {
        for (int x = first_column; x < kWidth - first_column; ++x) {
            float3 const& normal = normals[y * kWidth + x];
            largest = std::max({largest, std::abs(normal.x - middle.x), std::abs(normal.y - middle.y),
                                std::abs(normal.z - middle.z)});
        }
    }
    return largest;
}

TEST(OpenBorders, CarryASlopeOn)
{
    auto const heights = plane();
    EXPECT_LT(largest_step(normals_of(heights, kOpen, 0.0f).data()), 1e-6f);
    EXPECT_GT(largest_step(normals_of(heights, {}, 0.0f).data()), 0.5f);
}

TEST(OpenBorders, AreOpenForABlurToo)
{
    auto const heights = plane();
    EXPECT_LT(largest_step(normals_of(heights, kOpen, 2.0f).data()), 0.02f);
    EXPECT_GT(largest_step(normals_of(heights, {}, 2.0f).data()), 0.1f);
}

TEST(OpenBorders, MayRepeatAlongOneAxis)
{
    auto const heights = plane();
    auto const sideways = normals_of(heights, {true, false}, 0.0f);
    EXPECT_LT(largest_step(sideways.data(), 0, 1), 1e-6f);
    EXPECT_GT(largest_step(sideways.data()), 0.5f);
    auto const upwards = normals_of(heights, {false, true}, 0.0f);
    EXPECT_LT(largest_step(upwards.data(), 1, 0), 1e-6f);
    EXPECT_GT(largest_step(upwards.data()), 0.3f);
}

TEST(OpenBorders, LeaveTheInsideAsItIs)
{
    auto heights = plane();
    for (std::size_t i = 0; i < heights.size(); ++i) {
        heights[i] = static_cast<float>(i * 7919 % 256) / 255.0f;
    }
    auto const open = normals_of(heights, kOpen, 0.0f);
    auto const repeating = normals_of(heights, {}, 0.0f);
    for (int y = 1; y < kHeight - 1; ++y) {
        for (int x = 1; x < kWidth - 1; ++x) {
            auto const at = static_cast<std::size_t>(y * kWidth + x);
            ASSERT_EQ(open[at].x, repeating[at].x) << x << ' ' << y;
            ASSERT_EQ(open[at].y, repeating[at].y) << x << ' ' << y;
            ASSERT_EQ(open[at].z, repeating[at].z) << x << ' ' << y;
        }
    }
}

TEST(OpenBorders, HoldInAMap)
{
    auto const heights = plane();
    umbrixlib::MapRequest request;
    request.source = plane_view(heights);
    request.options = umbrixlib::test::neutral_options();
    request.options.height_map = true;
    request.options.generate_normal = true;
    request.options.calc_type = calc_type_light;
    request.wants_normals = true;
    request.borders = kOpen;
    auto const open = umbrixlib::make_map(request);
    ASSERT_EQ(open.outcome, Outcome::kDone);
    EXPECT_LT(largest_step(open.normals.get()), 1e-6f);
    request.borders = {};
    auto const repeating = umbrixlib::make_map(request);
    ASSERT_EQ(repeating.outcome, Outcome::kDone);
    EXPECT_GT(largest_step(repeating.normals.get()), 0.01f);
}

TEST(OpenBorders, HoldInLayers)
{
    auto const heights = plane();
    for (Borders const borders : {Borders{}, kOpen}) {
        n_layer layer{};
        layer.n_scale = 8.0f;
        layer.regenerate = true;
        layer.normal_scale = 1.0f;
        LinkedList<n_layer> records;
        records.Add(layer);
        NLayers stack(&records, umbrixlib::InMemory{borders});
        ASSERT_TRUE(stack.AddLayer(plane_view(heights)));
        stack.BlendLayers();
        float const step = largest_step(stack.GetResult());
        EXPECT_EQ(step > 0.5f, borders.all_repeat()) << step;
        EXPECT_EQ(step < 1e-5f, !borders.all_repeat()) << step;
    }
}

TEST(OpenBorders, OfOneTexelAreFlat)
{
    float const height = 0.5f;
    umbrixlib::NormalsRequest request;
    request.heights = {&height, 1, 1, 1, SampleType::kFloat};
    request.borders = kOpen;
    auto const made = umbrixlib::make_normals(request);
    ASSERT_EQ(made.outcome, Outcome::kDone);
    EXPECT_EQ(made.normals[0].z, 1.0f);
}

} // namespace
