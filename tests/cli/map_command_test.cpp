// SPDX-License-Identifier: MIT
/// `umbrix map`, run as a user runs it.
#include "tool.h"

namespace umbrixlib::test {
namespace {

class MapCommand : public ToolTest {};

constexpr int kFlat = 147; // 255 / sqrt(3), cut off

/// A 32-bit normal map of a slope that faces the top right of the picture, heights in its alpha.
Bytes slope_with_heights()
{
    Bytes pixels;
    for (int i = 0; i < 16 * 16; ++i) {
        pixels.insert(pixels.end(), {230, 170, 180, static_cast<std::uint8_t>(i)});
    }
    return tga_bytes(16, 16, 4, pixels);
}

TEST_F(MapCommand, MakesAMapFromAHeightMap)
{
    write("hill.tga", hill(64));
    Outcome const outcome = run({"map", "hill.tga"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(
        outcome.out.find("wrote hill_Umbrix.tga: Umbrix map, 64 x 64, from a height map (guessed: it has no "
                         "colour)"),
        std::string::npos)
        << outcome.out;
    TgaPicture const map = tga("hill_Umbrix.tga");
    EXPECT_EQ(map.width, 64);
    EXPECT_EQ(map.channels, 3);
    EXPECT_GT(map.at(40, 32, 0), map.at(24, 32, 0)); // red is the light from the right
}

TEST_F(MapCommand, GivesFlatGroundTheSameInAllChannels)
{
    write("flat.tga", height_map(16, 8, [](int, int) { return 100; }));
    ASSERT_EQ(run({"map", "flat.tga"}).code, 0);
    TgaPicture const map = tga("flat_Umbrix.tga");
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(map.at(5, 5, channel), kFlat);
    }
}

TEST_F(MapCommand, TakesTheDirectionOfGreenFromTheEndingOfAName)
{
    write("wall_nor_dx.tga", slope_with_heights());
    write("wall.tga", slope_with_heights());
    std::string const down = run({"map", "wall_nor_dx.tga", "--normal-map"}).out;
    EXPECT_NE(down.find(", green down (its name says so), "), std::string::npos) << down;
    ASSERT_EQ(run({"map", "wall.tga", "--normal-map", "--normal-y", "down"}).code, 0);
    EXPECT_EQ(read("wall_nor_dx_Umbrix.tga"), read("wall_Umbrix.tga"));
    std::string const up =
        run({"map", "wall_nor_dx.tga", "--normal-map", "--normal-y", "up", "--overwrite"}).out;
    EXPECT_NE(up.find(", green up, "), std::string::npos) << up;
    EXPECT_NE(read("wall_nor_dx_Umbrix.tga"), read("wall_Umbrix.tga"));
}

TEST_F(MapCommand, WondersAboutAPictureUnlikeItsName)
{
    write("hill_Nor.tga", hill(16));
    Outcome const outcome = run({"map", "hill_Nor.tga"});
    EXPECT_NE(outcome.out.find("from a height map (guessed: it has no colour)"), std::string::npos);
    EXPECT_NE(
        outcome.err.find("hill_Nor.tga: its name ends in _nor, as those of normal maps do, but it has no "
                         "colour: it is taken for a height map\n"),
        std::string::npos)
        << outcome.err;
    EXPECT_EQ(run({"map", "hill_Nor.tga", "--height-map", "-o", "a.tga", "--progress", "none"}).err, "");
}

TEST_F(MapCommand, SpeaksOfTheScalesThatWereGiven)
{
    write("hill.tga", hill(16));
    auto const told = [&](Arguments const& more) {
        Arguments words{"map", "hill.tga", "-o", "a.tga", "--overwrite"};
        words.insert(words.end(), more.begin(), more.end());
        std::string const out = run(words).out;
        std::size_t const from = out.find("), ") + 3;
        return out.substr(from, out.rfind(", ") - from);
    };
    EXPECT_EQ(told({}), "relief 0.05");
    EXPECT_EQ(told({"--relief", "0.02", "--h-scale", "0.06"}), "h-scale 0.06");
    EXPECT_EQ(told({"--n-scale", "3"}), "relief 0.05, n-scale 3");
}

TEST_F(MapCommand, DarkensWhatTheReliefHides)
{
    write("pit.tga",
          height_map(32, 32, [](int x, int y) { return x > 12 && x < 20 && y > 12 && y < 20 ? 0 : 255; }));
    ASSERT_EQ(run({"map", "pit.tga", "--relief", "0.3", "-o", "with.tga"}).code, 0);
    ASSERT_EQ(run({"map", "pit.tga", "--relief", "0.3", "--no-occlusion", "-o", "without.tga"}).code, 0);
    for (int channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(tga("without.tga").at(16, 16, channel), kFlat);
        EXPECT_LT(tga("with.tga").at(16, 16, channel), kFlat / 2);
    }
}

TEST_F(MapCommand, MakesAMapFromANormalMap)
{
    write("slope.tga", slope_with_heights());
    Outcome const outcome = run({"map", "slope.tga", "--normal-map", "--no-occlusion"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("from a normal map, green up"), std::string::npos) << outcome.out;
    TgaPicture const map = tga("slope_Umbrix.tga");
    EXPECT_GT(map.at(3, 3, 0), map.at(3, 3, 1)); // faces azimuth 0 more than azimuth 240
    EXPECT_GT(map.at(3, 3, 2), map.at(3, 3, 1)); // and azimuth 120, too
}

TEST_F(MapCommand, TurnsGreenOverWhereItPointsDown)
{
    write("down.tga", slope_with_heights());
    Bytes up = slope_with_heights();
    for (std::size_t at = 18; at < up.size(); at += 4) {
        up[at + 1] = static_cast<std::uint8_t>(255 - up[at + 1]);
    }
    write("up.tga", up);
    Outcome const outcome = run({"map", "down.tga", "--normal-map", "--normal-y", "down", "-o", "1.tga"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("green down"), std::string::npos);
    ASSERT_EQ(run({"map", "up.tga", "--normal-map", "-o", "2.tga"}).code, 0);
    EXPECT_EQ(read("1.tga"), read("2.tga"));
}

TEST_F(MapCommand, TellsThatANormalMapWithoutAlphaHasNoRelief)
{
    Bytes pixels;
    for (int i = 0; i < 64; ++i) {
        pixels.insert(pixels.end(), {255, 127, 127});
    }
    write("plain_n.tga", tga_bytes(8, 8, 3, pixels));
    Outcome const outcome = run({"map", "plain_n.tga"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("from a normal map (guessed: its colours are normals)"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.err.find("its ground counts as flat"), std::string::npos) << outcome.err;
}

TEST_F(MapCommand, GuessesByTheNameWhereThePictureDoesNotTell)
{
    Bytes pixels;
    for (int i = 0; i < 64; ++i) {
        pixels.insert(pixels.end(), {20, static_cast<std::uint8_t>(i * 3), 200});
    }
    for (auto const& [name, expected] :
         {std::pair("x_n.tga", "normal map (guessed: its name says 'n')"),
          std::pair("x_HEIGHT.tga", "height map (guessed: its name says 'HEIGHT')"),
          std::pair("x.tga", "height map (guessed: its colours are no normals)")}) {
        write(name, tga_bytes(8, 8, 3, pixels));
        Outcome const outcome = run({"map", name, "-o", "out.tga", "--overwrite"});
        EXPECT_NE(outcome.out.find(expected), std::string::npos) << outcome.out;
    }
}

TEST_F(MapCommand, TakesEveryDepthForTheSamePicture)
{
    // 8 x 4 texels, the top row first here.
    std::vector<Bytes> grey(4), grey_alpha(4), rgb(4), rgba(4), deep(4), palette(4);
    Bytes tga_pixels, tga_grey_alpha;
    Bytes colours;
    for (std::uint8_t i = 0; i < 32; ++i) {
        auto const value = static_cast<std::uint8_t>(i * 8);
        colours.insert(colours.end(), {value, value, value});
        std::size_t const row = i / 8U;
        grey[row].push_back(value);
        grey_alpha[row].insert(grey_alpha[row].end(), {value, 77});
        rgb[row].insert(rgb[row].end(), {value, value, value});
        rgba[row].insert(rgba[row].end(), {value, value, value, 99});
        deep[row].insert(deep[row].end(), {value, value}); // value * 257
        palette[row].push_back(i);
    }
    for (int y = 3; y >= 0; --y) {
        for (std::uint8_t const value : grey[static_cast<std::size_t>(y)]) {
            tga_pixels.insert(tga_pixels.end(), {value, value, value});
            tga_grey_alpha.insert(tga_grey_alpha.end(), {value, 77});
        }
    }
    write("reference.tga", tga_bytes(8, 4, 3, tga_pixels));
    write("grey.png", png_bytes(8, PngColour::kGrey, 8, grey));
    write("grey_alpha.png", png_bytes(8, PngColour::kGreyAlpha, 8, grey_alpha));
    write("rgb.png", png_bytes(8, PngColour::kRgb, 8, rgb));
    write("rgba.png", png_bytes(8, PngColour::kRgba, 8, rgba));
    write("deep.png", png_bytes(8, PngColour::kGrey, 16, deep));
    write("palette.png", png_bytes(8, PngColour::kPalette, 8, palette, colours));
    write("grey_alpha.tga", tga_bytes(8, 4, 2, tga_grey_alpha));
    ASSERT_EQ(run({"map", "reference.tga", "-o", "expected.tga"}).code, 0);
    TgaPicture const expected = tga("expected.tga");
    for (char const* name :
         {"grey.png", "grey_alpha.png", "rgb.png", "rgba.png", "deep.png", "palette.png", "grey_alpha.tga"}) {
        Outcome const outcome =
            run({"map", name, "-o", "out.tga", "--overwrite", "--height-map", "--progress", "none"});
        ASSERT_EQ(outcome.code, 0) << name << outcome.err;
        TgaPicture const map = tga("out.tga");
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) {
                for (int channel = 0; channel < 3; ++channel) {
                    ASSERT_EQ(map.at(x, y, channel), expected.at(x, y, channel))
                        << name << " " << x << " " << y;
                }
            }
        }
        EXPECT_EQ(outcome.err, "") << name;
    }
    Outcome const verbose = run({"map", "palette.png", "-v"});
    EXPECT_NE(verbose.err.find("palette is converted to 24 bits"), std::string::npos) << verbose.err;
}

TEST_F(MapCommand, TakesAPictureOfOneBit)
{
    write("bits.png", png_bytes(8, PngColour::kGrey, 1, {{0xf0}, {0xf0}, {0x0f}, {0x0f}}));
    EXPECT_EQ(run({"map", "bits.png"}).code, 0);
    EXPECT_TRUE(files().contains("bits_Umbrix.png"));
}

TEST_F(MapCommand, NeedsTwoByTwoTexelsForOcclusionOnly)
{
    write("dot.tga", height_map(1, 1, [](int, int) { return 9; }));
    Outcome const outcome = run({"map", "dot.tga"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix map", "dot.tga"));
    EXPECT_EQ(run({"map", "dot.tga", "--no-occlusion"}).code, 0);
    EXPECT_EQ(tga("dot_Umbrix.tga").at(0, 0, 0), kFlat);
}

TEST_F(MapCommand, KeepsTheHeightsInAlpha)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "--height-in-alpha"}).code, 0);
    TgaPicture const map = tga("hill_Umbrix.tga");
    TgaPicture const heights = tga("hill.tga");
    ASSERT_EQ(map.channels, 4);
    for (int x = 0; x < 32; ++x) {
        EXPECT_EQ(map.at(x, 10, 3), heights.at(x, 10, 0));
    }
}

TEST_F(MapCommand, MakesTheSameFileWhateverTheUsersOpenMpSettings)
{
    write("hill.tga", hill(67));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "plain.tga"}).code, 0);
    for (auto const& [variable, value] :
         {std::pair("OMP_NUM_THREADS", "1"), std::pair("OMP_NUM_THREADS", "2"),
          std::pair("OMP_NUM_THREADS", "1000"), std::pair("OMP_NUM_THREADS", "x"),
          std::pair("OMP_THREAD_LIMIT", "1"), std::pair("OMP_DYNAMIC", "1"),
          std::pair("OMP_WAIT_POLICY", "active"), std::pair("OMP_SCHEDULE", "dynamic")}) {
        std::string const name = std::string(variable) + value + ".tga";
        ASSERT_EQ(run({"map", "hill.tga", "-o", name}, {{variable, value}}).code, 0);
        EXPECT_EQ(read(name), read("plain.tga")) << variable;
    }
}

TEST_F(MapCommand, MakesTheSameFileEveryTime)
{
    write("hill.tga", hill(48));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "1.png"}).code, 0);
    ASSERT_EQ(run({"map", "hill.tga", "-o", "2.png"}).code, 0);
    EXPECT_EQ(read("1.png"), read("2.png"));
}

TEST_F(MapCommand, HeedsEveryGradingOption)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"map", "hill.tga", "-o", "plain.tga"}).code, 0);
    Bytes const plain = read("plain.tga");
    std::vector<Arguments> const options{
        {"--relief", "0.1"},     {"--n-scale", "9"},      {"--h-scale", "0.4"},    {"--gaussian", "3"},
        {"--detail", "5"},       {"--rays", "7"},         {"--radius", "0.03"},    {"--alpha-limit", "20"},
        {"--theta-limit", "10"}, {"--b-radius", "4"},     {"--h-contrast", "0.5"}, {"--h-min", "90"},
        {"--h-max", "120"},      {"--h-smooth", "3"},     {"--contrast", "0.4"},   {"--min", "160"},
        {"--max", "120"},        {"--brightness", "0.2"}, {"--smooth", "2"},       {"--mode", "squared"},
        {"--no-light"},          {"--no-occlusion"},
    };
    for (Arguments const& option : options) {
        Arguments all{"map", "hill.tga", "-o", "out.tga", "--overwrite", "--relief", "0.3"};
        if (option[0] != "--relief") {
            ASSERT_EQ(run(all).code, 0);
        } else {
            all = {"map", "hill.tga", "-o", "out.tga", "--overwrite"};
            write("out.tga", plain);
        }
        Bytes const before = read("out.tga");
        all.insert(all.end(), option.begin(), option.end());
        Outcome const outcome = run(all);
        ASSERT_EQ(outcome.code, 0) << option[0] << outcome.err;
        EXPECT_TRUE(read("out.tga") != before) << option[0] << " changes nothing";
    }
}

} // namespace
} // namespace umbrixlib::test
