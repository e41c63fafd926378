// SPDX-License-Identifier: MIT
/// How heights are read, by the options of each command that reads some.
#include "cli/depth/float_files.h"
#include "cli/tool.h"

#include <cmath>
#include <limits>

namespace umbrixlib::test {
namespace {

class HeightOptions : public ToolTest {
protected:
    void write_heights(std::string const& name, std::vector<float> const& heights) const
    {
        write(name, pfm_bytes(8, 8, heights));
    }

    /// Runs `map` with what a test needs to be quick.
    Outcome map(Arguments arguments) const
    {
        Arguments words{"map", "--rays", "4"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return run(words);
    }
};

TEST_F(HeightOptions, OutsideZeroToOneAreRefusedWithTheirRange)
{
    write_heights("x.pfm", scaled_heights(3.0f, -0.5f));
    for (char const* const command : {"map", "normal"}) {
        Outcome const outcome = run({command, "x.pfm", "-o", "out.tga"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err,
                  fmt::format("umbrix {}: error: x.pfm: its heights are -0.5 to 2.5, not 0 to 1; give "
                              "--height-range -0.5,2.5, or --height-range auto for the same\n",
                              command));
        EXPECT_FALSE(std::filesystem::exists(folder() / "out.tga"));
    }
}

TEST_F(HeightOptions, AreStretchedFromTheirOwnRange)
{
    write_heights("wide.pfm", scaled_heights(4.0f, -1.0f));
    write_heights("unit.pfm", scaled_heights(1.0f, 0.0f));
    Outcome const own = map({"wide.pfm", "-o", "own.tga", "--height-range", "auto"});
    ASSERT_EQ(own.code, 0) << own.err;
    EXPECT_NE(own.out.find(", heights from -1 to 3, relief"), std::string::npos) << own.out;
    ASSERT_EQ(map({"wide.pfm", "-o", "given.tga", "--height-range", "-1,3"}).code, 0);
    ASSERT_EQ(map({"unit.pfm", "-o", "unit.tga"}).code, 0);
    EXPECT_EQ(read("own.tga"), read("unit.tga"));
    EXPECT_EQ(read("given.tga"), read("unit.tga"));
    Outcome const normal = run({"normal", "wide.pfm", "-o", "n.tga", "--height-range", "auto"});
    EXPECT_NE(normal.out.find(", heights from -1 to 3, "), std::string::npos) << normal.out;
}

TEST_F(HeightOptions, AreCutAtTheGivenRangeAndThisIsSaid)
{
    write_heights("x.pfm", scaled_heights(1.0f, 0.0f));
    Outcome const outcome = map({"x.pfm", "-o", "out.tga", "--height-range", "0.25,0.75"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.err.find("32 of 64 heights lie outside 0.25 to 0.75 and are cut"), std::string::npos)
        << outcome.err;
}

TEST_F(HeightOptions, RefuseARangeThatIsNone)
{
    write_heights("x.pfm", scaled_heights(1.0f, 0.0f));
    for (char const* const range : {"1", "2,1", "0,0", "a,b", "0,nan", "0,1,2", ""}) {
        Outcome const outcome = map({"x.pfm", "-o", "out.tga", "--height-range", range});
        EXPECT_EQ(outcome.code, 2) << range;
        EXPECT_NE(outcome.err.find("--height-range"), std::string::npos) << outcome.err;
    }
}

TEST_F(HeightOptions, CountInvalidTexelsOrReplaceThem)
{
    std::vector<float> heights = scaled_heights(1.0f, 0.0f);
    heights[3] = std::numeric_limits<float>::quiet_NaN();
    heights[9] = std::numeric_limits<float>::infinity();
    write_heights("holes.pfm", heights);
    Outcome const refused = map({"holes.pfm", "-o", "out.tga"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(refused.err,
              "umbrix map: error: holes.pfm: 2 of its texels are NaN or infinite; give what they "
              "stand for with --replace-invalid\n");
    heights[3] = heights[9] = 0.25f;
    write_heights("filled.pfm", heights);
    ASSERT_EQ(map({"holes.pfm", "-o", "out.tga", "--replace-invalid", "0.25"}).code, 0);
    ASSERT_EQ(map({"filled.pfm", "-o", "expected.tga"}).code, 0);
    EXPECT_EQ(read("out.tga"), read("expected.tga"));
}

TEST_F(HeightOptions, TurnPicturesOfBytesOverToTheByte)
{
    write("x.tga", height_map(8, 8, [](int x, int y) { return 31 * x + 2 * y; }));
    write("over.tga", height_map(8, 8, [](int x, int y) { return 255 - 31 * x - 2 * y; }));
    ASSERT_EQ(map({"x.tga", "-o", "inverted.tga", "--invert"}).code, 0);
    ASSERT_EQ(map({"over.tga", "-o", "expected.tga"}).code, 0);
    EXPECT_EQ(read("inverted.tga"), read("expected.tga"));
    ASSERT_EQ(run({"normal", "x.tga", "-o", "n.tga", "--invert"}).code, 0);
    ASSERT_EQ(run({"normal", "over.tga", "-o", "expected_n.tga"}).code, 0);
    EXPECT_EQ(read("n.tga"), read("expected_n.tga"));
}

TEST_F(HeightOptions, TakeTheChannelThatIsAskedFor)
{
    Bytes texels;
    Bytes greens;
    for (int i = 0; i < 64; ++i) {
        auto const level = static_cast<unsigned char>(i * 37 % 256);
        texels.insert(texels.end(), {10, level, 200}); // blue, green, red
        greens.insert(greens.end(), {level, level, level});
    }
    write("x.tga", tga_bytes(8, 8, 3, texels));
    write("green.tga", tga_bytes(8, 8, 3, greens));
    ASSERT_EQ(map({"x.tga", "--height-map", "-o", "out.tga", "--height-from", "g"}).code, 0);
    ASSERT_EQ(map({"green.tga", "--height-map", "-o", "expected.tga"}).code, 0);
    EXPECT_EQ(read("out.tga"), read("expected.tga"));
    Outcome const refused = map({"x.tga", "--height-map", "-o", "no.tga", "--height-from", "a"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.err.find("x.tga: it has no alpha; name another channel"), std::string::npos)
        << refused.err;
    EXPECT_EQ(map({"x.tga", "-o", "no.tga", "--height-from", "x"}).code, 2);
}

TEST_F(HeightOptions, ReachTheHeightsInANormalMapsAlpha)
{
    Bytes normals;
    Bytes inverted;
    for (int i = 0; i < 64; ++i) {
        auto const level = static_cast<unsigned char>(i * 37 % 256);
        normals.insert(normals.end(), {255, 127, 127, level});
        inverted.insert(inverted.end(), {255, 127, 127, static_cast<unsigned char>(255 - level)});
    }
    write("n.tga", tga_bytes(8, 8, 4, normals));
    write("i.tga", tga_bytes(8, 8, 4, inverted));
    ASSERT_EQ(map({"n.tga", "--normal-map", "-o", "out.tga", "--invert"}).code, 0);
    ASSERT_EQ(map({"i.tga", "--normal-map", "-o", "expected.tga"}).code, 0);
    EXPECT_EQ(read("out.tga"), read("expected.tga"));
}

TEST_F(HeightOptions, HoldForStacksBatchesAndLists)
{
    write_heights("wide.pfm", scaled_heights(4.0f, -1.0f));
    write_heights("unit.pfm", scaled_heights(1.0f, 0.0f));
    for (char const* const name : {"wide", "unit"}) {
        std::string const stack = fmt::format("[[layer]]\nfile = \"{}.pfm\"\nn_scale = 2\n", name);
        write(fmt::format("{}.toml", name), {stack.begin(), stack.end()});
    }
    ASSERT_EQ(run({"stack", "unit.toml", "-o", "unit_n.tga"}).code, 0);
    Outcome const stacked = run({"stack", "wide.toml", "-o", "wide_n.tga", "--height-range", "auto"});
    ASSERT_EQ(stacked.code, 0) << stacked.err;
    EXPECT_NE(stacked.err.find("its heights from -1 to 3 are taken for 0 to 1"), std::string::npos);
    EXPECT_EQ(read("wide_n.tga"), read("unit_n.tga"));

    ASSERT_EQ(map({"unit.pfm", "-o", "unit.png"}).code, 0);
    Outcome const batch =
        run({"batch", "wide.pfm", "--rays", "4", "--height-range", "auto", "--suffix", "_b"});
    EXPECT_EQ(batch.code, 0) << batch.out << batch.err;

    ASSERT_EQ(
        run({"list", "add", "jobs.ulist", "wide.pfm", "--height-map", "--n-scale", "1", "--rays", "4"}).code,
        0);
    EXPECT_EQ(run({"list", "run", "jobs.ulist"}).code, 1) << "its heights leave 0 to 1";
    Outcome const listed = run({"list", "run", "jobs.ulist", "--height-range", "-1,3"});
    EXPECT_EQ(listed.code, 0) << listed.out << listed.err;
}

TEST_F(HeightOptions, StandInPresetsButNotInLists)
{
    write_heights("wide.pfm", scaled_heights(4.0f, -1.0f));
    ASSERT_EQ(run({"preset", "save", "wide.toml", "--height-range", "-1,3", "--replace-invalid", "0",
                   "--height-from", "luma", "--invert"})
                  .code,
              0);
    Bytes const saved = read("wide.toml");
    std::string const preset(saved.begin(), saved.end());
    for (char const* const line : {"height_range = \"-1,3\"\n", "replace_invalid = \"0\"\n",
                                   "height_from = \"luma\"\n", "invert = true\n"}) {
        EXPECT_NE(preset.find(line), std::string::npos) << preset;
    }
    EXPECT_EQ(map({"wide.pfm", "--preset", "wide.toml", "-o", "out.tga"}).code, 0);
    Outcome const refused = run({"list", "add", "jobs.ulist", "wide.pfm", "--preset", "wide.toml"});
    EXPECT_EQ(refused.code, 2);
    EXPECT_NE(refused.err.find("umbrix list run"), std::string::npos) << refused.err;
}

TEST_F(HeightOptions, NormalsKnowWhetherThePictureTiles)
{
    write("ramp.tga", height_map(16, 16, [](int x, int) { return 15 * x; }));
    ASSERT_EQ(run({"normal", "ramp.tga", "-o", "repeats.tga"}).code, 0);
    ASSERT_EQ(run({"normal", "ramp.tga", "-o", "ends.tga", "--no-tile"}).code, 0);
    ASSERT_EQ(run({"normal", "ramp.tga", "-o", "h.tga", "--no-h-tile"}).code, 0);
    ASSERT_EQ(run({"normal", "ramp.tga", "-o", "v.tga", "--no-v-tile"}).code, 0);
    TgaPicture const ends = tga("ends.tga");
    int const inside = ends.at(8, 8, 0);
    EXPECT_EQ(ends.at(0, 8, 0), inside);
    EXPECT_EQ(ends.at(15, 8, 0), inside);
    EXPECT_GT(tga("repeats.tga").at(0, 8, 0), 127) << "the cliff at the border";
    EXPECT_LT(inside, 127);
    EXPECT_EQ(read("h.tga"), read("ends.tga"));
    EXPECT_EQ(read("v.tga"), read("repeats.tga"));
    EXPECT_EQ(map({"ramp.tga", "--no-occlusion", "--no-tile", "-o", "m.tga"}).code, 0);
    EXPECT_EQ(tga("m.tga").at(0, 8, 0), tga("m.tga").at(8, 8, 0));
}

} // namespace
} // namespace umbrixlib::test
