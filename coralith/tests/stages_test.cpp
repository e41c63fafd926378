// SPDX-License-Identifier: MIT

/// Every stage on every device against the processor's own form of it. Rounding is part of the contract:
/// floats are compared bit for bit.

#include "boundary/texture_kernels.h"
#include "common/stop_request.h"
#include "host/backend.h"
#include "normals/height_to_normal.h"
#include "random_image.h"
#include "same_bits.h"
#include "stages/grading.h"
#include "stages/light.h"
#include "stages/normals.h"
#include "stages/occlusion.h"
#include "test_devices.h"
#include "umbrix/grading.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using coralith::Backend;
using coralith::Grading;
using coralith::OcclusionSettings;
using coralith::PortionRule;
using coralith::Shape;
using coralith::test::for_every_backend;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;

constexpr Shape kShapes[] = {{1, 1}, {1, 9}, {7, 1}, {2, 2}, {3, 5}, {37, 65}, {64, 31}};

std::string text_of(Shape shape)
{
    return std::to_string(shape.rows) + " x " + std::to_string(shape.cols);
}

std::size_t texels(Shape shape)
{
    return static_cast<std::size_t>(shape.texels());
}

/// Options that switch every step of a grading on.
umbrix_options graded(float contrast, int low, int high, float brightness, float smooth)
{
    umbrix_options options{};
    options.contrast = options.h_contrast = contrast;
    options.min = options.h_min = static_cast<unsigned char>(low);
    options.max = options.h_max = static_cast<unsigned char>(high);
    options.brightness = options.h_brightness = brightness;
    options.smooth = options.h_smooth = smooth;
    return options;
}

std::vector<umbrix_options> gradings()
{
    return {graded(0, 0, 255, 0, 0),          graded(0.37f, 0, 255, 0, 0),    graded(-3, 12, 255, 0, 0),
            graded(0, 0, 200, -0.21f, 0),     graded(0, 200, 30, 5, 0),       graded(0, 0, 255, 0, 2.5f),
            graded(0.2f, 7, 250, 0.1f, 0.7f), graded(0, 0, 255, 0, -1),       graded(0, 0, 255, 0, 30),
            graded(kNaN, 0, 255, 0, 0),       graded(0, 0, 255, kNaN, 1.25f), graded(0, 0, 255, 0, kNaN)};
}

void expect_grading(Shape shape, umbrix_options options, Values values)
{
    auto heights = random_image<float>(texels(shape), 3, values);
    auto map = random_image<float4>(texels(shape), 4, values);
    auto const height_input = heights;
    auto const map_input = map;
    PreProcess(heights.data(), shape.rows, shape.cols, options);
    PostProcess(map.data(), shape.rows, shape.cols, options);
    for_every_backend([&](Backend& backend, std::string const& name) {
        std::vector<float> got(texels(shape));
        std::vector<float4> got_map(texels(shape));
        ASSERT_TRUE(grade(backend, shape, 1, Grading::of_heights(options), height_input.data(), got.data()))
            << backend.cause();
        ASSERT_TRUE(
            grade(backend, shape, 4, Grading::of_map(options), &map_input.data()->x, &got_map.data()->x))
            << backend.cause();
        EXPECT_SAME_BITS(heights, got) << name << ", " << text_of(shape);
        EXPECT_SAME_BITS(map, got_map) << name << ", " << text_of(shape);
    });
}

TEST(CoralithStages, GradingEqualsTheProcessorsAtEverySize)
{
    for (Shape const shape : kShapes) {
        expect_grading(shape, graded(0.2f, 7, 250, 0.1f, 1.5f), Values::kUnit);
    }
}

TEST(CoralithStages, GradingEqualsTheProcessorsWithEverySetting)
{
    for (umbrix_options const& options : gradings()) {
        expect_grading({37, 29}, options, Values::kSigned);
        expect_grading({9, 14}, options, Values::kHostile);
    }
}

TEST(CoralithStages, HeightBrightnessReachesTheFirstRowsElementsOnly)
{
    Shape const shape = {3, 4};
    std::vector<float> const heights(texels(shape), 0.25f);
    for_every_backend([&](Backend& backend, std::string const& name) {
        std::vector<float> got(texels(shape));
        ASSERT_TRUE(grade(backend, shape, 1, {0, 0, 255, 0.5f, 0}, heights.data(), got.data()));
        EXPECT_EQ(got[2], 0.75f) << name;
        EXPECT_EQ(got[3], 0.25f) << name;
    });
}

TEST(CoralithStages, NormalsEqualTheProcessorsAtEverySize)
{
    struct Setting {
        float n_scale, gaussian, L_Detail;
    };
    constexpr Setting kSettings[] = {{1.0f, 0.0f, 0.0f},   {3.7f, 1.3f, 0.0f},  {0.2f, 0.0f, 1.0f},
                                     {-2.0f, 0.4f, 2.5f},  {9.0f, -1.0f, 6.0f}, {1.0f, 40.0f, 1.001f},
                                     {kNaN, kNaN, kNaN},   {0.0f, 0.0f, -2.0f}, {1e30f, 2.0f, 3.0f},
                                     {1e-30f, 0.0f, 1.5f}, {1e-43f, 0.9f, 2.0f}};
    for (Shape const shape : kShapes) {
        bool const is_odd = shape.texels() == 3 * 5 || shape.texels() == 37 * 65;
        for (Setting const& setting : kSettings) {
            if (!is_odd && &setting >= kSettings + 4) {
                continue; // the rest is about values, not about sizes
            }
            for (Values const values : {Values::kUnit, Values::kHostile}) {
                if (values == Values::kHostile && shape.texels() < 1000) {
                    continue;
                }
                auto heights = random_image<float>(texels(shape), 5, values);
                std::vector<float3> expected(texels(shape));
                std::string status;
                int progress = 0;
                HeightToNormal(heights.data(), expected.data(), shape.rows, shape.cols, setting.n_scale,
                               setting.gaussian, 0.0f, false, 0, setting.L_Detail, false, 0.0f, 0.0f, false,
                               &status, &progress);
                for_every_backend([&](Backend& backend, std::string const& name) {
                    std::vector<float3> got(texels(shape));
                    ASSERT_TRUE(height_to_normal(backend, shape,
                                                 {setting.n_scale, setting.gaussian, setting.L_Detail},
                                                 heights.data(), &got.data()->x))
                        << backend.cause();
                    EXPECT_SAME_BITS(expected, got)
                        << name << ", " << text_of(shape) << ", L_Detail " << setting.L_Detail;
                });
            }
        }
    }
}

TEST(CoralithStages, LightEqualsTheProcessorsInEveryMode)
{
    for (Shape const shape : kShapes) {
        for (int mode = -1; mode <= 4; ++mode) {
            auto const normals = random_image<float3>(texels(shape), 6, Values::kHostile);
            auto expected = normals;
            Normal2Umbrix(expected.data(), shape.rows, shape.cols, static_cast<Modes>(mode), 0, 1);
            for_every_backend([&](Backend& backend, std::string const& name) {
                std::vector<float3> got(texels(shape));
                ASSERT_TRUE(light_normals(backend, shape, mode, &normals.data()->x, &got.data()->x));
                EXPECT_SAME_BITS(expected, got) << name << ", " << text_of(shape) << ", mode " << mode;
            });
        }
    }
}

std::vector<float3> processors_occlusion(Shape shape, OcclusionSettings const& settings,
                                         std::vector<float> heights)
{
    std::vector<ray> bands[3];
    ray* rays[3];
    for (int i = 0; i < 3; ++i) {
        bands[i].resize(2 * static_cast<std::size_t>(std::max(settings.rays, 0)) + 1);
        rays[i] = bands[i].data();
    }
    GenerateRays(shape.rows, shape.cols, rays[0], rays[1], rays[2], settings.rays, settings.theta_limit,
                 settings.alpha_limit);
    std::vector<float3> occlusion(texels(shape));
    Height2DirectionalAO(occlusion.data(), heights.data(), shape.rows, shape.cols, rays[0], rays[1], rays[2],
                         settings.rays, 1.0f, settings.radius, true, settings.columns_wrap,
                         settings.rows_wrap, nullptr);
    return occlusion;
}

void expect_occlusion(Shape shape, OcclusionSettings const& settings, std::vector<float> const& heights,
                      PortionRule const& rule, std::string const& what)
{
    auto const expected = processors_occlusion(shape, settings, heights);
    for_every_backend([&](Backend& backend, std::string const& name) {
        int shown = -1;
        coralith::Progress progress(&shown);
        std::vector<float3> got(texels(shape));
        ASSERT_TRUE(
            directional_occlusion(backend, shape, settings, rule, heights.data(), &got.data()->x, progress))
            << backend.cause();
        EXPECT_SAME_BITS(expected, got) << name << ", " << text_of(shape) << ", " << what;
        EXPECT_EQ(shown, 1000);
    });
}

TEST(CoralithStages, OcclusionEqualsTheProcessorsWithEveryTiling)
{
    for (Shape const shape : kShapes) {
        for (unsigned flags = 0; flags < 4; ++flags) {
            for (Values const values : {Values::kUnit, Values::kHostile}) {
                auto heights = random_image<float>(texels(shape), 8 + flags, values);
                for (float& height : heights) {
                    height *= 0.2f;
                }
                expect_occlusion(shape, {11, 100.0f, 70.0f, 0.8f, (flags & 1) != 0, (flags & 2) != 0},
                                 heights, PortionRule::of(true, 0), "tiling " + std::to_string(flags));
            }
        }
    }
}

TEST(CoralithStages, OcclusionEqualsTheProcessorsWithEverySetting)
{
    Shape const shape = {23, 40};
    auto const heights = random_image<float>(texels(shape), 2, Values::kSigned);
    std::vector<float> low = heights;
    for (float& height : low) {
        height = height * 0.05f - 3.0f;
    }
    OcclusionSettings const settings[] = {
        {0, 90.0f, 90.0f, 0.5f, true, true},    {1, 90.0f, 90.0f, 0.5f, true, true},
        {-4, 90.0f, 90.0f, 0.5f, true, true},   {64, 0.0f, 0.0f, 1.0f, true, false},
        {33, 180.0f, 360.0f, 0.3f, true, true}, {5, 20.0f, 20.0f, 3.0f, true, true},
        {5, 20.0f, 20.0f, 0.0f, true, true},    {5, 20.0f, 20.0f, -1.0f, false, false},
        {5, 20.0f, 20.0f, kNaN, false, false},  {7, 50.0f, 120.0f, 20.0f, false, true},
        {300, 90.0f, 120.0f, 0.1f, true, true}};
    for (OcclusionSettings const& each : settings) {
        std::string const what = std::to_string(each.rays) + " rays, radius " + std::to_string(each.radius);
        expect_occlusion(shape, each, heights, PortionRule::of(true, 0), what);
        expect_occlusion(shape, each, low, PortionRule::of(false, 0), what);
    }
}

TEST(CoralithStages, OcclusionDoesNotDependOnTheCut)
{
    Shape const shape = {17, 19};
    auto heights = random_image<float>(texels(shape), 12);
    for (float& height : heights) {
        height *= 0.1f;
    }
    OcclusionSettings const settings = {7, 90.0f, 90.0f, 0.9f, true, false};
    for (PortionRule const& rule : {PortionRule{1e-9}, PortionRule{1e9}, PortionRule{50.0, 1},
                                    PortionRule{50.0, 5}, PortionRule{50.0, 1000}}) {
        expect_occlusion(shape, settings, heights, rule,
                         std::to_string(rule.target_milliseconds) + " ms, " + std::to_string(rule.rays));
    }
}

TEST(CoralithStages, RaysThatFillSeveralTablesAddUp)
{
    Shape const shape = {3, 5};
    auto heights = random_image<float>(texels(shape), 21);
    for (float& height : heights) {
        height *= 0.01f;
    }
    // Rays at the horizon walk their whole length: more steps than one table holds.
    OcclusionSettings const settings = {2, 90.0f, 90.0f, 225000.0f, true, true};
    auto flat = heights;
    flat[7] = 3e6f; // so that they have something to climb to
    expect_occlusion(shape, settings, flat, PortionRule::of(true, 0), "long rays");
}

/// The host, where a front end asks for a stop while dispatch @p stop_at of the occlusion is at work.
class StoppedBackend final : public Backend {
public:
    StoppedBackend(int& progress, int stop_at) : progress_(progress), stop_at_(stop_at) {}

    char const* kind() const override { return host_.kind(); }
    coralith::Limits limits() const override { return host_.limits(); }
    bool allocate(std::size_t bytes, coralith::Memory& memory) override
    {
        return host_.allocate(bytes, memory);
    }
    void release(coralith::Memory& memory) override { host_.release(memory); }
    bool upload(coralith::Memory const& memory, void const* from, std::size_t bytes) override
    {
        return host_.upload(memory, from, bytes);
    }
    bool download(coralith::Memory const& memory, void* to, std::size_t bytes) override
    {
        ++downloads;
        return host_.download(memory, to, bytes);
    }
    bool launch(coralith::Kernel kernel, coralith::Index items, coralith::Arguments arguments) override
    {
        if (launches++ == stop_at_) {
            progress_ = umbrixlib::detail::kStopRequest;
        }
        return host_.launch(kernel, items, arguments);
    }
    bool finish() override { return host_.finish(); }

    int launches = 0;
    int downloads = 0;

private:
    coralith::HostBackend host_;
    int& progress_;
    int stop_at_;
};

TEST(CoralithOcclusion, NoDispatchFollowsAStop)
{
    Shape const shape{64, 31};
    auto const heights = random_image<float>(texels(shape), 3);
    std::vector<float> result(3 * texels(shape));
    OcclusionSettings const settings{9, 90.0f, 90.0f, 0.7f, true, true};
    PortionRule rule{50.0};
    rule.rays = 1; // so that there are 27 dispatches
    for (int const stop_at : {0, 1, 8, 9, 26}) {
        int progress = 0;
        StoppedBackend backend(progress, stop_at);
        coralith::Progress shown(&progress);
        EXPECT_TRUE(coralith::directional_occlusion(backend, shape, settings, rule, heights.data(),
                                                    result.data(), shown))
            << "the device is not to blame";
        EXPECT_EQ(backend.launches, stop_at + 1);
        EXPECT_EQ(backend.downloads, 0);
        EXPECT_EQ(progress, umbrixlib::detail::kStopRequest);
    }
}

} // namespace
