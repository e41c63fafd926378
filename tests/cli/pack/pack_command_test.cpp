// SPDX-License-Identifier: MIT
/// `umbrix pack`, run as a user runs it.
#include "cli/depth/float_files.h"
#include "cli/tool.h"

#include <cmath>
#include <fmt/format.h>
#include <functional>

namespace umbrixlib::test {
namespace {

class PackCommand : public ToolTest {
protected:
    static constexpr int kSide = 16; ///< So that a picture has every byte.

    /// A picture whose texel number i, from the top on, has the samples that @p texel returns.
    void write_bytes(std::string const& name, PngColour colour,
                     std::function<std::vector<int>(int)> const& texel) const
    {
        std::vector<Bytes> rows(kSide);
        for (int i = 0; i < kSide * kSide; ++i) {
            for (int const sample : texel(i)) {
                rows[static_cast<std::size_t>(i / kSide)].push_back(static_cast<std::uint8_t>(sample));
            }
        }
        write(name, png_bytes(kSide, colour, 8, rows));
    }

    void write_grey(std::string const& name, std::function<int(int)> const& texel) const
    {
        write_bytes(name, PngColour::kGrey, [&](int i) { return std::vector{texel(i)}; });
    }

    /// Three pictures, each with all bytes, in an order of its own.
    void write_three() const
    {
        write_grey("ao.png", first);
        write_grey("rough.png", second);
        write_grey("metal.png", third);
    }

    static int first(int i) { return i; }
    static int second(int i) { return 255 - i; }
    static int third(int i) { return (i * 7 + 3) % 256; }

    Outcome pack(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), "pack");
        return run(arguments);
    }

    /// A channel of each texel of a TGA, from the top on.
    std::vector<int> channel_of(std::string const& name, int channel) const
    {
        TgaPicture const picture = tga(name);
        std::vector<int> values;
        for (int y = picture.height - 1; y >= 0; --y) {
            for (int x = 0; x < picture.width; ++x) {
                values.push_back(picture.at(x, y, channel));
            }
        }
        return values;
    }

    static std::vector<int> all(std::function<int(int)> const& texel)
    {
        std::vector<int> values;
        for (int i = 0; i < kSide * kSide; ++i) {
            values.push_back(texel(i));
        }
        return values;
    }

    std::string told_of(std::string const& name) const { return run({"info", name}).out; }
};

TEST_F(PackCommand, PutsEachPictureIntoItsChannelToTheByte)
{
    write_three();
    Outcome const outcome = pack({"R=ao.png", "G=rough.png", "B=metal.png", "-o", "orm.tga"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err.find("note"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote orm.tga: 16 x 16, 8-bit colour, R from ao.png, G from rough.png, "
                                "B from metal.png, ",
                                0),
              0U)
        << outcome.out;
    EXPECT_EQ(tga("orm.tga").channels, 3);
    EXPECT_EQ(channel_of("orm.tga", 0), all(first));
    EXPECT_EQ(channel_of("orm.tga", 1), all(second));
    EXPECT_EQ(channel_of("orm.tga", 2), all(third));
}

TEST_F(PackCommand, KeepsBytesHoweverTheyAreRoundedAndInAnyOrder)
{
    write_three();
    ASSERT_EQ(pack({"R=ao.png", "G=rough.png", "B=metal.png", "-o", "near.tga"}).code, 0);
    ASSERT_EQ(pack({"b=metal.png", "r=ao.png", "g=rough.png", "-o", "cut.tga", "--round", "cut"}).code, 0);
    ASSERT_EQ(pack({"R=ao.png", "G=rough.png", "B=metal.png", "-o", "noise.tga", "--dither"}).code, 0);
    EXPECT_EQ(read("cut.tga"), read("near.tga"));
    EXPECT_EQ(read("noise.tga"), read("near.tga"));
}

TEST_F(PackCommand, TakesPartsOfColouredPictures)
{
    write_bytes("colours.png", PngColour::kRgba, [](int i) {
        return std::vector{first(i), second(i), third(i), (i * 5) % 256};
    });
    ASSERT_EQ(
        pack({"R:b=colours.png", "G:a=colours.png", "B:r=colours.png", "A:g=colours.png", "-o", "a.tga"})
            .code,
        0);
    EXPECT_EQ(channel_of("a.tga", 0), all(third));
    EXPECT_EQ(channel_of("a.tga", 1), all([](int i) { return (i * 5) % 256; }));
    EXPECT_EQ(channel_of("a.tga", 2), all(first));
    EXPECT_EQ(channel_of("a.tga", 3), all(second));
    ASSERT_EQ(pack({"R=colours.png", "G:mean=colours.png", "B:luma=colours.png", "-o", "b.tga"}).code, 0);
    auto const mean = all([](int i) { return (2 * (first(i) + second(i) + third(i)) + 3) / 6; });
    EXPECT_EQ(channel_of("b.tga", 0), mean);
    EXPECT_EQ(channel_of("b.tga", 1), mean);
    EXPECT_EQ(channel_of("b.tga", 2), all([](int i) {
                  return static_cast<int>(
                      std::lround(0.2126 * first(i) + 0.7152 * second(i) + 0.0722 * third(i)));
              }));
}

TEST_F(PackCommand, MakesBlackOfWhite)
{
    write_three();
    write_bytes("colours.png", PngColour::kRgb, [](int i) { return std::vector{third(i), first(i), 9}; });
    auto const turned = [](auto const& texel) { return [texel](int i) { return 255 - texel(i); }; };
    for (char const* const rounding : {"nearest", "cut"}) {
        ASSERT_EQ(pack({"R:invert=rough.png", "G:r,invert=colours.png", "A:invert,g=colours.png", "-o",
                        "a.tga", "--round", rounding, "--overwrite"})
                      .code,
                  0);
        EXPECT_EQ(channel_of("a.tga", 0), all(turned(second)));
        EXPECT_EQ(channel_of("a.tga", 1), all(turned(third)));
        EXPECT_EQ(channel_of("a.tga", 3), all(turned(first)));
    }
}

TEST_F(PackCommand, FillsChannelsWithNumbers)
{
    write_three();
    Outcome const outcome = pack({"G=ao.png", "B=0.5", "A=1", "-o", "a.tga"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("8-bit colour with alpha, R 0, G from ao.png, B 0.5, A 1, "),
              std::string::npos)
        << outcome.out;
    EXPECT_EQ(channel_of("a.tga", 0), all([](int) { return 0; }));
    EXPECT_EQ(channel_of("a.tga", 1), all(first));
    EXPECT_EQ(channel_of("a.tga", 2), all([](int) { return 128; }));
    EXPECT_EQ(channel_of("a.tga", 3), all([](int) { return 255; }));
}

TEST_F(PackCommand, TakesFilesOfAnyName)
{
    for (char const* const name : {"1", "a:g=b,c.png", "nan", "=", "R"}) {
        write_grey(name, second);
    }
    Arguments const lines[] = {{"R=./1"}, {"R=a:g=b,c.png"}, {"R=nan"}, {"R=="}, {"R=R"}};
    for (Arguments const& line : lines) {
        Arguments words = line;
        words.insert(words.end(), {"-o", "a.tga", "--overwrite"});
        Outcome const outcome = pack(words);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(channel_of("a.tga", 0), all(second)) << line[0];
    }
}

TEST_F(PackCommand, HasTheDepthOfTheDeepestSource)
{
    write("bytes.png", png_bytes(2, PngColour::kGrey, 8, {{0x12, 0xff}}));
    write("words.png", png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x34, 0xff, 0x01}}));
    write("floats.pfm", pfm_bytes(2, 1, {0.25f, 1.0f / 3.0f}));
    ASSERT_EQ(run({"convert", "floats.pfm", "-o", "halves.exr", "--depth", "half"}).code, 0);
    struct Line {
        Arguments words;
        char const* told;
    };
    for (Line const& line : {
             Line{{"R=bytes.png", "G=words.png", "-o", "a.png"}, "a.png: 2 x 1, PNG, 16-bit colour"},
             {{"R=bytes.png", "G=halves.exr", "-o", "b.exr"}, "b.exr: 2 x 1, OpenEXR, half-float colour"},
             {{"R=words.png", "G=halves.exr", "-o", "c.exr"}, "c.exr: 2 x 1, OpenEXR, float colour"},
             {{"R=words.png", "G=floats.pfm", "-o", "d.exr"}, "d.exr: 2 x 1, OpenEXR, float colour"},
             {{"R=words.png", "G=floats.pfm", "-o", "e.png"}, "e.png: 2 x 1, PNG, 16-bit colour"},
             {{"R=words.png", "-o", "f.tga"}, "f.tga: 2 x 1, TGA, 8-bit colour"},
             {{"R=bytes.png", "A=1", "-o", "g.png", "--depth", "16"},
              "g.png: 2 x 1, PNG, 16-bit colour with alpha"},
         }) {
        Outcome const outcome = pack(line.words);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        std::string const told =
            told_of(line.words[line.words.size() - 1] == "16" ? "g.png" : line.words.back());
        EXPECT_EQ(told.substr(0, told.find('\n')), line.told);
    }
    std::string const words = told_of("a.png");
    EXPECT_NE(words.find("red   4626 to 65535"), std::string::npos) << words; // 0x12 times 257
    EXPECT_NE(words.find("green 4660 to 65281"), std::string::npos) << words;
    EXPECT_NE(told_of("d.exr").find("green 0.25 to 0.333333"), std::string::npos) << told_of("d.exr");
    EXPECT_EQ(channel_of("f.tga", 0), (std::vector<int>{18, 254})); // 0x1234 / 257 is 18.1
}

TEST_F(PackCommand, WritesLinearData)
{
    write_three();
    Bytes coloured = read("ao.png");
    Bytes chunk;
    png_detail::append_chunk(chunk, "sRGB", {0});
    coloured.insert(coloured.begin() + 33, chunk.begin(), chunk.end()); // behind the header
    write("marked.png", coloured);
    ASSERT_EQ(pack({"R=marked.png", "G=rough.png", "-o", "a.png"}).code, 0);
    Bytes const bytes = read("a.png");
    std::string const text(bytes.begin(), bytes.end());
    for (char const* const name : {"sRGB", "gAMA", "iCCP", "cHRM"}) {
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    }
    EXPECT_NE(told_of("a.png").find("kind: packed"), std::string::npos);
    ASSERT_EQ(run({"convert", "a.png", "-o", "a.tga"}).code, 0);
    EXPECT_EQ(channel_of("a.tga", 0), all(first));
}

TEST_F(PackCommand, EncodesVectorsAndTellsWhatItCuts)
{
    write_grey("heights.png", third);
    ASSERT_EQ(run({"normal", "heights.png", "-o", "n.exr", "--depth", "float"}).code, 0);
    ASSERT_EQ(run({"convert", "n.exr", "-o", "n.tga", "--depth", "8", "--round", "nearest"}).code, 0);
    Outcome const vectors = pack({"R:r=n.exr", "G:g=n.exr", "B=1", "-o", "a.tga"});
    ASSERT_EQ(vectors.code, 0) << vectors.err;
    EXPECT_NE(vectors.err.find("n.exr: its normals are -1 to 1 and are encoded as 0 to 1"),
              std::string::npos);
    EXPECT_EQ(channel_of("a.tga", 0), channel_of("n.tga", 0));
    EXPECT_EQ(channel_of("a.tga", 1), channel_of("n.tga", 1));

    write("wide.pfm", pfm_bytes(2, 2, {-0.5f, 0.5f, 2.0f, std::nanf("")}));
    Outcome const cut = pack({"G=wide.pfm", "-o", "b.tga"});
    EXPECT_EQ(cut.code, 0);
    EXPECT_NE(cut.err.find("umbrix pack: note: wide.pfm: 3 of 4 samples lie outside 0 to 1 and are cut\n"),
              std::string::npos)
        << cut.err;
    EXPECT_EQ(channel_of("b.tga", 1), (std::vector<int>{255, 0, 0, 128}));
    EXPECT_EQ(pack({"G=wide.pfm", "-o", "b.exr"}).err.find("note"), std::string::npos) << "floats hold them";
}

TEST_F(PackCommand, WantsPicturesOfOneSize)
{
    write_three();
    write("small.png", png_bytes(2, PngColour::kGrey, 8, {{1, 2}}));
    Outcome const outcome = pack({"R=ao.png", "G=rough.png", "B=small.png", "-o", "a.png"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err, "umbrix pack: error: small.png: its size is 2 x 1 and that of ao.png 16 x 16; "
                           "bring both to the same size\n");
    EXPECT_FALSE(files().contains("a.png"));
}

TEST_F(PackCommand, RefusesWhatMakesNoSense)
{
    write_three();
    std::set<std::string> const before = files();
    struct Line {
        Arguments words;
        int code;
        char const* complaint;
    };
    for (Line const& line : {
             Line{{"R=1", "G=0"}, 2, "SOURCES: no file is among them, and so there is no size"},
             {{"R=ao.png", "r=rough.png"}, 2, "r=rough.png: R=ao.png gives the same channel"},
             {{"X=ao.png"}, 2, "X=ao.png: there is no channel 'X'; give R, G, B or A"},
             {{"ao.png"}, 2, "ao.png: it does not say what goes where"},
             {{"R="}, 2, "R=: it does not say what goes where"},
             {{"=ao.png"}, 2, "=ao.png: there is no channel ''"},
             {{"R:x=ao.png"},
              2,
              "R:x=ao.png: 'x' is no part of a picture; give mean, r, g, b, a, luma or invert"},
             {{"R:=ao.png"}, 2, "R:=ao.png: '' is no part of a picture"},
             {{"R=ao.png", "B=1.5"}, 2, "B=1.5: 1.5 is out of range; give 0 to 1, or ./1.5 for a file"},
             {{"R=ao.png", "B=-1"}, 2, "B=-1: -1 is out of range"},
             {{"R=ao.png", "B:g=1"}, 2, "B:g=1: a number has no parts"},
             {{"R=gone.png"}, 1, "gone.png: there is no such file"},
             {{"R=ao.png", "G=gone.png"}, 1, "gone.png: there is no such file"},
             {{"R:a=ao.png"}, 1, "ao.png: it has no alpha"},
         }) {
        Arguments words = line.words;
        words.insert(words.end(), {"-o", "a.png"});
        Outcome const outcome = pack(words);
        EXPECT_EQ(outcome.code, line.code) << line.complaint << outcome.err;
        EXPECT_EQ(outcome.err.rfind(fmt::format("umbrix pack: error: {}", line.complaint), 0), 0U)
            << outcome.err;
    }
    EXPECT_EQ(pack({"R=ao.png"}).code, 2) << "no output";
    EXPECT_EQ(pack({"-o", "a.png"}).code, 2) << "no sources";
    EXPECT_EQ(files(), before);
}

TEST_F(PackCommand, RefusesOutputsThatCannotBe)
{
    write_three();
    Bytes const rough = read("rough.png");
    struct Line {
        Arguments words;
        int code;
        char const* complaint;
    };
    for (Line const& line : {
             Line{{"A=1", "-o", "a.jpg"},
                  2,
                  "a.jpg: .jpg files hold no alpha; give a name ending in .png, or leave A out"},
             {{"-o", "a.r16"}, 1, "a.r16: .r16 files hold heights alone"},
             {{"-o", "a.xyz"}, 2, "a.xyz: pictures cannot be written as .xyz"},
             {{"-o", "a.tga", "--depth", "16"}, 1, "a.tga: .tga files have no samples of depth 16"},
             {{"-o", "metal.png"}, 1, "metal.png: it exists"},
             {{"-o", "rough.png", "--overwrite"}, 2, "rough.png: it is the input, which would be lost"},
         }) {
        Arguments words{"R=ao.png", "G=rough.png"};
        words.insert(words.end(), line.words.begin(), line.words.end());
        Outcome const outcome = pack(words);
        EXPECT_EQ(outcome.code, line.code) << line.complaint << outcome.err;
        EXPECT_EQ(outcome.err.rfind(fmt::format("umbrix pack: error: {}", line.complaint), 0), 0U)
            << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"ao.png", "metal.png", "rough.png"}));
    EXPECT_EQ(read("rough.png"), rough);
}

} // namespace
} // namespace umbrixlib::test
