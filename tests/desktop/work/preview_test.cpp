// SPDX-License-Identifier: MIT
#include "work/preview.h"

#include "random_state.h"
#include "work/previewer.h"
#include "work_pictures.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

using toolkit::Picture;
using toolkit::Settings;

toolkit::DecodedImage image_of(Picture picture)
{
    return toolkit::DecodedImage({std::move(picture)});
}

/// Settings with which a part can be made exactly.
Settings local_settings(test::RandomState& random, float radius)
{
    Settings settings = toolkit::kDefaults;
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        bool const reading = (row.users & toolkit::kForHeights) != 0;
        if (reading || (row.users & toolkit::kForMap) != 0 || row.users == toolkit::kForPresets) {
            random.change(row, settings);
        }
    }
    settings.kind = toolkit::Kind::kHeightMap;
    settings.height_from = toolkit::HeightChannel::kMean;
    settings.relief = static_cast<float>(random.number(0.01, 0.3));
    settings.h_scale =
        random.coin() ? std::nullopt : std::optional(static_cast<float>(random.number(0.01, 0.3)));
    settings.rays = 1 + static_cast<int>(random.below(24));
    settings.radius = radius;
    settings.gaussian = settings.h_smooth = settings.smooth = settings.h_brightness = 0;
    settings.detail = settings.b_radius = 0;
    settings.min = settings.h_min = static_cast<int>(random.below(20));
    settings.max = settings.h_max = 200 + static_cast<int>(random.below(56));
    settings.light = settings.light || !settings.occlusion;
    return settings;
}

void expect_equal_texels(Picture const& whole, Picture const& part, Part const& made, Cut const& visible,
                         std::string const& what)
{
    ASSERT_EQ(cut_out(part, made.cut).bytes, cut_out(whole, visible).bytes) << what;
}

TEST(DesktopPreview, OfAPartHasTheTexelsOfTheWhole)
{
    test::RandomState random(5);
    toolkit::Observer nobody;
    int parts = 0;
    for (int i = 0; i < 60; ++i) {
        int const channels = std::array{1, 3, 4}[random.below(3)];
        toolkit::DecodedImage const image =
            image_of(random.coin() ? test::hills(512, 384, channels)
                                   : test::hills(512, 384, channels, umbrixlib::SampleType::kUint8));
        Settings const settings = local_settings(random, static_cast<float>(random.number(0, 0.1)));
        Origin const whole = origin_of(image, "brick.png", settings);
        Cut const visible{static_cast<int>(random.below(400)), static_cast<int>(random.below(300)),
                          1 + static_cast<int>(random.below(100)), 1 + static_cast<int>(random.below(80))};
        Ground const ground = ground_of(whole, nobody);
        if (auto const part = exact_part(whole, ground, visible, settings.occlusion)) {
            Origin const origin{part->image, "brick.png", part->settings, ground.kind, ground.normal_y};
            expect_equal_texels(make_map(whole, nobody), make_map(origin, nobody), *part, visible,
                                fmt::format("map {}", i));
            parts += settings.occlusion ? 1 : 0;
        }
        auto const light = exact_part(whole, ground, visible, false);
        ASSERT_TRUE(light);
        Origin const origin{light->image, "brick.png", light->settings, ground.kind, ground.normal_y};
        expect_equal_texels(make_normals(whole, nobody), make_normals(origin, nobody), *light, visible,
                            fmt::format("normals {}", i));
    }
    EXPECT_GT(parts, 5);
}

/// Ground of few levels, so high that some rays climb less in a step than a float can tell.
TEST(DesktopPreview, OfAPartHasTheTexelsOfTheWholeOnHighTerraces)
{
    Picture picture = test::hills(128, 128, 1, umbrixlib::SampleType::kUint8);
    for (auto& height : picture.bytes) {
        height = static_cast<std::uint8_t>(height / 64 * 64);
    }
    picture.bytes[100] = 255;
    toolkit::DecodedImage const image = image_of(picture);
    Settings settings = toolkit::kDefaults;
    settings.h_scale = 1000.0f;
    settings.rays = 1000;
    settings.radius = 0.1f;
    Origin const whole = origin_of(image, "brick.png", settings);
    toolkit::Observer nobody;
    Ground const ground = ground_of(whole, nobody);
    EXPECT_EQ(ground.highest, 100U);
    Picture const map = make_occlusion(whole, nobody);
    for (int const left : {20, 50, 80}) {
        Cut const visible{left, 40, 20, 20};
        auto const part = exact_part(whole, ground, visible, true);
        ASSERT_TRUE(part);
        Origin const origin{part->image, "brick.png", part->settings, ground.kind, ground.normal_y};
        expect_equal_texels(map, make_occlusion(origin, nobody), *part, visible, fmt::format("{}", left));
    }
}

TEST(DesktopPreview, OfAPartOfANormalMapHasTheTexelsOfTheWhole)
{
    toolkit::DecodedImage const image = image_of(test::hills(512, 256, 4, umbrixlib::SampleType::kUint8));
    toolkit::Observer nobody;
    for (bool const generate : {false, true}) {
        for (auto const green : {toolkit::NormalY::kUp, toolkit::NormalY::kDown}) {
            Settings settings = toolkit::kDefaults;
            settings.kind = toolkit::Kind::kNormalMap;
            settings.normal_y = green;
            settings.generate_normal = generate;
            settings.height_in_alpha = generate;
            settings.radius = 0.02f;
            Origin const whole = origin_of(image, "brick.png", settings);
            Ground const ground = ground_of(whole, nobody);
            Cut const visible{150, 90, 64, 64};
            auto const part = exact_part(whole, ground, visible, true);
            ASSERT_TRUE(part);
            Origin const origin{part->image, "brick.png", part->settings, ground.kind, ground.normal_y};
            expect_equal_texels(make_map(whole, nobody), make_map(origin, nobody), *part, visible, "map");
        }
    }
}

TEST(DesktopPreview, OfAPartIsNotMadeWhereFiltersReachFurther)
{
    toolkit::DecodedImage const image = image_of(test::hills(512, 512));
    toolkit::Observer nobody;
    Settings settings = toolkit::kDefaults;
    settings.radius = 0.02f;
    Cut const visible{200, 200, 100, 100};
    auto const has_part = [&](Settings const& with) {
        Origin const whole = origin_of(image, "brick.png", with);
        return exact_part(whole, ground_of(whole, nobody), visible, true).has_value();
    };
    EXPECT_TRUE(has_part(settings));
    for (float Settings::*const field : {&Settings::gaussian, &Settings::detail, &Settings::b_radius,
                                         &Settings::h_smooth, &Settings::smooth}) {
        Settings filtered = settings;
        filtered.*field = 3;
        EXPECT_FALSE(has_part(filtered));
    }
    settings.radius = 0.5f;
    EXPECT_FALSE(has_part(settings));
}

TEST(DesktopPreview, OfAllIsTheMeanOfSquares)
{
    Picture picture = toolkit::make_picture(5, 3, 1, umbrixlib::SampleType::kUint8);
    picture.bytes = {0, 2, 10, 20, 7, 4, 6, 30, 41, 8, 100, 101, 50, 50, 9};
    Picture const reduced = box_reduced(picture, 2);
    EXPECT_EQ(reduced.width, 3);
    EXPECT_EQ(reduced.height, 2);
    EXPECT_EQ(reduced.bytes, (std::vector<std::uint8_t>{3, 25, 8, 101, 50, 9}));
}

TEST(DesktopPreview, OfAllKeepsTheRelief)
{
    Picture plane = toolkit::make_picture(1024, 1024, 1, umbrixlib::SampleType::kUint16);
    for (std::size_t i = 0; i < plane.texels(); ++i) {
        plane.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>((i % 1024) * 64);
    }
    toolkit::DecodedImage const image = image_of(std::move(plane));
    Settings settings = toolkit::kDefaults;
    settings.save_depth = umbrixlib::SampleType::kFloat;
    settings.relief = 0.5f;
    toolkit::Observer nobody;
    for (std::optional<float> const n_scale : {std::optional<float>(), std::optional(100.0f)}) {
        settings.n_scale = n_scale;
        Origin const whole = origin_of(image, "brick.png", settings);
        Part const part = reduced_part(whole, ground_of(whole, nobody), 2);
        Origin const origin{part.image, "brick.png", part.settings, toolkit::Kind::kHeightMap, std::nullopt};
        Picture const small = make_normals(origin, nobody);
        Picture const large = make_normals(whole, nobody);
        ASSERT_EQ(small.width, 512);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_NEAR(small.samples<float>()[3 * (256 * 512 + 256) + c],
                        large.samples<float>()[3 * (512 * 1024 + 512) + c], 1e-5);
        }
    }
}

TEST(DesktopPreview, TurnsAreasOver)
{
    EXPECT_EQ(cut_of(Area{10, 20, 30, 40}, 100, 200), (Cut{10, 140, 30, 40}));
    EXPECT_EQ(area_of(Cut{10, 140, 30, 40}, 200), (Area{10, 20, 30, 40}));
    EXPECT_EQ(cut_of(Area{-10, -5, 30, 40}, 100, 200), (Cut{0, 165, 20, 35}));
    EXPECT_EQ(cut_of(Area{500, 0, 10, 10}, 100, 200), (Cut{0, 0, 100, 200}));
    EXPECT_EQ(cut_of(std::nullopt, 100, 200), (Cut{0, 0, 100, 200}));
}

} // namespace
} // namespace umbrix_desktop
