// SPDX-License-Identifier: MIT
/// `umbrix bent`, run as a user runs it.
#include "cli/tool.h"

#include <filesystem>

namespace umbrixlib::test {
namespace {

std::string const kCloth = UMBRIX_EXAMPLES "/textures/cloth_height.png";

class BentCommand : public ToolTest {
protected:
    BentCommand() { write("hill.png", read_file(kCloth)); }

    /// With few directions, as most of these tests look at no texel.
    Outcome bent(Arguments more, Environment const& environment = {}) const
    {
        more.insert(more.begin(), {"bent", "hill.png", "--directions", "4", "--radius", "0.05"});
        return run(more, environment);
    }

    std::string told_of(std::string const& file) const { return run({"info", file}).out; }
};

TEST_F(BentCommand, WritesBothPictures)
{
    Outcome const outcome = bent({"--occlusion", "ao.png", "--relief", "0.1"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind(
                  "wrote hill_Bent.png: bent normals, 512 x 512, green up, 4 directions, relief 0.1, ", 0),
              0U)
        << outcome.out;
    EXPECT_NE(outcome.out.find("wrote ao.png: occlusion map of the same, "), std::string::npos);
    EXPECT_NE(told_of("ao.png").find("8-bit grey"), std::string::npos);
    EXPECT_NE(told_of("hill_Bent.png").find("kind: bent normals"), std::string::npos);
    EXPECT_EQ(run({"relight", "hill_Bent.png", "-o", "r.png"}).code, 1); // it is no map
}

TEST_F(BentCommand, RefusesWhatMakesNoSenseAndLeavesNothing)
{
    struct Line {
        Arguments more;
        int code;
        char const* named;
    };
    for (Line const& line : {Line{{"--directions", "3"}, 2, "--directions"},
                             {{"-o", "a.png", "--occlusion", "./a.png"}, 2, "./a.png"},
                             {{"-o", "a.png", "--occlusion", "hill.png", "--overwrite"}, 2, "hill.png"},
                             {{"-o", "a.png", "--occlusion", "ao.r16"}, 1, "ao.r16"},
                             {{"-o", "a.png", "--occlusion", "no/ao.png"}, 1, "no"},
                             {{"--gaussian", "1"}, 2, "--gaussian"}}) {
        Outcome const outcome = bent(line.more);
        EXPECT_EQ(outcome.code, line.code) << line.named << outcome.err;
        EXPECT_NE(outcome.err.find(line.named), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.png"}));
}

TEST_F(BentCommand, KeepsPicturesThatExist)
{
    ASSERT_EQ(bent({"-o", "a.png", "--occlusion", "ao.png"}).code, 0);
    Bytes const before = read("ao.png");
    Outcome const outcome = bent({"-o", "b.png", "--occlusion", "ao.png", "--invert"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(read("ao.png"), before);
    EXPECT_FALSE(files().contains("b.png"));
    EXPECT_EQ(bent({"-o", "a.png", "--occlusion", "ao.png", "--invert", "--overwrite"}).code, 0);
    EXPECT_NE(read("ao.png"), before);
}

TEST_F(BentCommand, ObeysPresetsAndWorksInABatch)
{
    std::string const preset = "directions = 4\nradius = 0.05\nnormal_y = \"down\"\n";
    write("few.toml", Bytes(preset.begin(), preset.end()));
    ASSERT_EQ(bent({"-o", "bent.png", "--occlusion", "ao.png", "--normal-y", "down"}).code, 0);
    std::filesystem::create_directory(folder() / "in");
    write("in/hill_height.png", read_file(kCloth));
    for (char const* const product : {"--bent", "--ao"}) {
        Outcome const many = run({"batch", "in", product, "--preset", "./few.toml"});
        ASSERT_EQ(many.code, 0) << many.err;
    }
    EXPECT_EQ(read("in/hill_Bent.png"), read("bent.png"));
    EXPECT_EQ(read("in/hill_AO.png"), read("ao.png"));
    Outcome const wrong = run({"batch", "in", "--ao", "--normal-map"});
    EXPECT_EQ(wrong.code, 2);
    EXPECT_NE(wrong.err.find("occlusion maps of one channel are made without it"), std::string::npos)
        << wrong.err;
}

TEST_F(BentCommand, MakesTheSameWithAnyNumberOfThreads)
{
    ASSERT_EQ(bent({"-o", "a.png", "--occlusion", "ao_a.png"}, {{"OMP_NUM_THREADS", "1"}}).code, 0);
    ASSERT_EQ(bent({"-o", "b.png", "--occlusion", "ao_b.png"}).code, 0);
    EXPECT_EQ(read("a.png"), read("b.png"));
    EXPECT_EQ(read("ao_a.png"), read("ao_b.png"));
}

} // namespace
} // namespace umbrixlib::test
