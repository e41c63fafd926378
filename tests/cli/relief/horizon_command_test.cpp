// SPDX-License-Identifier: MIT
/// `umbrix horizon`, run as a user runs it.
#include "cli/tool.h"

#include <cmath>
#include <filesystem>
#include <fmt/format.h>

namespace umbrixlib::test {
namespace {

class HorizonCommand : public ToolTest {
protected:
    HorizonCommand()
    {
        // A wall of height 1 at x 20, on flat ground.
        std::vector<Bytes> const rows(kSide, wall());
        write("wall.png", png_bytes(kSide, PngColour::kGrey, 8, rows));
    }

    static Bytes wall()
    {
        Bytes row(kSide, 0);
        row[20] = 255;
        return row;
    }

    /// The four channels of a texel, of an uncompressed TGA of 32 bits.
    std::vector<int> texel(std::string const& name, int x) const
    {
        Bytes const bytes = read(name);
        std::size_t const at = 18 + 4 * static_cast<std::size_t>(x);
        return {bytes[at + 2], bytes[at + 1], bytes[at], bytes[at + 3]}; // from blue, green, red
    }

    static constexpr int kSide = 32;
};

int byte_of(double height, double distance)
{
    return static_cast<int>(height / std::hypot(height, distance) * 255.0);
}

TEST_F(HorizonCommand, WritesTheSinesOfEightDirections)
{
    Outcome const outcome = run({"horizon", "wall.png", "-o", "a.tga", "--later", "b.tga", "--relief",
                                 "0.125", "--radius", "0.4", "--no-tile"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote a.tga: horizons, 32 x 32, relief 0.125, ", 0), 0U) << outcome.out;
    EXPECT_NE(outcome.out.find("wrote b.tga: horizons of the later four directions\n"), std::string::npos);
    double const root = std::sqrt(2.0);
    // The bottom row: nothing is below it. The wall is 4 texels high.
    EXPECT_EQ(texel("a.tga", 17), (std::vector<int>{byte_of(4, 3), byte_of(4, 3 * root), 0, 0}));
    EXPECT_EQ(texel("b.tga", 17), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(texel("a.tga", 25), (std::vector<int>{0, 0, 0, byte_of(4, 5 * root)}));
    EXPECT_EQ(texel("b.tga", 25), (std::vector<int>{byte_of(4, 5), 0, 0, 0}));
    EXPECT_EQ(texel("a.tga", 20), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(texel("a.tga", 5), (std::vector<int>{0, 0, 0, 0})); // the wall is too far away
}

TEST_F(HorizonCommand, GoesOnInTheRepetition)
{
    ASSERT_EQ(run({"horizon", "wall.png", "-o", "a.tga", "--later", "b.tga", "--relief", "0.125", "--radius",
                   "0.4"})
                  .code,
              0);
    EXPECT_EQ(texel("a.tga", 5), (std::vector<int>{0, 0, 0, 0}));
    EXPECT_EQ(texel("a.tga", 31), (std::vector<int>{0, 0, 0, 0})); // 21 texels to the next
    EXPECT_EQ(texel("b.tga", 0)[0], byte_of(4, 12));               // to the left, in the one before
}

TEST_F(HorizonCommand, WritesBothPicturesBesideItsInputAndInABatch)
{
    ASSERT_EQ(run({"horizon", "wall.png"}).code, 0);
    EXPECT_TRUE(files().contains("wall_Horizon1.png") && files().contains("wall_Horizon2.png"));
    Bytes const first = read("wall_Horizon1.png");
    Bytes const second = read("wall_Horizon2.png");
    Outcome const again = run({"horizon", "wall.png"});
    EXPECT_EQ(again.code, 1);
    Outcome const many = run({"batch", ".", "--horizon", "--overwrite"});
    ASSERT_EQ(many.code, 0) << many.err;
    EXPECT_EQ(read("wall_Horizon1.png"), first);
    EXPECT_EQ(read("wall_Horizon2.png"), second);
    EXPECT_EQ(files().size(), 3U); // outputs are no inputs
}

TEST_F(HorizonCommand, RefusesWhatMakesNoSense)
{
    struct Line {
        Arguments more;
        int code;
        char const* named;
    };
    for (Line const& line :
         {Line{{"-o", "a.jpg"}, 2, ".jpg files hold no alpha; give a name ending in .png\n"},
          {{"--later", "a.jpg"}, 2, "a.jpg: .jpg files hold no alpha"},
          {{"-o", "a.png", "--later", "a.png"}, 2, "a.png"},
          {{"--directions", "8"}, 2, "--directions"},
          {{"--radius", "5"}, 2, "--radius"}}) {
        Arguments words{"horizon", "wall.png"};
        words.insert(words.end(), line.more.begin(), line.more.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, line.code) << line.named << outcome.err;
        EXPECT_NE(outcome.err.find(line.named), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"wall.png"}));
}

TEST_F(HorizonCommand, ObeysPresetsAndTellsItsSettings)
{
    std::string const preset = "relief = 0.25\nsave_depth = \"16\"\n";
    write("high.toml", Bytes(preset.begin(), preset.end()));
    ASSERT_EQ(run({"horizon", "wall.png", "-o", "a.png", "--later", "b.png", "--preset", "./high.toml"}).code,
              0);
    std::string const told = run({"info", "b.png"}).out;
    for (char const* const text :
         {"16-bit", "relief: 0.25", "kind: horizons", "directions: 180,225,270,315"}) {
        EXPECT_NE(told.find(text), std::string::npos) << told;
    }
}

TEST_F(HorizonCommand, MakesTheSameWithAnyNumberOfThreads)
{
    ASSERT_EQ(
        run({"horizon", "wall.png", "-o", "a.png", "--later", "a2.png"}, {{"OMP_NUM_THREADS", "1"}}).code, 0);
    ASSERT_EQ(run({"horizon", "wall.png", "-o", "b.png", "--later", "b2.png"}).code, 0);
    EXPECT_EQ(read("a.png"), read("b.png"));
    EXPECT_EQ(read("a2.png"), read("b2.png"));
}

} // namespace
} // namespace umbrixlib::test
