// SPDX-License-Identifier: MIT
/// `umbrix relight`, run as a user runs it.
#include "cli/tool.h"

#include <set>

namespace umbrixlib::test {
namespace {

class RelightCommand : public ToolTest {
protected:
    int lit(std::string const& map, std::string const& light, int x, int y) const
    {
        EXPECT_EQ(run({"relight", map, "--light", light, "-o", "lit.tga", "--overwrite"}).code, 0);
        return tga("lit.tga").at(x, y, 0);
    }
};

TEST_F(RelightCommand, GivesFlatGroundTheSameInEveryLight)
{
    write("flat.tga", height_map(4, 4, [](int, int) { return 147; }));
    for (char const* light : {"0,45", "77,0", "135,30", "200,89", "300,10", "-60,90"}) {
        EXPECT_NEAR(lit("flat.tga", light, 1, 1), 178, 1) << light; // 0.7 of white
    }
}

TEST_F(RelightCommand, LightsTheSlopesThatFaceTheLight)
{
    write("hill.tga", hill(64));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "map.tga"}).code, 0);
    EXPECT_GT(lit("map.tga", "0,30", 48, 32), lit("map.tga", "0,30", 16, 32) + 20);   // right
    EXPECT_GT(lit("map.tga", "90,30", 32, 48), lit("map.tga", "90,30", 32, 16) + 20); // top
    EXPECT_GT(lit("map.tga", "180,30", 16, 32), lit("map.tga", "180,30", 48, 32) + 20);
    EXPECT_GT(lit("map.tga", "270,30", 32, 16), lit("map.tga", "270,30", 32, 48) + 20);
}

TEST_F(RelightCommand, WeighsTheChannelsByTheirDirections)
{
    Bytes pixels; // blue, green, red: a texel for each channel
    pixels = {0, 0, 100, 0, 100, 0, 100, 0, 0, 0, 0, 0};
    write("map.tga", tga_bytes(2, 2, 3, pixels));
    EXPECT_GT(lit("map.tga", "0,10", 0, 0), 0);
    EXPECT_EQ(lit("map.tga", "180,10", 0, 0), 0);
    EXPECT_GT(lit("map.tga", "240,10", 1, 0), lit("map.tga", "240,10", 0, 1));
    EXPECT_GT(lit("map.tga", "120,10", 0, 1), lit("map.tga", "120,10", 1, 0));
    EXPECT_EQ(lit("map.tga", "120,10", 1, 1), 0);
}

TEST_F(RelightCommand, KeepsTheDepthOfTheMap)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "map.exr", "--rays", "16"}).code, 0);
    ASSERT_EQ(run({"relight", "map.exr", "-o", "lit.png", "--depth", "8"}).code, 0);
    ASSERT_EQ(run({"relight", "map.exr", "-o", "deep.png"}).code, 0);
    ASSERT_EQ(run({"relight", "map.exr", "-o", "half.exr"}).code, 0);
    ASSERT_EQ(run({"relight", "map.exr", "-o", "float.exr", "--depth", "float"}).code, 0);
    ASSERT_EQ(run({"relight", "map.exr", "-o", "sheet.png", "--depth", "16", "--turntable", "4"}).code, 0);
    EXPECT_EQ(run({"info", "deep.png"}).out.find("deep.png: 32 x 32, PNG, 16-bit grey\n"), 0U);
    EXPECT_EQ(run({"info", "half.exr"}).out.find("half.exr: 32 x 32, OpenEXR, half-float grey\n"), 0U);
    EXPECT_EQ(run({"info", "float.exr"}).out.find("float.exr: 32 x 32, OpenEXR, float grey\n"), 0U);
    EXPECT_EQ(run({"info", "sheet.png"}).out.find("sheet.png: 64 x 64, PNG, 16-bit grey\n"), 0U);
    // Both round to the nearest, so the nearest byte of the deep one is that of the other.
    ASSERT_EQ(run({"convert", "deep.png", "-o", "narrow.tga", "--depth", "8", "--round", "nearest"}).code, 0);
    ASSERT_EQ(run({"convert", "lit.png", "-o", "lit.tga", "--height-from", "r"}).code, 0);
    EXPECT_EQ(read("narrow.tga"), read("lit.tga"));
}

TEST_F(RelightCommand, WeighsByTheRuleThatIsNamed)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "map.tga"}).code, 0);
    std::set<Bytes> results;
    for (char const* rule : {"fitted", "exact", "clamped"}) {
        ASSERT_EQ(
            run({"relight", "map.tga", "-o", "lit.tga", "--overwrite", "--light", "0,30", "--weights", rule})
                .code,
            0);
        results.insert(tga("lit.tga").pixels);
    }
    EXPECT_EQ(results.size(), 3U);
    ASSERT_EQ(run({"relight", "map.tga", "-o", "lit.tga", "--overwrite"}).code, 0);
    Bytes const by_itself = tga("lit.tga").pixels;
    ASSERT_EQ(run({"relight", "map.tga", "-o", "lit.tga", "--overwrite", "--weights", "fitted"}).code, 0);
    EXPECT_EQ(tga("lit.tga").pixels, by_itself);
    Outcome const wrong = run({"relight", "map.tga", "--weights", "best"});
    EXPECT_EQ(wrong.code, 2);
    EXPECT_NE(wrong.err.find("--weights: 'best' is none of fitted, exact and clamped"), std::string::npos)
        << wrong.err;
}

TEST_F(RelightCommand, BrightensByLightFromAllAround)
{
    write("flat.tga", height_map(4, 4, [](int, int) { return 147; }));
    ASSERT_EQ(run({"relight", "flat.tga", "-o", "lit.tga", "--exposure", "0.5", "--ambient", "0.25"}).code,
              0);
    EXPECT_NEAR(tga("lit.tga").at(1, 1, 0), 191, 1);
}

TEST_F(RelightCommand, ColoursTheSurface)
{
    write("flat.tga", height_map(2, 1, [](int, int) { return 147; }));
    write("albedo.tga", tga_bytes(2, 1, 3, {0, 128, 255, 255, 255, 255})); // blue, green, red
    ASSERT_EQ(run({"relight", "flat.tga", "--albedo", "albedo.tga", "-o", "lit.tga", "--exposure", "1"}).code,
              0);
    TgaPicture const lit = tga("lit.tga");
    EXPECT_EQ(lit.at(0, 0, 2), 0);
    EXPECT_NEAR(lit.at(0, 0, 1), 128, 1);
    EXPECT_NEAR(lit.at(0, 0, 0), 255, 1);
    ASSERT_EQ(
        run({"relight", "flat.tga", "--albedo", "albedo.tga", "-o", "dim.tga", "--exposure", "0.5"}).code, 0);
    EXPECT_NEAR(tga("dim.tga").at(1, 0, 0), 188, 1); // half of the light of white, in sRGB
    ASSERT_EQ(
        run({"relight", "flat.tga", "--albedo", "albedo.tga", "-o", "sheet.tga", "--turntable", "4"}).code,
        0);
    EXPECT_EQ(tga("sheet.tga").at(0, 0, 2), 0);
}

TEST_F(RelightCommand, RefusesAnAlbedoThatDoesNotFit)
{
    write("flat.tga", height_map(4, 4, [](int, int) { return 147; }));
    write("small.tga", height_map(2, 4, [](int, int) { return 147; }));
    Outcome const sizes = run({"relight", "flat.tga", "--albedo", "small.tga", "-o", "lit.tga"});
    EXPECT_EQ(sizes.code, 1);
    EXPECT_NE(
        sizes.err.find("small.tga: its size is 2 x 4 and that of the map 4 x 4; bring both to the same size"),
        std::string::npos)
        << sizes.err;
    Outcome const none = run({"relight", "flat.tga", "--albedo", "none.tga", "-o", "lit.tga"});
    EXPECT_EQ(none.code, 1);
    EXPECT_TRUE(complains_about(none, "umbrix relight", "none.tga")) << none.err;
    Bytes const albedo = read("small.tga");
    Outcome const lost =
        run({"relight", "flat.tga", "--albedo", "small.tga", "-o", "small.tga", "--overwrite"});
    EXPECT_EQ(lost.code, 2);
    EXPECT_NE(lost.err.find("small.tga: it is the albedo, which would be lost; give another name"),
              std::string::npos)
        << lost.err;
    EXPECT_EQ(read("small.tga"), albedo);
}

TEST_F(RelightCommand, WritesAContactSheet)
{
    write("red.tga", tga_bytes(128, 128, 3, [] {
              Bytes pixels;
              for (int i = 0; i < 128 * 128; ++i) {
                  pixels.insert(pixels.end(), {0, 0, 100});
              }
              return pixels;
          }()));
    Outcome const outcome =
        run({"relight", "red.tga", "--light", "0,20", "--turntable", "5", "--cell", "64"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(
        outcome.out.find("wrote red_Turntable.tga: 192 x 128, light from 5 azimuths from 0, elevation 20"),
        std::string::npos)
        << outcome.out;
    TgaPicture const sheet = tga("red_Turntable.tga");
    EXPECT_GT(sheet.at(32, 96, 0), sheet.at(96, 96, 0)); // top row: azimuths 0, 72, 144
    EXPECT_GT(sheet.at(96, 96, 0), 0);
    EXPECT_EQ(sheet.at(160, 96, 0), 0);
    EXPECT_EQ(sheet.at(32, 32, 0), 0); // bottom row: 216, 288, and an empty place
    EXPECT_EQ(sheet.at(96, 32, 0), sheet.at(96, 96, 0));
    EXPECT_EQ(sheet.at(160, 32, 0), 0);
}

TEST_F(RelightCommand, WritesAnAnimation)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "map.tga"}).code, 0);
    Outcome const outcome =
        run({"relight", "map.tga", "--turntable", "5", "--animate", "2", "--light", "30,40"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote map_Turntable.png: 32 x 32, light from 5 azimuths from 30", 0), 0U)
        << outcome.out;
    // Who knows no animations sees the first step.
    ASSERT_EQ(run({"convert", "map_Turntable.png", "-o", "first.tga"}).code, 0);
    ASSERT_EQ(run({"relight", "map.tga", "-o", "lit.tga", "--light", "30,40"}).code, 0);
    EXPECT_EQ(tga("first.tga").pixels, tga("lit.tga").pixels);
    Bytes const file = read("map_Turntable.png");
    std::string const text(file.begin(), file.end());
    EXPECT_NE(text.find("acTL"), std::string::npos);
    Outcome const still = run({"relight", "map.tga", "--animate", "2"});
    EXPECT_EQ(still.code, 2);
    EXPECT_NE(still.err.find("--animate: there is nothing that goes round"), std::string::npos) << still.err;
    Outcome const other = run({"relight", "map.tga", "--turntable", "5", "--animate", "2", "-o", "a.tga"});
    EXPECT_EQ(other.code, 2);
    EXPECT_NE(other.err.find("a.tga is no PNG; give a name ending in .png"), std::string::npos) << other.err;
}

TEST_F(RelightCommand, WantsAnAzimuthAndAnElevation)
{
    write("flat.tga", height_map(4, 4, [](int, int) { return 147; }));
    for (char const* light : {"45", "45,100", "x,3", "10,", "nan,4"}) {
        Outcome const outcome = run({"relight", "flat.tga", "--light", light});
        EXPECT_EQ(outcome.code, 2) << light;
        EXPECT_NE(outcome.err.find("umbrix relight: error: --light: "), std::string::npos) << outcome.err;
    }
}

TEST_F(RelightCommand, TakesTheModeThatAMapTells)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "--mode", "squared", "-o", "map.png"}).code, 0);
    auto const lit_with = [&](Arguments const& options) {
        Arguments words{"relight", "map.png", "-o", "lit.tga", "--overwrite"};
        words.insert(words.end(), options.begin(), options.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.err.find("its mode is squared, and is taken for unit") != std::string::npos,
                  (options == Arguments{"--mode", "unit"}));
        return tga("lit.tga").pixels;
    };
    EXPECT_EQ(lit_with({}), lit_with({"--mode", "squared"}));
    EXPECT_NE(lit_with({}), lit_with({"--mode", "unit"}));
}

TEST_F(RelightCommand, RefusesWhatTellsThatItIsNoMap)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "normals.png"}).code, 0);
    Outcome const outcome = run({"relight", "normals.png", "-o", "lit.tga"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix relight", "normals.png")) << outcome.err;
    EXPECT_EQ(run({"relight", "normals.png", "-o", "lit.tga", "--force"}).code, 0);
}

} // namespace
} // namespace umbrixlib::test
