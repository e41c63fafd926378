// SPDX-License-Identifier: MIT
#include "document/command_text.h"
#include "random_state.h"
#include "temporary_folder.h"
#include "work_pictures.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <string>

namespace umbrix_desktop {
namespace {

namespace fs = std::filesystem;
using umbrixlib::test::TemporaryFolder;

/// Runs a line that begins with the name of the tool, and takes its result away.
toolkit::Picture made_by_tool(std::string line, fs::path const& output)
{
    line.replace(0, std::string("umbrix").size(), shell_quoted(UMBRIX_TOOL));
    line += " --overwrite --progress none -o " + shell_quoted(output.string()) + " >&2";
    int const status = std::system(line.c_str());
    EXPECT_EQ(status, 0) << line;
    return status == 0 ? test::load(output) : toolkit::Picture{};
}

/// Settings that the tool takes, with little to do.
toolkit::Settings random_settings(test::RandomState& random)
{
    toolkit::Settings settings = toolkit::kDefaults;
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        if (random.below(3) == 0 && (row.users & (toolkit::kForMap | toolkit::kForHeights)) != 0) {
            random.change(row, settings);
        }
    }
    settings.height_from = toolkit::HeightChannel::kMean;
    settings.rays = 1 + static_cast<int>(random.below(16));
    settings.radius = static_cast<float>(random.number(0, 0.5));
    settings.detail = settings.b_radius = random.coin() ? 0.0f : 2.0f;
    settings.gaussian = settings.smooth = settings.h_smooth = random.coin() ? 0.0f : 1.5f;
    settings.light = settings.light || !settings.occlusion;
    settings.min = std::min(settings.min, settings.max);
    settings.h_min = std::min(settings.h_min, settings.h_max);
    settings.save_depth = random.coin() ? std::nullopt : std::optional(umbrixlib::SampleType::kUint16);
    settings.kind = std::array{std::optional<toolkit::Kind>(), std::optional(toolkit::Kind::kHeightMap),
                               std::optional(toolkit::Kind::kNormalMap)}[random.below(3)];
    settings.normal_y = settings.kind != toolkit::Kind::kHeightMap && random.coin() ? toolkit::NormalY::kDown
                                                                                    : toolkit::NormalY::kUp;
    return settings;
}

TEST(DesktopCommandAndTool, MakeTheSameMapAsTheWindow)
{
    TemporaryFolder const folder;
    test::RandomState random(6);
    test::Listener listener;
    for (int i = 0; i < 24; ++i) {
        int const channels = 1 + static_cast<int>(random.below(4));
        fs::path const file =
            folder.path() / fmt::format("old 'brick' {}{}.png", i, i % 3 == 0 ? "_nor_dx" : "");
        test::save(
            test::hills(70, 50, channels,
                        random.coin() ? umbrixlib::SampleType::kUint16 : umbrixlib::SampleType::kUint8),
            file);
        Wish wish = test::wish_for(file, {Show::kMap});
        wish.settings = random_settings(random);
        Made const made = listener.make(wish);
        ASSERT_EQ(made.failure, "") << i;
        State state;
        state.source = wish.source;
        state.settings = wish.settings;
        std::string const line = command_of(state);
        toolkit::Picture const by_tool = made_by_tool(line, folder / "out.png");
        toolkit::Picture const& by_window = *test::picture_of(made, Show::kMap);
        ASSERT_EQ(by_tool.bytes, by_window.bytes) << line;
        ASSERT_EQ(by_tool.attributes, by_window.attributes) << line;
    }
}

TEST(DesktopCommandAndTool, LightTheMapAsTheWindowDoes)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    fs::path const colours = folder / "colours.png";
    test::save(test::hills(70, 50), file);
    test::save(test::hills(70, 50, 3, umbrixlib::SampleType::kUint8), colours);
    test::Listener listener;
    Wish wish = test::wish_for(file, {Show::kMap, Show::kRelit});
    wish.lighting.light = {30, 20};
    wish.lighting.exposure = 0.7;
    wish.lighting.ambient = 0.1;
    wish.lighting.albedo = colours.string();
    Made const made = listener.make(wish);
    test::save(*test::picture_of(made, Show::kMap), folder / "map.png");
    toolkit::Picture const by_tool =
        made_by_tool(fmt::format("umbrix relight {} --light 30,20 --exposure 0.7 --ambient 0.1 --albedo {}",
                                 shell_quoted((folder / "map.png").string()), shell_quoted(colours.string())),
                     folder / "lit.png");
    EXPECT_EQ(by_tool.bytes, test::picture_of(made, Show::kRelit)->bytes);
}

} // namespace
} // namespace umbrix_desktop
