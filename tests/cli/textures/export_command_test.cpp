// SPDX-License-Identifier: MIT
/// `umbrix export`, run as a user runs it, and what the tool itself and other programs read of its files.
#include "cli/tool.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <numbers>

namespace umbrixlib::test {
namespace {

/// The number of 4 bytes at @p at, the low byte first.
unsigned word(Bytes const& bytes, std::size_t at)
{
    return static_cast<unsigned>(bytes.at(at)) | static_cast<unsigned>(bytes.at(at + 1)) << 8U |
           static_cast<unsigned>(bytes.at(at + 2)) << 16U | static_cast<unsigned>(bytes.at(at + 3)) << 24U;
}

std::array<double, 3> vector_of(std::vector<std::uint8_t> const& texels, std::size_t texel)
{
    std::array<double, 3> vector{};
    double squares = 0.0;
    for (std::size_t c = 0; c < 3; ++c) {
        vector[c] = texels[3 * texel + c] / 127.5 - 1.0;
        squares += vector[c] * vector[c];
    }
    for (double& each : vector) {
        each /= std::sqrt(squares);
    }
    return vector;
}

double degrees_between(std::array<double, 3> const& a, std::array<double, 3> const& b)
{
    double const dot = a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    return std::acos(std::min(dot, 1.0)) * 180.0 / std::numbers::pi;
}

class ExportCommand : public ToolTest {
protected:
    ExportCommand()
    {
        write("hill.tga", hill(64));
        EXPECT_EQ(run({"normal", "hill.tga", "-o", "slopes.tga", "--relief", "0.2"}).code, 0);
    }

    /// The colours that the tool reads of a picture.
    std::vector<std::uint8_t> colours(std::string const& name) const
    {
        Outcome const outcome = run({"convert", name, "-o", "read.ppm", "--depth", "8", "--overwrite"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        Bytes const bytes = read("read.ppm");
        auto at = bytes.begin();
        for (int lines = 0; lines < 3; ++lines) {
            at = std::next(std::ranges::find(at, bytes.end(), '\n'));
        }
        return {at, bytes.end()};
    }

    Bytes exported(Arguments const& more, std::string const& name = "o.dds") const
    {
        Arguments words{"export"};
        words.insert(words.end(), more.begin(), more.end());
        words.insert(words.end(), {"-o", name, "--overwrite"});
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome.code == 0 ? read(name) : Bytes(1000);
    }
};

TEST_F(ExportCommand, TakesNormalsForBc5AndHeightsForBc4)
{
    Outcome const normals = run({"export", "slopes.tga", "-o", "n.dds"});
    ASSERT_EQ(normals.code, 0) << normals.err;
    EXPECT_EQ(normals.out.rfind("wrote n.dds: normals (its colours are normals), BC5, 64 x 64, 7 "
                                "levels, 5488 bytes, ",
                                0),
              0U)
        << normals.out;
    Outcome const heights = run({"export", "hill.tga", "-o", "h.dds"});
    ASSERT_EQ(heights.code, 0) << heights.err;
    EXPECT_EQ(heights.out.rfind("wrote h.dds: heights (it has no colour), BC4, 64 x 64, 7 levels, "
                                "2744 bytes, ",
                                0),
              0U)
        << heights.out;
    EXPECT_EQ(read("n.dds").size(), 148U + 5488U);
    EXPECT_EQ(read("h.dds").size(), 148U + 2744U);
}

TEST_F(ExportCommand, WritesTheHeaderOfDirect3D)
{
    Bytes const bytes = exported({"slopes.tga"});
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 4), "DDS ");
    EXPECT_EQ(word(bytes, 4), 124U);
    EXPECT_EQ(word(bytes, 8), 0xa1007U); // caps, height, width, pixel format, levels, size of a level
    EXPECT_EQ(word(bytes, 12), 64U);
    EXPECT_EQ(word(bytes, 16), 64U);
    EXPECT_EQ(word(bytes, 20), 4096U);
    EXPECT_EQ(word(bytes, 28), 7U);
    EXPECT_EQ(word(bytes, 76), 32U);
    EXPECT_EQ(word(bytes, 80), 4U);
    EXPECT_EQ(std::string(bytes.begin() + 84, bytes.begin() + 88), "DX10");
    EXPECT_EQ(word(bytes, 108), 0x401008U); // texture, complex, mipmaps
    EXPECT_EQ(word(bytes, 128), 83U);       // DXGI_FORMAT_BC5_UNORM
    EXPECT_EQ(word(bytes, 132), 3U);        // of two dimensions
    EXPECT_EQ(word(bytes, 136), 0U);
    EXPECT_EQ(word(bytes, 140), 1U);
    EXPECT_EQ(word(bytes, 144), 0U);

    Bytes const alone = exported({"slopes.tga", "--format", "8", "--mipmaps", "none"});
    EXPECT_EQ(word(alone, 8), 0x100fU); // the size of a row instead
    EXPECT_EQ(word(alone, 20), 256U);
    EXPECT_EQ(word(alone, 28), 1U);
    EXPECT_EQ(word(alone, 108), 0x1000U);
    EXPECT_EQ(word(alone, 128), 28U);
    EXPECT_EQ(alone.size(), 148U + 64U * 64U * 4U);
}

TEST_F(ExportCommand, WritesTheSameLevelsAsKtx2)
{
    for (char const* const format : {"bc5", "bc7", "8", "16", "half"}) {
        Bytes const dds = exported({"slopes.tga", "--format", format});
        Bytes const ktx2 = exported({"slopes.tga", "--format", format}, "o.ktx2");
        std::size_t at = 148; // in DDS the largest level is first
        for (std::size_t level = 0; level < 7; ++level) {
            std::size_t const first = word(ktx2, 80 + 24 * level);
            std::size_t const size = word(ktx2, 80 + 24 * level + 8);
            ASSERT_LE(first + size, ktx2.size());
            EXPECT_TRUE(std::equal(ktx2.begin() + static_cast<std::ptrdiff_t>(first),
                                   ktx2.begin() + static_cast<std::ptrdiff_t>(first + size),
                                   dds.begin() + static_cast<std::ptrdiff_t>(at)))
                << format << ' ' << level;
            at += size;
            EXPECT_EQ(level == 0, first + size == ktx2.size()); // and here the last
        }
        EXPECT_EQ(at, dds.size());
    }
}

TEST_F(ExportCommand, KeepsWhatIsNotPacked)
{
    Bytes const row{0, 3, 128, 255, 17};
    write("grey.png", png_bytes(5, PngColour::kGrey, 8, {row, row, row}));
    for (char const* const picture : {"slopes.tga", "grey.png"}) {
        std::vector<std::uint8_t> const expected = colours(picture);
        for (char const* const format : {"8", "16"}) {
            exported({picture, "--format", format});
            EXPECT_EQ(colours("o.dds"), expected) << picture << ' ' << format;
        }
    }
    exported({"slopes.tga", "--format", "half"});
    std::vector<std::uint8_t> const expected = colours("slopes.tga");
    std::vector<std::uint8_t> const made = colours("o.dds");
    ASSERT_EQ(made.size(), expected.size());
    for (std::size_t i = 0; i < made.size(); ++i) {
        ASSERT_LE(std::abs(made[i] - expected[i]), 1);
    }
}

TEST_F(ExportCommand, KeepsTheDirectionsOfNormals)
{
    std::vector<std::uint8_t> const expected = colours("slopes.tga");
    exported({"slopes.tga"});
    std::vector<std::uint8_t> const made = colours("o.dds");
    ASSERT_EQ(made.size(), expected.size());
    double sum = 0.0;
    for (std::size_t i = 0; i < made.size() / 3; ++i) {
        sum += degrees_between(vector_of(made, i), vector_of(expected, i));
    }
    EXPECT_LT(sum / (64.0 * 64.0), 0.5);
}

TEST_F(ExportCommand, KeepsHeightsOf16BitsBetterThan8)
{
    // A slope of 16 texels through a single step of 8 bits.
    std::vector<Bytes> rows(16);
    for (Bytes& row : rows) {
        for (int x = 0; x < 16; ++x) {
            unsigned const height = 0x8080U + 16U * static_cast<unsigned>(x);
            row.insert(row.end(),
                       {static_cast<std::uint8_t>(height >> 8U), static_cast<std::uint8_t>(height)});
        }
    }
    write("slope.png", png_bytes(16, PngColour::kGrey, 16, rows));
    Bytes const bytes = exported({"slope.png", "--mipmaps", "1"});
    for (std::size_t block = 0; block < 16; ++block) {
        EXPECT_EQ(bytes[148 + 8 * block], 129);
        EXPECT_EQ(bytes[149 + 8 * block], 128);
        EXPECT_NE(bytes[150 + 8 * block], bytes[150 + 8 * (block ^ 1U)]);
    }
}

TEST_F(ExportCommand, TakesTheRestForBc7)
{
    std::vector<Bytes> rows(9, Bytes{250, 10, 30, 40, 90, 30, 100, 120, 130, 200, 250, 0, 9, 8, 7});
    write("colours.png", png_bytes(5, PngColour::kRgb, 8, rows));
    Outcome const outcome = run({"export", "colours.png", "-o", "o.dds"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote o.dds: three channels, BC7, 5 x 9, 4 levels, 144 bytes, ", 0), 0U)
        << outcome.out;
    EXPECT_EQ(word(read("o.dds"), 128), 98U);
    EXPECT_EQ(read("o.dds").size(), 148U + 16U * (6U + 1U + 1U + 1U));
    EXPECT_EQ(run({"export", "colours.png", "--kind", "height", "-o", "h.dds"})
                  .out.rfind("wrote h.dds: heights, BC4", 0),
              0U);
    EXPECT_EQ(word(exported({"colours.png", "--height-from", "g"}), 128), 80U);
    EXPECT_EQ(word(exported({"colours.png", "--kind", "normal"}), 128), 83U);
    EXPECT_EQ(word(exported({"slopes.tga", "--kind", "umbrix"}), 128), 98U);
}

TEST_F(ExportCommand, HasAsManyLevelsAsAskedFor)
{
    EXPECT_EQ(word(exported({"hill.tga", "--mipmaps", "3"}), 28), 3U);
    EXPECT_EQ(word(exported({"hill.tga", "--mipmaps", "32"}), 28), 7U);
    EXPECT_EQ(word(exported({"hill.tga", "--mipmaps", "all"}), 28), 7U);
    EXPECT_EQ(exported({"hill.tga", "--mipmaps", "none"}).size(), 148U + 2048U);
}

TEST_F(ExportCommand, TellsWhatItLeavesOut)
{
    ASSERT_EQ(run({"convert", "slopes.tga", "-o", "alpha.png"}).code, 0);
    std::vector<Bytes> const rows(
        4, Bytes{128, 128, 255, 9, 100, 140, 240, 10, 128, 128, 255, 9, 100, 140, 240, 10});
    write("rgba.png", png_bytes(4, PngColour::kRgba, 8, rows));
    Outcome const outcome = run({"export", "rgba.png", "-o", "o.dds"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.err.find("its alpha is left out, as BC5 has two channels"), std::string::npos)
        << outcome.err;
    EXPECT_EQ(run({"export", "rgba.png", "-o", "p.dds", "--format", "bc7"}).err.find("alpha"),
              std::string::npos);
}

TEST_F(ExportCommand, KeepsAnAlphaBesideGreyWhereThereIsRoom)
{
    write("grey.png", png_bytes(2, PngColour::kGreyAlpha, 8, {{90, 200, 17, 3}, {90, 200, 17, 3}}));
    Outcome const packed = run({"export", "grey.png", "-o", "o.dds"});
    EXPECT_NE(packed.out.find("heights (it has no colour), BC4"), std::string::npos) << packed.out;
    EXPECT_NE(packed.err.find("its alpha is left out"), std::string::npos) << packed.err;
    Outcome const whole = run({"export", "grey.png", "-o", "w.dds", "--format", "8", "--mipmaps", "none"});
    EXPECT_NE(whole.out.find("four channels, 8-bit RGBA"), std::string::npos) << whole.out;
    Bytes const bytes = read("w.dds");
    EXPECT_EQ(Bytes(bytes.begin() + 148, bytes.end()),
              (Bytes{90, 90, 90, 200, 17, 17, 17, 3, 90, 90, 90, 200, 17, 17, 17, 3}));
}

TEST_F(ExportCommand, RefusesWhatMakesNoSense)
{
    struct Line {
        Arguments more;
        int code;
        char const* said;
    };
    exported({"hill.tga"}, "there.dds");
    for (Line const& line :
         {Line{{"hill.tga", "-o", "o.png"},
               2,
               "umbrix export: error: o.png: textures cannot be written as .png; use .dds or .ktx2"},
          {{"hill.tga", "-o", "o"}, 2, "umbrix export: error: o: its name has no extension"},
          {{"hill.tga"}, 2, "--output"},
          {{"hill.tga", "-o", "there.dds"}, 1, "umbrix export: error: there.dds: it exists"},
          {{"missing.tga", "-o", "o.dds"}, 1, "umbrix export: error: missing.tga: there is no such file"},
          {{"hill.tga", "-o", "o.dds", "--format", "bc5"},
           1,
           "hill.tga: BC5 is for normals, and it is taken for none; give --format bc4, or tell with --kind "
           "what it is"},
          {{"slopes.tga", "-o", "o.dds", "--format", "bc4"},
           1,
           "slopes.tga: BC4 holds one channel, and it has more; give --format bc5"},
          {{"hill.tga", "-o", "o.dds", "--format", "dxt1"},
           2,
           "--format: 'dxt1' is not one of bc4, bc5, bc7, 8, 16, half"},
          {{"hill.tga", "-o", "o.dds", "--mipmaps", "0"}, 2, "--mipmaps"},
          {{"hill.tga", "-o", "o.dds", "--mipmaps", "2.5"}, 2, "'2.5' is no whole number"},
          {{"hill.tga", "-o", "o.dds", "--depth", "8"}, 2, "--depth"}}) {
        Arguments words{"export"};
        words.insert(words.end(), line.more.begin(), line.more.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, line.code) << line.said << '\n' << outcome.err;
        EXPECT_NE(outcome.err.find(line.said), std::string::npos) << line.said << '\n' << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "slopes.tga", "there.dds"}));
}

TEST_F(ExportCommand, MakesTheSameWithAnyNumberOfThreads)
{
    for (char const* const format : {"bc5", "bc7", "16"}) {
        Bytes const expected = exported({"slopes.tga", "--format", format});
        ASSERT_EQ(run({"export", "slopes.tga", "--format", format, "-o", "one.dds", "--overwrite"},
                      {{"OMP_NUM_THREADS", "1"}})
                      .code,
                  0);
        EXPECT_EQ(read("one.dds"), expected);
    }
}

/// The tools of OpenImageIO as a second reader.
class ExportedFile : public ExportCommand {
protected:
    void SetUp() override
    {
        if (std::system("oiiotool --help > /dev/null 2>&1") != 0) {
            GTEST_SKIP() << "there is no oiiotool";
        }
    }

    std::string path(std::string const& name) const { return (folder() / name).string(); }

    /// The colours that OpenImageIO reads of a file's largest level.
    std::vector<std::uint8_t> read_by_another(std::string const& name) const
    {
        std::string const line =
            "oiiotool " + path(name) + " --ch R,G,B=0 -d uint8 -o " + path("other.ppm") + " 2>&1";
        EXPECT_EQ(std::system(line.c_str()), 0);
        return colours("other.ppm");
    }
};

TEST_F(ExportedFile, IsReadByOpenImageIo)
{
    std::vector<std::uint8_t> const expected = colours("slopes.tga");
    for (char const* const format : {"bc5", "bc7"}) {
        exported({"slopes.tga", "--format", format});
        std::vector<std::uint8_t> const made = read_by_another("o.dds");
        ASSERT_EQ(made.size(), expected.size()) << format;
        double squares = 0.0;
        for (std::size_t i = 0; i < made.size(); ++i) {
            if (i % 3 < 2) { // it makes no blue
                squares += (made[i] - expected[i]) * (made[i] - expected[i]);
            }
        }
        EXPECT_LT(std::sqrt(squares / static_cast<double>(made.size())), 2.0) << format;
    }
}

} // namespace
} // namespace umbrixlib::test
