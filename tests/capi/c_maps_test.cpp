// SPDX-License-Identifier: MIT
#include "c_objects.h"
#include "same_file.h"
#include "temporary_folder.h"

#include <algorithm>
#include <cstdlib>

using umbrixlib::test::TemporaryFolder;

namespace {

std::string const kTextures = UMBRIX_EXAMPLES "/textures/";

/// Makes one picture of another by the tool.
void by_tool(std::string const& arguments)
{
    std::string const line = std::string(UMBRIX_TOOL) + " " + arguments + " --progress none > /dev/null";
    ASSERT_EQ(std::system(line.c_str()), 0) << line;
}

TEST(CMaps, AreTheFilesOfTheTool)
{
    Calls calls;
    TemporaryFolder const folder;
    std::string const own = (folder / "own.png").string();
    std::string const tools = (folder / "tools.png").string();
    umbrix_picture* const map = calls.empty();
    ASSERT_EQ(umbrix_make_map(calls, calls.example("cobbles_height.png"),
                              calls.with({{"relief", "0.03"}, {"rays", "16"}, {"smooth", "1"}}), map),
              UMBRIX_OK)
        << calls.sentence();
    ASSERT_EQ(umbrix_picture_write(calls, map, own.c_str(), nullptr), UMBRIX_OK) << calls.sentence();
    by_tool("map " + kTextures + "cobbles_height.png --relief 0.03 --rays 16 --smooth 1 -o " + tools);
    EXPECT_EQ(bytes_of(own), bytes_of(tools));
}

TEST(CMaps, OfNormalsWithGreenDownAreThatToTheByte)
{
    Calls calls;
    TemporaryFolder const folder;
    struct Depth {
        char const* name;
        umbrix_depth depth;
        char const* extension;
    };
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, calls.example("cobbles_height.png"),
                                  calls.with({{"normal-y", "down"}}), normals),
              UMBRIX_OK);
    for (auto const& [name, depth, extension] :
         {Depth{"8", UMBRIX_DEPTH_8, ".png"}, Depth{"16", UMBRIX_DEPTH_16, ".png"},
          Depth{"half", UMBRIX_DEPTH_HALF, ".exr"}, Depth{"float", UMBRIX_DEPTH_FLOAT, ".exr"}}) {
        std::string const own = (folder / "own").string() + name + extension;
        std::string const tools = (folder / "tools").string() + name + extension;
        umbrix_saving const saving{sizeof(umbrix_saving), depth, UMBRIX_TRUNCATE, UMBRIX_COMPRESSION_DEFAULT,
                                   0};
        ASSERT_EQ(umbrix_picture_write(calls, normals, own.c_str(), &saving), UMBRIX_OK) << calls.sentence();
        by_tool("normal " + kTextures + "cobbles_height.png --normal-y down --depth " + name + " -o " +
                tools);
        EXPECT_EQ(bytes_of(own), bytes_of(tools)) << name;
    }
}

TEST(CMaps, LightAndOcclusionAreItsTwoFactors)
{
    Calls calls;
    std::vector<float> const heights = hills(96, 80);
    umbrix_picture* const source = calls.wrap(heights.data(), Calls::floats(96, 80, 1, UMBRIX_HEIGHTS));
    umbrix_settings* const settings = calls.with({{"rays", "16"}, {"relief", "0.2"}});
    std::vector<float> map, light, open;
    ASSERT_EQ(umbrix_make_map(calls, source, settings, calls.over(map, 96, 80, 3)), UMBRIX_OK)
        << calls.sentence();
    ASSERT_EQ(umbrix_make_light(calls, source, settings, calls.over(light, 96, 80, 3)), UMBRIX_OK);
    ASSERT_EQ(umbrix_make_occlusion(calls, source, settings, calls.over(open, 96, 80, 3)), UMBRIX_OK);
    EXPECT_LT(*std::ranges::min_element(open), 0.9f); // the hills hide something
    for (std::size_t i = 0; i < map.size(); ++i) {
        ASSERT_FLOAT_EQ(map[i], light[i] * open[i]) << i;
    }
}

TEST(CMaps, InMemoryAreThoseOfPicturesOfTheirOwn)
{
    Calls calls;
    std::vector<float> const heights = hills(70, 90);
    umbrix_picture* const source = calls.wrap(heights.data(), Calls::floats(70, 90, 1));
    umbrix_picture* const own = calls.empty();
    std::vector<float> memory;
    ASSERT_EQ(umbrix_make_normals(calls, source, nullptr, own), UMBRIX_OK);
    ASSERT_EQ(umbrix_make_normals(calls, source, nullptr, calls.over(memory, 70, 90, 3)), UMBRIX_OK);
    EXPECT_EQ(calls.samples(own), memory);
}

TEST(CMaps, OfWrongMemoryAreRefusedBeforeTheWork)
{
    Calls calls;
    std::vector<float> const heights = hills(8, 8);
    umbrix_picture* const source = calls.wrap(heights.data(), Calls::floats(8, 8, 1));
    std::vector<float> memory;
    EXPECT_EQ(umbrix_make_normals(calls, source, nullptr, calls.over(memory, 8, 8, 4)),
              UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(memory, std::vector<float>(8 * 8 * 4, -7.0f));
    umbrix_picture* const read_only = calls.wrap(heights.data(), Calls::floats(8, 8, 1));
    EXPECT_EQ(umbrix_read_heights(calls, source, nullptr, read_only), UMBRIX_WRONG_ARGUMENT);
    EXPECT_EQ(umbrix_make_normals(calls, calls.empty(), nullptr, calls.empty()), UMBRIX_WRONG_ARGUMENT);
}

TEST(CMaps, HeightsOfNormalsAreTheHeightsAgain)
{
    Calls calls;
    std::vector<float> const heights = hills(64, 96);
    umbrix_settings* const settings = calls.with({{"relief", "0.1"}});
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(
        umbrix_make_normals(calls, calls.wrap(heights.data(), Calls::floats(64, 96, 1)), settings, normals),
        UMBRIX_OK);
    std::vector<float> back;
    umbrix_height_range range{sizeof(umbrix_height_range), 0, 0};
    ASSERT_EQ(umbrix_make_heights(calls, normals, settings, calls.over(back, 64, 96, 1), &range), UMBRIX_OK)
        << calls.sentence();
    EXPECT_NEAR(range.low, 0.0, 1e-3);
    EXPECT_NEAR(range.high, 1.0, 1e-3);
    for (std::size_t i = 0; i < heights.size(); ++i) {
        ASSERT_NEAR(back[i], heights[i], 1e-3) << i;
    }
}

TEST(CMaps, ReadHeightsAndNormalsAreWhatTheOthersTake)
{
    Calls calls;
    umbrix_picture* const cobbles = calls.example("cobbles_height.png");
    umbrix_picture* const heights = calls.empty();
    ASSERT_EQ(umbrix_read_heights(calls, cobbles, nullptr, heights), UMBRIX_OK);
    EXPECT_EQ(Calls::layout_of(heights).channels, 1);
    umbrix_settings* const few_rays = calls.with({{"rays", "8"}});
    umbrix_picture* const first = calls.empty();
    umbrix_picture* const second = calls.empty();
    ASSERT_EQ(umbrix_make_map(calls, cobbles, few_rays, first), UMBRIX_OK);
    ASSERT_EQ(umbrix_make_map(calls, heights, few_rays, second), UMBRIX_OK);
    EXPECT_EQ(calls.samples(first), calls.samples(second));

    umbrix_picture* const up = calls.empty();
    umbrix_picture* const down = calls.empty();
    umbrix_picture* const read = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, cobbles, nullptr, up), UMBRIX_OK);
    ASSERT_EQ(umbrix_make_normals(calls, cobbles, calls.with({{"normal-y", "down"}}), down), UMBRIX_OK);
    ASSERT_EQ(umbrix_read_normals(calls, down, nullptr, read), UMBRIX_OK);
    EXPECT_NE(calls.samples(up), calls.samples(down));
    EXPECT_EQ(calls.samples(up), calls.samples(read));
}

TEST(CMaps, BentNormalsAndOcclusionCanEachBeLeftOut)
{
    Calls calls;
    std::vector<float> const heights = hills(72, 70);
    umbrix_picture* const source = calls.wrap(heights.data(), Calls::floats(72, 70, 1));
    umbrix_settings* const settings = calls.with({{"relief", "0.3"}});
    std::vector<float> bent, open, alone;
    ASSERT_EQ(
        umbrix_make_bent(calls, source, settings, calls.over(bent, 72, 70, 3), calls.over(open, 72, 70, 1)),
        UMBRIX_OK)
        << calls.sentence();
    ASSERT_EQ(umbrix_make_bent(calls, source, settings, nullptr, calls.over(alone, 72, 70, 1)), UMBRIX_OK);
    EXPECT_EQ(open, alone);
    EXPECT_LT(*std::ranges::min_element(open), 0.9f);
    EXPECT_LE(*std::ranges::max_element(open), 1.0f);
    for (std::size_t i = 0; i < bent.size(); i += 3) {
        float const length = bent[i] * bent[i] + bent[i + 1] * bent[i + 1] + bent[i + 2] * bent[i + 2];
        ASSERT_NEAR(length, 1.0f, 1e-5f);
    }
}

TEST(CMaps, RelitFlatGroundHasTheExposure)
{
    Calls calls;
    std::vector<float> const flat(70 * 70, 0.5f);
    umbrix_picture* const map = calls.empty();
    ASSERT_EQ(umbrix_make_map(calls, calls.wrap(flat.data(), Calls::floats(70, 70, 1, UMBRIX_HEIGHTS)),
                              calls.with({{"rays", "8"}}), map),
              UMBRIX_OK);
    umbrix_light const light{sizeof(umbrix_light), 30, 45, 0.8, 0.1, UMBRIX_FITTED, 0};
    std::vector<float> lit, coloured;
    ASSERT_EQ(umbrix_relight(calls, map, &light, nullptr, nullptr, calls.over(lit, 70, 70, 1)), UMBRIX_OK)
        << calls.sentence();
    EXPECT_NEAR(lit[777], 0.9f, 1e-5f);
    std::vector<float> albedo(70 * 70 * 3, 0.25f);
    ASSERT_EQ(umbrix_relight(calls, map, &light, calls.wrap(albedo.data(), Calls::floats(70, 70, 3)), nullptr,
                             calls.over(coloured, 70, 70, 3)),
              UMBRIX_OK)
        << calls.sentence();
    EXPECT_NEAR(coloured[777], 0.25f * 0.9f, 1e-5f);
}

TEST(CMaps, OfAStackOfOneLayerHaveItsNormals)
{
    Calls calls;
    umbrix_picture* const cobbles = calls.example("cobbles_height.png");
    umbrix_stack* stack = nullptr;
    ASSERT_EQ(umbrix_stack_new(calls, &stack), UMBRIX_OK);
    umbrix_layer layer{};
    layer.size = sizeof layer;
    umbrix_layer_default(&layer);
    ASSERT_EQ(umbrix_stack_add(calls, stack, cobbles, &layer), UMBRIX_OK) << calls.sentence();
    layer.blend = UMBRIX_ADD;
    layer.opacity = 0;
    ASSERT_EQ(umbrix_stack_add(calls, stack, cobbles, &layer), UMBRIX_OK);
    umbrix_picture* const normals = calls.empty();
    umbrix_picture* const heights = calls.empty();
    umbrix_picture* const map = calls.empty();
    umbrix_settings* const settings = calls.with({{"rays", "8"}});
    ASSERT_EQ(umbrix_stack_make(calls, stack, settings, normals, heights, map), UMBRIX_OK)
        << calls.sentence();
    EXPECT_EQ(Calls::layout_of(normals).channels, 3);
    EXPECT_EQ(Calls::layout_of(heights).channels, 1);
    EXPECT_EQ(Calls::layout_of(map).channels, 4);
    std::vector<float> const stretched = calls.samples(heights);
    EXPECT_EQ(*std::ranges::max_element(stretched), 1.0f);
    EXPECT_EQ(*std::ranges::min_element(stretched), 0.0f);
    umbrix_stack_free(stack);
}

TEST(CMaps, FitFindsTheReliefOfItsOwnNormals)
{
    Calls calls;
    std::vector<float> const heights = hills(128, 128);
    umbrix_picture* const source = calls.wrap(heights.data(), Calls::floats(128, 128, 1, UMBRIX_HEIGHTS));
    umbrix_picture* const normals = calls.empty();
    ASSERT_EQ(umbrix_make_normals(calls, source, calls.with({{"relief", "0.07"}}), normals), UMBRIX_OK);
    umbrix_fit fit{};
    fit.size = sizeof fit;
    ASSERT_EQ(umbrix_find_relief(calls, source, normals, nullptr, 0, &fit), UMBRIX_OK) << calls.sentence();
    EXPECT_NEAR(fit.relief, 0.07, 0.0005);
    EXPECT_EQ(fit.beats_flat, 1);
    EXPECT_EQ(fit.inverted, 0);
    EXPECT_EQ(fit.green_down, 0);
    EXPECT_LT(fit.angle, 0.1);
}

} // namespace
