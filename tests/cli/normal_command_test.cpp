// SPDX-License-Identifier: MIT
/// `umbrix normal`, run as a user runs it.
#include "tool.h"

namespace umbrixlib::test {
namespace {

class NormalCommand : public ToolTest {};

TEST_F(NormalCommand, MakesFlatNormalsOfFlatGround)
{
    write("flat_h.tga", height_map(8, 8, [](int, int) { return 40; }));
    Outcome const outcome = run({"normal", "flat_h.tga"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("wrote flat_Normal.tga: normal map, 8 x 8, green up"), std::string::npos)
        << outcome.out;
    TgaPicture const normals = tga("flat_Normal.tga");
    EXPECT_EQ(normals.at(3, 3, 0), 127);
    EXPECT_EQ(normals.at(3, 3, 1), 127);
    EXPECT_EQ(normals.at(3, 3, 2), 255);
}

TEST_F(NormalCommand, PointsGreenUpUnlessToldOtherwise)
{
    // Falls towards the top of the picture, so it faces the top.
    write("ramp.tga", height_map(16, 16, [](int, int y) { return 240 - 15 * y; }));
    ASSERT_EQ(run({"normal", "ramp.tga", "-o", "up.tga"}).code, 0);
    Outcome const outcome = run({"normal", "ramp.tga", "-o", "down.tga", "--normal-y", "down"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("green down"), std::string::npos);
    int const up = tga("up.tga").at(8, 8, 1);
    EXPECT_GT(up, 127);
    EXPECT_EQ(tga("down.tga").at(8, 8, 1), 254 - up);
    EXPECT_EQ(tga("down.tga").at(8, 8, 0), 127);
}

TEST_F(NormalCommand, TakesTheStrengthFromTheReliefAndTheWidth)
{
    write("hill.tga", hill(64));
    Outcome const outcome = run({"normal", "hill.tga", "--relief", "0.125", "-o", "1.tga"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("n-scale 4,"), std::string::npos) << outcome.out;
    ASSERT_EQ(run({"normal", "hill.tga", "--n-scale", "4", "-o", "2.tga"}).code, 0);
    ASSERT_EQ(run({"normal", "hill.tga", "--n-scale", "5", "-o", "3.tga"}).code, 0);
    EXPECT_EQ(read("1.tga"), read("2.tga"));
    EXPECT_NE(read("1.tga"), read("3.tga"));
}

TEST_F(NormalCommand, MakesColoursOfAGreyPicture)
{
    write("ramp.png", png_bytes(4, PngColour::kGrey, 8, {{0, 80, 160, 240}, {0, 80, 160, 240}}));
    ASSERT_EQ(run({"normal", "ramp.png", "-o", "out.tga"}).code, 0);
    TgaPicture const normals = tga("out.tga");
    EXPECT_LT(normals.at(1, 0, 0), 127);
    EXPECT_GT(normals.at(1, 0, 2), 200);
}

TEST_F(NormalCommand, TellsIfTheInputIsANormalMapAlready)
{
    Bytes pixels;
    for (int i = 0; i < 64; ++i) {
        pixels.insert(pixels.end(), {255, 127, 127});
    }
    write("n.tga", tga_bytes(8, 8, 3, pixels));
    Outcome const outcome = run({"normal", "n.tga"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.err.find("looks like a normal map"), std::string::npos) << outcome.err;
}

} // namespace
} // namespace umbrixlib::test
