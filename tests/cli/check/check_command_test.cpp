// SPDX-License-Identifier: MIT
/// `umbrix check`, run as a user runs it.
#include "cli/tool.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

std::string const kSoundNormals = UMBRIX_EXAMPLES "/textures/bricks_normal.png";
std::string const kSoundHeights = UMBRIX_EXAMPLES "/textures/bricks_height.png";

class CheckCommand : public ToolTest {
protected:
    /// Normals of 32 x 32 texels that are all too short, as TGA.
    void write_short_normals(std::string const& name) const
    {
        Bytes texels;
        for (int i = 0; i < 32 * 32; ++i) {
            texels.insert(texels.end(),
                          {static_cast<std::uint8_t>(200 + i % 2 * 10), 127, 127}); // blue, green, red
        }
        write(name, tga_bytes(32, 32, 3, texels));
    }
};

TEST_F(CheckCommand, CallsSoundMapsSound)
{
    Outcome const outcome = run({"check", kSoundNormals, kSoundHeights});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, kSoundNormals + ": normal map, 256 x 256, green up: sound\n" + kSoundHeights +
                               ": height map, 512 x 512: sound\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CheckCommand, TellsWhatItFindsAndEndsWithCode3)
{
    write_short_normals("short_normal.tga");
    Outcome const outcome = run({"check", "short_normal.tga", kSoundHeights, "--normal-y", "up"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_NE(outcome.out.find("short_normal.tga: normal map, 32 x 32, its slopes tell no green: 1 finding\n"
                               "  normal-length: normals are not of length 1 but 0.5"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(
        outcome.out.find("1024 of 1024 texels (100 %), the first at 0, 0; --fix brings these to length 1\n"),
        std::string::npos)
        << outcome.out;
    EXPECT_EQ(files(), (std::set<std::string>{"short_normal.tga"}));
}

TEST_F(CheckCommand, TellsTheSameAsJson)
{
    write_short_normals("short_normal.tga");
    Outcome const outcome = run({"check", "--json", "short_normal.tga"});
    EXPECT_EQ(outcome.code, 3);
    nlohmann::json const told = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(told.at("file"), "short_normal.tga");
    EXPECT_EQ(told.at("kind"), "normal map");
    EXPECT_EQ(told.at("sound"), false);
    EXPECT_EQ(told.at("green"), nullptr);
    EXPECT_EQ(told.at("wrote"), nullptr);
    ASSERT_EQ(told.at("findings").size(), 1U);
    nlohmann::json const& finding = told.at("findings")[0];
    EXPECT_EQ(finding.at("name"), "normal-length");
    EXPECT_EQ(finding.at("texels"), 1024);
    EXPECT_EQ(finding.at("first"), (nlohmann::json{{"x", 0}, {"y", 0}}));
    EXPECT_NEAR(finding.at("strength").get<double>(), 0.43, 0.01);
    Outcome const many = run({"check", "--json", "short_normal.tga", kSoundHeights});
    EXPECT_EQ(std::count(many.out.begin(), many.out.end(), '\n'), 2) << many.out;
}

TEST_F(CheckCommand, WritesAMendedCopyAndReplacesNothingUnasked)
{
    write_short_normals("short_normal.tga");
    Bytes const before = read("short_normal.tga");
    Outcome const outcome = run({"check", "short_normal.tga", "--fix"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_NE(outcome.out.find("  wrote short_normal_Fixed.tga: without normal-length\n"), std::string::npos)
        << outcome.out;
    EXPECT_EQ(read("short_normal.tga"), before);
    EXPECT_EQ(run({"check", "short_normal_Fixed.tga"}).code, 0);
    Outcome const again = run({"check", "short_normal.tga", "--fix"});
    EXPECT_EQ(again.code, 1);
    EXPECT_NE(again.err.find("--overwrite"), std::string::npos) << again.err;
    EXPECT_EQ(run({"check", "short_normal.tga", "--fix", "--overwrite"}).code, 3);
    EXPECT_EQ(run({"check", "short_normal.tga", "--fix", "-o", "other.png"}).code, 3);
    EXPECT_EQ(run({"check", "other.png"}).code, 0);
    EXPECT_EQ(run({"check", "other.png", "--fix"}).code, 0); // nothing to mend, and nothing written
    EXPECT_EQ(files(), (std::set<std::string>{"short_normal.tga", "short_normal_Fixed.tga", "other.png"}));
}

TEST_F(CheckCommand, GoesOnBehindWhatItCannotRead)
{
    write("broken.png", {1, 2, 3});
    write_short_normals("short_normal.tga");
    Outcome const outcome = run({"check", "broken.png", "missing.png", "short_normal.tga"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.err.find("umbrix check: error: broken.png: "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("umbrix check: error: missing.png: there is no such file"), std::string::npos)
        << outcome.err;
    EXPECT_NE(outcome.out.find("1 finding"), std::string::npos) << outcome.out;
    EXPECT_EQ(run({"check", "broken.png"}).code, 1);
}

TEST_F(CheckCommand, LooksAtSeamsOnlyWhereTheMapShouldTile)
{
    write("ramp_height.tga", height_map(64, 64, [](int x, int) { return x * 4; }));
    Outcome const tiled = run({"check", "ramp_height.tga"});
    EXPECT_EQ(tiled.code, 3);
    EXPECT_NE(tiled.out.find("  seam-x: the left and right borders do not meet"), std::string::npos)
        << tiled.out;
    EXPECT_EQ(tiled.out.find("seam-y"), std::string::npos) << tiled.out;
    for (char const* const option : {"--no-tile", "--no-h-tile"}) {
        EXPECT_EQ(run({"check", "ramp_height.tga", option}).code, 0) << option;
    }
    EXPECT_EQ(run({"check", "ramp_height.tga", "--no-v-tile"}).code, 3);
}

TEST_F(CheckCommand, TakesMapsForWhatItIsTold)
{
    ASSERT_EQ(run({"map", kSoundHeights, "-o", "m.png", "--rays", "4", "--mode", "flat"}).code, 0);
    EXPECT_NE(run({"check", "m.png"}).out.find("m.png: Umbrix map, 512 x 512, mode flat: sound\n"),
              std::string::npos);
    Outcome const other = run({"check", "m.png", "--mode", "squared"});
    EXPECT_EQ(other.code, 3);
    EXPECT_NE(other.out.find("  impossible-light: no surface has the light of "), std::string::npos)
        << other.out;
    EXPECT_NE(run({"check", "m.png", "--kind", "height"}).out.find("m.png: height map"), std::string::npos);
}

TEST_F(CheckCommand, RefusesWhatNoFileCouldMakePossible)
{
    for (Arguments const& wrong : {Arguments{"check"}, Arguments{"check", "a.png", "--kind", "cube"},
                                   Arguments{"check", "a.png", "-o", "b.png"},
                                   Arguments{"check", "a.png", "c.png", "--fix", "-o", "b.png"},
                                   Arguments{"check", "a.png", "--normal-y", "left"}}) {
        EXPECT_EQ(run(wrong).code, 2);
    }
}

} // namespace
} // namespace umbrixlib::test
