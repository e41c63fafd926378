// SPDX-License-Identifier: MIT
/// `umbrix info`, run as a user runs it.
#include "tool.h"

#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

class InfoCommand : public ToolTest {};

TEST_F(InfoCommand, TellsWhatIsInAPicture)
{
    write("x.png", png_bytes(2, PngColour::kRgba, 8, {{10, 20, 30, 40, 50, 20, 90, 200}}));
    Outcome const outcome = run({"info", "x.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "x.png: 2 x 1, PNG, 8-bit colour with alpha\n"
                           "  red   10 to 50, mean 30, 2 levels\n"
                           "  green 20 to 20, mean 20, 1 level\n"
                           "  blue  30 to 90, mean 60, 2 levels\n"
                           "  alpha 40 to 200, mean 120, 2 levels\n"
                           "  `umbrix map` takes it for a height map: its colours are no normals\n");
}

TEST_F(InfoCommand, TellsTheSameAsJson)
{
    write("x.png", png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x34, 0x00, 0x04}}));
    Outcome const outcome = run({"info", "x.png", "--json"});
    ASSERT_EQ(outcome.code, 0);
    nlohmann::json const told = nlohmann::json::parse(outcome.out);
    EXPECT_EQ(told.at("file"), "x.png");
    EXPECT_EQ(told.at("width"), 2);
    EXPECT_EQ(told.at("height"), 1);
    EXPECT_EQ(told.at("bits_per_channel"), 16);
    EXPECT_EQ(told.at("format"), "PNG");
    EXPECT_EQ(told.at("pixel"), "16-bit grey");
    EXPECT_EQ(told.at("taken_for"), "height map");
    EXPECT_EQ(told.at("channels").size(), 1U);
    EXPECT_EQ(told.at("channels")[0].at("name"), "grey");
    EXPECT_EQ(told.at("channels")[0].at("minimum"), 4);
    EXPECT_EQ(told.at("channels")[0].at("maximum"), 0x1234);
    EXPECT_EQ(told.at("channels")[0].at("mean"), (0x1234 + 4) / 2.0);
}

TEST_F(InfoCommand, TellsGreyFromAlphaInATga)
{
    write("x.tga", tga_bytes(2, 1, 2, {5, 200, 9, 100}));
    Outcome const outcome = run({"info", "x.tga"});
    EXPECT_NE(outcome.out.find("8-bit grey with alpha\n  grey  5 to 9, mean 7, 2 levels\n  alpha 100 to 200, "
                               "mean 150, 2 levels\n"),
              std::string::npos)
        << outcome.out;
}

TEST_F(InfoCommand, WarnsOf8BitStepsIn16Bits)
{
    write("x.png", png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x12, 0xff, 0xff}}));
    Outcome const steps = run({"info", "x.png"});
    EXPECT_NE(steps.out.find("2 levels\n  8-bit steps in a 16-bit file\n"), std::string::npos) << steps.out;
    write("y.png", png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x13, 0xff, 0xff}}));
    EXPECT_EQ(run({"info", "y.png"}).out.find("8-bit steps"), std::string::npos);
    nlohmann::json const told = nlohmann::json::parse(run({"info", "x.png", "--json"}).out);
    EXPECT_EQ(told.at("has_8_bit_steps"), true);
    EXPECT_EQ(told.at("channels")[0].at("levels"), 2);
}

TEST_F(InfoCommand, LooksIntoLargePicturesOnDemand)
{
    constexpr int kLargeSide = 4200; // 17.6 million texels
    write("x.tga", tga_bytes(kLargeSide, kLargeSide, 1, Bytes(std::size_t{kLargeSide} * kLargeSide, 7)));
    EXPECT_EQ(run({"info", "x.tga"}).out, "x.tga: 4200 x 4200, TGA; --range looks into so large a picture\n");
    EXPECT_EQ(nlohmann::json::parse(run({"info", "x.tga", "--json"}).out).at("only_header"), true);
    EXPECT_NE(run({"info", "x.tga", "--range"}).out.find("7 to 7, mean 7, 1 level"), std::string::npos);
    Outcome const refused = run({"info", "x.tga", "--max-texels", "17000000"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.err.find("--max-texels"), std::string::npos) << refused.err;
}

} // namespace
} // namespace umbrixlib::test
