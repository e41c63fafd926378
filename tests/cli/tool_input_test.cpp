// SPDX-License-Identifier: MIT
/// Inputs that cannot be worked on: one sentence, exit code 1, nothing left behind.
#include "damaged_files.h"
#include "tool.h"

namespace umbrixlib::test {
namespace {

class ToolInput : public ToolTest {
protected:
    void expect_refusal(std::string const& name, std::string const& reason, Arguments const& more = {}) const
    {
        std::set<std::string> const before = files();
        for (char const* command : {"map", "normal", "relight", "info"}) {
            Arguments arguments{command, name};
            arguments.insert(arguments.end(), more.begin(), more.end());
            Outcome const outcome = run(arguments);
            EXPECT_EQ(outcome.code, 1) << command;
            EXPECT_TRUE(complains_about(outcome, std::string("umbrix ") + command, name));
            EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
            EXPECT_EQ(outcome.out, "");
        }
        EXPECT_EQ(files(), before);
    }
};

TEST_F(ToolInput, RefusesAMissingFile)
{
    expect_refusal("missing.png", "there is no such file");
}

TEST_F(ToolInput, RefusesAFolder)
{
    std::filesystem::create_directory(folder() / "folder.png");
    expect_refusal("folder.png", "it is a folder");
}

TEST_F(ToolInput, RefusesAnEmptyFile)
{
    write("empty.png", {});
    expect_refusal("empty.png", "it is empty");
}

TEST_F(ToolInput, RefusesWhatIsNoImage)
{
    std::string const text = "this is a letter, not a picture\n";
    write("letter.png", Bytes(text.begin(), text.end()));
    write("letter.txt", Bytes(text.begin(), text.end()));
    expect_refusal("letter.png", "not an image");
    expect_refusal("letter.txt", "not an image");
}

TEST_F(ToolInput, RefusesATruncatedPicture)
{
    Bytes png = png_bytes(64, PngColour::kGrey, 8, std::vector<Bytes>(64, Bytes(64, 7)));
    png.resize(png.size() / 2);
    write("cut.png", png);
    expect_refusal("cut.png", "damaged");
}

TEST_F(ToolInput, RefusesADdsPictureWithLessDataThanItsSizeNeeds)
{
    write("hill.tga", hill(32));
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "hill.dds"}).code, 0);
    EXPECT_EQ(run({"info", "hill.dds"}).code, 0);
    Bytes dds = read("hill.dds");
    dds[16] = 64; // columns
    write("wide.dds", dds);
    expect_refusal("wide.dds", "damaged");
}

TEST_F(ToolInput, RefusesAPictureWithoutItsTexels)
{
    std::string const ppm = "P6\n64 64\n255\nonly a few bytes";
    write("cut.ppm", Bytes(ppm.begin(), ppm.end()));
    expect_refusal("cut.ppm", "damaged");
}

TEST_F(ToolInput, RefusesAPhotoshopFileOfAnotherSize)
{
    write("good.psd", photoshop_file(5, 7));
    EXPECT_EQ(run({"info", "good.psd"}).code, 0);
    write("high.psd", photoshop_file(0x80000005U, 7));
    expect_refusal("high.psd", "7 x 2147483653 is more than");
    write("wide.psd", photoshop_file(5, 0x1000));
    expect_refusal("wide.psd", "damaged");
}

TEST_F(ToolInput, StopsADecoderThatTakesTooLong)
{
    write("large.tga", hill(2048));
    expect_refusal("large.tga", "it was still being read after 0.001 s", {"--timeout", "0.001"});
}

TEST_F(ToolInput, IsNamedByItsLayerInAStack)
{
    write("good.psd", photoshop_file(5, 7));
    write("high.psd", photoshop_file(0x80000005U, 7));
    write("wide.psd", photoshop_file(5, 0x1000));
    for (std::string const name : {"high.psd", "wide.psd"}) {
        std::string const stack =
            "[[layer]]\nfile = 'good.psd'\n[[layer]]\nfile = '" + name + "'\nblend = 'add'\n";
        write("s.toml", Bytes(stack.begin(), stack.end()));
        std::set<std::string> const before = files();
        Outcome const outcome = run({"stack", "s.toml", "--timeout", "0.3"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix stack", "s.toml: layer 2: file: " + name));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(ToolInput, RefusesASizeThatIsNotSane)
{
    Bytes tga = tga_bytes(0xffff, 0xffff, 3, Bytes(100, 1));
    write("giant.tga", tga);
    expect_refusal("giant.tga", "65535 x 65535 is more than 268435456 texels");
}

TEST_F(ToolInput, RefusesMoreTexelsThanAllowed)
{
    write("hill.tga", hill(32));
    expect_refusal("hill.tga", "32 x 32 is more than 1000 texels", {"--max-texels", "1000"});
    EXPECT_EQ(run({"info", "hill.tga", "--max-texels", "1024"}).code, 0);
}

/// Radiance pictures of 8 x 2 from their size line and rows.
class ToolInputHdr : public ToolInput {
protected:
    using Row = std::vector<std::uint8_t>;

    static Row joined(std::vector<Row> const& parts)
    {
        Row all;
        for (Row const& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    }

    Outcome look_at(std::string const& size, std::vector<Row> const& rows) const
    {
        std::string const head = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n" + size + "\n";
        write("x.hdr", joined({Row(head.begin(), head.end()), joined(rows)}));
        return run({"info", "x.hdr"});
    }

    Row const start{2, 2, 0, 8};
    Row const run_of_eight{136, 100};
    Row const eight{8, 1, 2, 3, 4, 5, 6, 7, 8};
    Row const runs = joined({start, run_of_eight, run_of_eight, run_of_eight, run_of_eight});
    Row const stretches = joined({start, eight, eight, eight, eight});
    Row const pixel{9, 9, 9, 128};
    Row const pixels = joined({pixel, pixel, pixel, pixel, pixel, pixel, pixel, pixel});
    Row const repeated = joined({pixel, {1, 1, 1, 7}});
};

TEST_F(ToolInputHdr, TakesEachFormOfARow)
{
    for (Row const& row : {runs, stretches, pixels, repeated}) {
        Outcome const outcome = look_at("-Y 2 +X 8", {row, row});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.out.find("x.hdr: 8 x 2, Radiance HDR, float colour"), 0U) << outcome.out;
    }
}

TEST_F(ToolInputHdr, RefusesRowsThatAreDamaged)
{
    Row cut = stretches;
    cut.pop_back();
    Row const too_long_a_run = joined({start, {137, 100}, run_of_eight, run_of_eight, run_of_eight});
    Row const too_long_a_stretch = joined({start, {9, 1, 2, 3, 4, 5, 6, 7, 8, 9}, eight, eight, eight});
    Row const of_another_width = joined({{2, 2, 0, 9}, {137, 1}, {137, 1}, {137, 1}, {137, 1}});
    Row const repeats_nothing{1, 1, 1, 8};
    Row const repeats_too_often = joined({pixel, {1, 1, 1, 8}});
    Row const repeats_far_too_often = joined({pixel, {1, 1, 1, 1}, {1, 1, 1, 1}});
    for (Row const& row : {cut, too_long_a_run, too_long_a_stretch, of_another_width, repeats_nothing,
                           repeats_too_often, repeats_far_too_often, Row{}}) {
        Outcome const outcome = look_at("-Y 2 +X 8", {runs, row});
        EXPECT_EQ(outcome.code, 1) << testing::PrintToString(row);
        EXPECT_TRUE(complains_about(outcome, "umbrix info", "x.hdr"));
        EXPECT_NE(outcome.err.find("damaged"), std::string::npos) << outcome.err;
    }
    for (std::string const& size :
         {std::string("-Y 2 +X 9"), std::string("-Y 3 +X 8"), std::string("-Y 0 +X 8"), std::string("-Y 2"),
          std::string("8 2"), std::string(200, ' ') + "-Y 2 +X 8"}) {
        Outcome const outcome = look_at(size, {runs, runs});
        EXPECT_EQ(outcome.code, 1) << size;
        EXPECT_TRUE(complains_about(outcome, "umbrix info", "x.hdr"));
    }
}

TEST_F(ToolInput, TakesNamesWithSpacesAndForeignLetters)
{
    for (char const* name : {"two words", "Höhe über Grund", "高さ", "not \xff utf-8"}) {
        std::string const source = std::string(name) + ".tga";
        write(source, hill(16));
        Outcome const outcome = run({"map", source});
        EXPECT_EQ(outcome.code, 0) << name << outcome.err;
        EXPECT_TRUE(files().contains(std::string(name) + "_Umbrix.tga")) << name;
        EXPECT_EQ(outcome.out.find("wrote " + std::string(name) + "_Umbrix.tga: "), 0U) << outcome.out;
        EXPECT_EQ(run({"info", source, "--json"}).code, 0);
    }
}

TEST_F(ToolInput, TakesANameThatBeginsWithADash)
{
    write("-h.tga", hill(16));
    EXPECT_EQ(run({"map", "--", "-h.tga"}).code, 0);
    EXPECT_TRUE(files().contains("-h_Umbrix.tga"));
}

} // namespace
} // namespace umbrixlib::test
