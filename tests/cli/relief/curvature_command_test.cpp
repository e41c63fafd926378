// SPDX-License-Identifier: MIT
/// `umbrix curvature`, run as a user runs it.
#include "cli/tool.h"

#include <algorithm>

namespace umbrixlib::test {
namespace {

std::string const kBricks = UMBRIX_EXAMPLES "/textures/bricks_height.png";

class CurvatureCommand : public ToolTest {
protected:
    std::string told_of(std::string const& file) const { return run({"info", file}).out; }
};

TEST_F(CurvatureCommand, WritesAMapBesideItsInput)
{
    write("bricks_height.png", read_file(kBricks));
    Outcome const outcome = run({"curvature", "bricks_height.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote bricks_Curvature.png: curvature map, 512 x 512, from a height map "
                                "(guessed: it has no colour), n-scale 12.8, curvature-radius 0.",
                                0),
              0U)
        << outcome.out;
    EXPECT_NE(told_of("bricks_Curvature.png").find("8-bit grey"), std::string::npos);
    EXPECT_EQ(run({"curvature", "bricks_height.png"}).code, 1); // it exists
}

TEST_F(CurvatureCommand, TakesNormals)
{
    ASSERT_EQ(run({"normal", kBricks, "-o", "n.png", "--normal-y", "down"}).code, 0);
    Outcome const outcome = run({"curvature", "n.png", "--depth", "16", "-o", "c.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("from a normal map (guessed: "), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("normals in bytes that were cut off, green down"), std::string::npos);
    EXPECT_NE(told_of("c.png").find("16-bit grey"), std::string::npos);
}

TEST_F(CurvatureCommand, RefusesWhatMakesNoSense)
{
    struct Line {
        Arguments more;
        int code;
        char const* named;
    };
    for (Line const& line : {Line{{"--curvature-part", "edges"}, 2, "--curvature-part"},
                             {{"--curvature-radius", "0"}, 2, "--curvature-radius"},
                             {{"--height-map", "--normal-y", "up"}, 2, "--normal-y"},
                             {{"--rays", "4"}, 2, "--rays"},
                             {{"-o", "c.r16"}, 1, "c.r16"},
                             {{"-o", "c.jpg", "--depth", "16"}, 1, "c.jpg"}}) {
        Arguments words{"curvature", kBricks};
        words.insert(words.end(), line.more.begin(), line.more.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, line.code) << line.named;
        EXPECT_NE(outcome.err.find(line.named), std::string::npos) << outcome.err;
    }
    ASSERT_EQ(run({"curvature", kBricks, "-o", "c.png"}).code, 0);
    Outcome const relit = run({"relight", "c.png", "-o", "r.png"});
    EXPECT_EQ(relit.code, 1);
    EXPECT_NE(relit.err.find("a curvature map"), std::string::npos) << relit.err;
}

TEST_F(CurvatureCommand, ObeysPresetsAndWorksInABatch)
{
    std::string const preset = "curvature_part = \"cavity\"\ncurvature_radius = 0.004\nsave_depth = 16\n";
    write("worn.toml", Bytes(preset.begin(), preset.end()));
    std::filesystem::create_directory(folder() / "in");
    write("in/bricks_height.png", read_file(kBricks));
    Outcome const one =
        run({"curvature", "in/bricks_height.png", "--preset", "./worn.toml", "-o", "one.png"});
    ASSERT_EQ(one.code, 0) << one.err;
    std::string const told = told_of("one.png");
    EXPECT_NE(told.find("curvature-part: cavity"), std::string::npos) << told;
    EXPECT_NE(told.find("curvature-radius: 0.004"), std::string::npos) << told;
    Outcome const many = run({"batch", "in", "--curvature", "--preset", "./worn.toml"});
    ASSERT_EQ(many.code, 0) << many.err;
    EXPECT_EQ(read("in/bricks_Curvature.png"), read("one.png"));

    Outcome const wrong = run({"batch", "in", "--curvature", "--rays", "9"});
    EXPECT_EQ(wrong.code, 2);
    EXPECT_NE(wrong.err.find("--rays: curvature maps are made without it"), std::string::npos) << wrong.err;
    Outcome const other = run({"batch", "in", "--curvature-part", "cavity"});
    EXPECT_EQ(other.code, 2);
    EXPECT_NE(other.err.find("--curvature-part: Umbrix maps are made without it"), std::string::npos)
        << other.err;
    EXPECT_EQ(run({"batch", "in", "--curvature", "--height"}).code, 2);
}

TEST_F(CurvatureCommand, MakesTheSameWithAnyNumberOfThreads)
{
    ASSERT_EQ(run({"curvature", kBricks, "-o", "a.png", "--gaussian", "2"}, {{"OMP_NUM_THREADS", "1"}}).code,
              0);
    ASSERT_EQ(run({"curvature", kBricks, "-o", "b.png", "--gaussian", "2"}).code, 0);
    EXPECT_EQ(read("a.png"), read("b.png"));
}

} // namespace
} // namespace umbrixlib::test
