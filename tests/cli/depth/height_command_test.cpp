// SPDX-License-Identifier: MIT
/// `umbrix height`, run as a user runs it.
#include "cli/tool.h"

#include <cstdlib>
#include <fmt/format.h>

namespace umbrixlib::test {
namespace {

std::string const kCobbles = UMBRIX_EXAMPLES "/textures/cobbles_height.png";

class HeightCommand : public ToolTest {
protected:
    void make_normals(std::string const& name, Arguments more = {}) const
    {
        more.insert(more.begin(), {"normal", kCobbles, "-o", name});
        ASSERT_EQ(run(more).code, 0);
    }

    bool is_told_by(std::string const& file, std::string const& text) const
    {
        return run({"info", file}).out.find(text) != std::string::npos;
    }
};

TEST_F(HeightCommand, WritesAHeightMapBesideItsInput)
{
    make_normals("cobbles_normal.png");
    Outcome const outcome = run({"height", "cobbles_normal.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote cobbles_Height.png: height map, 512 x 512, from normals in bytes that "
                                "were cut off, green up, n-scale 12.8, heights ",
                                0),
              0U)
        << outcome.out;
    EXPECT_NE(
        outcome.out.find("the normals do not tell, and the heights are without: the mean, stripes and a "
                         "chessboard of single texels\n"),
        std::string::npos)
        << outcome.out;
    EXPECT_TRUE(is_told_by("cobbles_Height.png", "16-bit grey"));
    EXPECT_TRUE(is_told_by("cobbles_Height.png", "heights"));
}

TEST_F(HeightCommand, RefusesHeightsThatTheFileDoesNotHold)
{
    make_normals("n.png");
    Outcome const refused = run({"height", "n.png", "--relief", "0.02", "-o", "h.png"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.err.find("h.png: its heights would be -"), std::string::npos) << refused.err;
    std::size_t const advice = refused.err.find("give --height-range ");
    ASSERT_NE(advice, std::string::npos) << refused.err;
    std::string const rest = refused.err.substr(advice + 20);
    std::string const range = rest.substr(0, rest.find(", or"));
    Outcome const taken =
        run({"height", "n.png", "--relief", "0.02", "-o", "h.png", "--height-range", range});
    EXPECT_EQ(taken.code, 0) << taken.err;
    EXPECT_EQ(taken.err.find("are cut"), std::string::npos) << taken.err;
    EXPECT_TRUE(is_told_by("h.png", range));
}

TEST_F(HeightCommand, TellsARangeThatNormalAndMapObey)
{
    make_normals("n.png", {"--depth", "16"});
    ASSERT_EQ(run({"height", "n.png", "-o", "plain.png", "--height-range", "-0.5,1.5"}).code, 0);
    for (char const* const command : {"normal", "map"}) {
        Arguments words{command, "plain.png", "-o", fmt::format("{}.tga", command)};
        Arguments wanted{command, kCobbles, "-o", fmt::format("{}_wanted.tga", command)};
        if (std::string(command) == "map") {
            words.insert(words.end(), {"--rays", "16", "--no-light"});
            wanted.insert(wanted.end(), {"--rays", "16", "--no-light"});
        }
        ASSERT_EQ(run(words).code, 0);
        ASSERT_EQ(run(wanted).code, 0);
        Bytes const made = read(words[3]);
        Bytes const other = read(wanted[3]);
        ASSERT_EQ(made.size(), other.size());
        double sum = 0.0;
        for (std::size_t i = 0; i < made.size(); ++i) {
            sum += std::abs(static_cast<int>(made[i]) - static_cast<int>(other[i]));
        }
        EXPECT_LT(sum / static_cast<double>(made.size()), 0.1) << command;
    }
}

TEST_F(HeightCommand, HelpsWithItsOptions)
{
    std::string const help = run({"height", "--help"}).out;
    for (char const* const option : {"--relief", "--n-scale", "--normal-y", "--height-range", "--[no-]tile",
                                     "--[no-]h-tile", "--[no-]v-tile", "--depth", "--replace-invalid"}) {
        EXPECT_NE(help.find(option), std::string::npos) << option;
    }
    EXPECT_EQ(help.find("--gaussian"), std::string::npos);
    Outcome const wrong = run({"height", "n.png", "--height-range", "1,0"});
    EXPECT_EQ(wrong.code, 2);
    EXPECT_NE(wrong.err.find("--height-range"), std::string::npos);
}

TEST_F(HeightCommand, WorksOnFoldersInABatch)
{
    make_normals("a_normal.png");
    make_normals("b_nor_dx.png", {"--normal-y", "down"});
    write("c_height.png", read_file(kCobbles));
    Outcome const outcome = run({"batch", ".", "--height"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(files().contains("a_Height.png") && files().contains("b_nor_dx_Height.png"));
    EXPECT_FALSE(files().contains("c_Height.png")); // it is no normal map, as its name tells
    Outcome const wrong = run({"batch", ".", "--height", "--rays", "9"});
    EXPECT_EQ(wrong.code, 2);
    EXPECT_NE(wrong.err.find("--rays: height maps are made without it"), std::string::npos) << wrong.err;
    EXPECT_EQ(run({"batch", ".", "--height", "--normal"}).code, 2);
}

} // namespace
} // namespace umbrixlib::test
