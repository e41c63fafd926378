// SPDX-License-Identifier: MIT
/// `umbrix convert`, run as a user runs it.
#include "cli/depth/float_files.h"
#include "cli/tool.h"

#include <limits>

namespace umbrixlib::test {
namespace {

class ConvertCommand : public ToolTest {
protected:
    /// 16 x 16 greys of 8 bits, all of them.
    void write_all_bytes() const
    {
        std::vector<Bytes> rows(16);
        for (int i = 0; i < 256; ++i) {
            rows[static_cast<std::size_t>(i / 16)].push_back(static_cast<unsigned char>(i));
        }
        write("bytes.png", png_bytes(16, PngColour::kGrey, 8, rows));
    }

    void convert(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), "convert");
        Outcome const outcome = run(arguments);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }

    std::string first_line_about(std::string const& file) const
    {
        std::string const told = run({"info", file}).out;
        return told.substr(0, told.find('\n'));
    }
};

TEST_F(ConvertCommand, LosesNothingOnTheWayThroughDeeperFormats)
{
    write_all_bytes();
    convert({"bytes.png", "-o", "again.png"});
    for (char const* const deep : {"x.png", "x.tif", "x.exr", "x.pfm", "x.psd", "x.sgi"}) {
        bool const has_16_bits = deep[2] != 'e' && std::string(deep) != "x.pfm";
        Arguments words{"bytes.png", "-o", deep};
        if (has_16_bits) {
            words.insert(words.end(), {"--depth", "16"});
        }
        convert(words);
        convert({deep, "-o", "back.png", "--depth", "8", "--overwrite"});
        EXPECT_EQ(read("back.png"), read("again.png")) << deep;
    }
}

TEST_F(ConvertCommand, KeepsTheDepthOfItsSource)
{
    write("words.png", png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x34, 0xff, 0xff}}));
    convert({"words.png", "-o", "x.tif"});
    EXPECT_EQ(first_line_about("x.tif"), "x.tif: 2 x 1, TIFF, 16-bit grey");
    convert({"x.tif", "-o", "x.exr"});
    EXPECT_EQ(first_line_about("x.exr"), "x.exr: 2 x 1, OpenEXR, float grey");
    convert({"x.exr", "-o", "y.png"});
    EXPECT_EQ(first_line_about("y.png"), "y.png: 2 x 1, PNG, 16-bit grey");
    convert({"words.png", "-o", "z.exr", "--depth", "half"});
    EXPECT_EQ(first_line_about("z.exr"), "z.exr: 2 x 1, OpenEXR, half-float grey");
}

TEST_F(ConvertCommand, RoundsOnDemand)
{
    write("words.png", png_bytes(2, PngColour::kGrey, 16, {{0x7f, 0xff, 0x00, 0xff}}));
    convert({"words.png", "-o", "cut.png", "--depth", "8"});
    convert({"words.png", "-o", "near.png", "--depth", "8", "--round", "nearest"});
    EXPECT_NE(run({"info", "cut.png"}).out.find("grey  0 to 127"), std::string::npos);
    EXPECT_NE(run({"info", "near.png"}).out.find("grey  1 to 127"), std::string::npos);
}

TEST_F(ConvertCommand, SavesTimeOrBytesOnDemand)
{
    std::string const source = UMBRIX_EXAMPLES "/textures/cobbles_height.png";
    for (char const* const compression : {"fast", "default", "small"}) {
        convert({source, "-o", fmt::format("{}.png", compression), "--compression", compression});
        convert({fmt::format("{}.png", compression), "-o", fmt::format("{}.tga", compression)});
        EXPECT_EQ(read(fmt::format("{}.tga", compression)), read("fast.tga")) << compression;
    }
    convert({source, "-o", "unsaid.png"});
    EXPECT_EQ(read("unsaid.png"), read("default.png"));
    EXPECT_LT(read("default.png").size(), read("fast.png").size());
    EXPECT_LT(read("small.png").size(), read("default.png").size());
    Outcome const outcome = run({"convert", source, "-o", "x.png", "--compression", "none"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_NE(outcome.err.find("'none' is not one of fast, default, small"), std::string::npos)
        << outcome.err;
}

TEST_F(ConvertCommand, TakesOneChannel)
{
    write("x.png", png_bytes(1, PngColour::kRgba, 8, {{10, 20, 30, 40}}));
    for (auto const& [channel, level] : {std::pair("r", 10), {"g", 20}, {"b", 30}, {"a", 40}, {"mean", 20}}) {
        std::string const file = fmt::format("{}.png", channel);
        convert({"x.png", "-o", file, "--height-from", channel});
        EXPECT_EQ(first_line_about(file), fmt::format("{}: 1 x 1, PNG, 8-bit grey", file));
        EXPECT_NE(run({"info", file}).out.find(fmt::format("grey  {0} to {0}", level)), std::string::npos)
            << channel;
    }
}

TEST_F(ConvertCommand, KeepsHeightsOfAnyRangeInFloatsOnly)
{
    write("x.pfm", pfm_bytes(8, 8, scaled_heights(4.0f, -1.0f)));
    convert({"x.pfm", "-o", "x.tif"});
    EXPECT_NE(run({"info", "x.tif"}).out.find("grey  -1 to 3"), std::string::npos);
    Outcome const refused = run({"convert", "x.pfm", "-o", "x.png"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.err.find("its heights are -1 to 3, not 0 to 1; give --height-range -1,3"),
              std::string::npos)
        << refused.err;
    convert({"x.pfm", "-o", "x.png", "--height-range", "auto"});
    EXPECT_NE(run({"info", "x.png"}).out.find("grey  0 to 65535"), std::string::npos);
}

TEST_F(ConvertCommand, KeepsInvalidTexelsInFloatsOnly)
{
    std::vector<float> heights = scaled_heights(1.0f, 0.0f);
    heights[0] = std::numeric_limits<float>::quiet_NaN();
    write("x.pfm", pfm_bytes(8, 8, heights));
    convert({"x.pfm", "-o", "x.exr"});
    EXPECT_NE(run({"info", "x.exr"}).out.find("1 NaN or infinite"), std::string::npos);
    EXPECT_EQ(run({"convert", "x.pfm", "-o", "x.png"}).code, 1);
    convert({"x.pfm", "-o", "x.png", "--replace-invalid", "0"});
}

TEST_F(ConvertCommand, EncodesVectorsForWholeNumbers)
{
    write("hill.tga", hill(16));
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "n.exr", "--depth", "float"}).code, 0);
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "expected.png", "--depth", "16"}).code, 0);
    Outcome const outcome = run({"convert", "n.exr", "-o", "n.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.err.find("are encoded as 0 to 1"), std::string::npos) << outcome.err;
    EXPECT_EQ(run({"info", "n.png"}).out.substr(5), run({"info", "expected.png"}).out.substr(12))
        << "they tell the same of themselves, too";
}

TEST_F(ConvertCommand, SaysWhatAFormatLeavesOut)
{
    write("x.png", png_bytes(1, PngColour::kRgba, 8, {{10, 20, 30, 40}}));
    Outcome const outcome = run({"convert", "x.png", "-o", "x.ppm"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.err.find("its alpha is left out, as .ppm files have none"), std::string::npos)
        << outcome.err;
}

TEST_F(ConvertCommand, NeedsANameAndKeepsWhatIsThere)
{
    write_all_bytes();
    EXPECT_EQ(run({"convert", "bytes.png"}).code, 2);
    EXPECT_EQ(run({"convert", "bytes.png", "-o", "bytes.png", "--overwrite"}).code, 2);
    EXPECT_EQ(run({"convert", "bytes.png", "-o", "x.xyz"}).code, 2);
    EXPECT_EQ(run({"convert", "bytes.png", "-o", "x.tga", "--depth", "16"}).code, 1);
    convert({"bytes.png", "-o", "x.tga"});
    Bytes const before = read("x.tga");
    EXPECT_EQ(run({"convert", "bytes.png", "-o", "x.tga", "--invert"}).code, 1);
    EXPECT_EQ(read("x.tga"), before);
    convert({"bytes.png", "-o", "x.tga", "--invert", "--overwrite"});
    EXPECT_NE(read("x.tga"), before);
}

} // namespace
} // namespace umbrixlib::test
