// SPDX-License-Identifier: MIT
/// `umbrix stack`, run as a user runs it.
#include "tool.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace umbrixlib::test {
namespace {

constexpr int kSide = 32;

Bytes waves(int side)
{
    return height_map(
        side, side, [side](int x, int y) { return 127.5 + 90.0 * std::sin(6.2831853 * (2 * x + y) / side); });
}

/// A 24-bit normal map whose normals all lean to the right.
Bytes leaning_normals(int side)
{
    Bytes pixels;
    for (int i = 0; i < side * side; ++i) {
        pixels.insert(pixels.end(), {230, 127, 180});
    }
    return tga_bytes(side, side, 3, pixels);
}

/// Largest difference of two pictures in any channel.
int largest_difference(TgaPicture const& a, TgaPicture const& b)
{
    int largest = a.width == b.width && a.height == b.height ? 0 : 256;
    for (int y = 0; y < a.height && largest < 256; ++y) {
        for (int x = 0; x < a.width; ++x) {
            for (int c = 0; c < 3; ++c) {
                largest = std::max(largest, std::abs(a.at(x, y, c) - b.at(x, y, c)));
            }
        }
    }
    return largest;
}

class StackCommand : public ToolTest {
protected:
    StackCommand()
    {
        write("hill.tga", hill(kSide));
        write("waves.tga", waves(kSide));
        write("lean.tga", leaning_normals(kSide));
    }

    void write_stack(std::string const& text, std::string const& name = "s.toml") const
    {
        write(name, Bytes(text.begin(), text.end()));
    }

    /// Blends @p text into FOLDER/NAME_n.tga and FOLDER/NAME_h.tga.
    Outcome blend(std::string const& name, std::string const& text, Arguments const& more = {}) const
    {
        write_stack(text);
        Arguments all{"stack", "s.toml", "-o", name + "_n.tga", "--height", name + "_h.tga", "--overwrite"};
        all.insert(all.end(), more.begin(), more.end());
        return run(all);
    }
};

std::string const kHill = "[[layer]]\nfile = 'hill.tga'\n";
std::string const kWaves = "[[layer]]\nfile = 'waves.tga'\n";
std::string const kLean = "[[layer]]\nfile = 'lean.tga'\nkind = 'normal'\nblend = 'add'\n";

TEST_F(StackCommand, BlendsThreeLayersIntoThreePictures)
{
    write_stack("normal_scale = 1.0\n" + kHill + "n_scale = 2\n" + kWaves +
                "blend = 'overlay'\nopacity = 60\nn_scale = 1\n" + kLean);
    std::set<std::string> expected = files();
    Outcome const outcome =
        run({"stack", "s.toml", "-o", "n.tga", "--height", "h.tga", "--map", "m.png", "--progress", "none"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err,
              "umbrix stack: note: s.toml: 64 % of the map's texels are cut off at 255; no lower "
              "relief would halve that\n"); // what leans so far leans in the normal layer
    for (char const* line :
         {"wrote n.tga: normal map, 32 x 32, of 3 layers", "wrote h.tga: height map, 32 x 32, of 3 layers",
          "wrote m.png: Umbrix map, 32 x 32, of 3 layers"}) {
        EXPECT_NE(outcome.out.find(line), std::string::npos) << outcome.out;
    }
    EXPECT_EQ(tga("n.tga").width, kSide);
    EXPECT_EQ(tga("h.tga").width, kSide);
    expected.insert({"n.tga", "h.tga", "m.png"});
    EXPECT_EQ(files(), expected);
}

TEST_F(StackCommand, MakesOfOneLayerTheNormalsOfTheNormalCommand)
{
    ASSERT_EQ(blend("one", kHill).code, 0);
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "normal.tga"}).code, 0);
    EXPECT_LE(largest_difference(tga("one_n.tga"), tga("normal.tga")), 1);
}

TEST_F(StackCommand, TakesTheBlendAndTheOpacityOfTheUpperLayer)
{
    ASSERT_EQ(blend("hill", kHill).code, 0);
    ASSERT_EQ(blend("waves", kWaves).code, 0);
    ASSERT_GT(largest_difference(tga("hill_h.tga"), tga("waves_h.tga")), 100);
    for (char const* mode : {"blend", "overlay", "multiply", "add"}) {
        std::string const way = std::string("blend = '") + mode + "'\n";
        ASSERT_EQ(blend("none", kHill + kWaves + way + "opacity = 0\n").code, 0);
        EXPECT_EQ(read("none_h.tga"), read("hill_h.tga")) << mode;
        EXPECT_LE(largest_difference(tga("none_n.tga"), tga("hill_n.tga")), 1) << mode;
        ASSERT_EQ(blend("full", kHill + kWaves + way).code, 0);
        EXPECT_NE(read("full_h.tga"), read("hill_h.tga")) << mode;
        EXPECT_GT(largest_difference(tga("full_n.tga"), tga("hill_n.tga")), 10) << mode;
    }
    ASSERT_EQ(blend("upper", kHill + kWaves + "blend = 'blend'\nopacity = 100\n").code, 0);
    EXPECT_LE(largest_difference(tga("upper_h.tga"), tga("waves_h.tga")), 1);
    EXPECT_LE(largest_difference(tga("upper_n.tga"), tga("waves_n.tga")), 1);
}

TEST_F(StackCommand, JoinsEachLayerByItsOwnKeys)
{
    // The third layer's keys must not act on the second.
    ASSERT_EQ(blend("two", kHill + kWaves + "blend = 'add'\nopacity = 30\n").code, 0);
    ASSERT_EQ(blend("three", kHill + kWaves + "blend = 'add'\nopacity = 30\n" + kHill +
                                 "blend = 'multiply'\nopacity = 0\n")
                  .code,
              0);
    EXPECT_EQ(read("three_h.tga"), read("two_h.tga"));
    EXPECT_EQ(read("three_n.tga"), read("two_n.tga"));
}

TEST_F(StackCommand, PassesEveryKeyOn)
{
    ASSERT_EQ(blend("plain", kWaves + "n_scale = 4\n").code, 0);
    for (char const* keys : {"n_scale = 1", "n_scale = 4\ndetail = 5", "n_scale = 4\ngaussian = 2.5",
                             "n_scale = 4\ndepth = 1", "n_scale = 4\nedges = [2, 1.5]"}) {
        Outcome const outcome = blend("keyed", kWaves + keys + "\n");
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_NE(read("keyed_n.tga"), read("plain_n.tga")) << keys;
    }
    ASSERT_EQ(blend("scaled", "normal_scale = 3\n" + kWaves + "n_scale = 4\n").code, 0);
    EXPECT_GT(largest_difference(tga("scaled_n.tga"), tga("plain_n.tga")), 10);
    EXPECT_EQ(read("scaled_h.tga"), read("plain_h.tga"));
}

TEST_F(StackCommand, MakesTheMapOfTheBlendedNormalsAndHeights)
{
    Outcome const outcome = blend("b", kHill + kWaves + "opacity = 40\n" + kLean + "opacity = 50\n",
                                  {"--map", "m.tga", "--relief", "0.2", "--rays", "40"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    TgaPicture const normals = tga("b_n.tga");
    TgaPicture const heights = tga("b_h.tga");
    Bytes pixels;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            for (int c : {2, 1, 0}) {
                pixels.push_back(static_cast<std::uint8_t>(normals.at(x, y, c)));
            }
            pixels.push_back(static_cast<std::uint8_t>(heights.at(x, y, 0)));
        }
    }
    write("both.tga", tga_bytes(kSide, kSide, 4, pixels));
    ASSERT_EQ(
        run({"map", "both.tga", "--normal-map", "--relief", "0.2", "--rays", "40", "-o", "m2.tga"}).code, 0);
    EXPECT_EQ(largest_difference(tga("m.tga"), tga("m2.tga")), 0);
    EXPECT_NE(read("m.tga"), read("b_n.tga"));
}

TEST_F(StackCommand, MakesTheMapFromTheLayersThemselvesIfAsked)
{
    Arguments const light{"--map", "m.tga", "--map-from-layers", "--no-occlusion"};
    ASSERT_EQ(blend("b", kHill, light).code, 0);
    ASSERT_EQ(run({"map", "hill.tga", "--height-map", "--no-occlusion", "-o", "map.tga"}).code, 0);
    EXPECT_LE(largest_difference(tga("m.tga"), tga("map.tga")), 1);

    // Added normals are in the map, and those that fade in are not, which is told.
    Outcome const added = blend("b", kHill + kLean, light);
    ASSERT_EQ(added.code, 0);
    EXPECT_EQ(added.err.find("of this layer"), std::string::npos) << added.err;
    EXPECT_GT(largest_difference(tga("m.tga"), tga("map.tga")), 10);
    Outcome const faded = blend("b", kHill + kWaves, light);
    ASSERT_EQ(faded.code, 0);
    EXPECT_NE(
        faded.err.find("s.toml: layer 2: blend: --map-from-layers leaves the normals of this layer out"),
        std::string::npos)
        << faded.err;
    EXPECT_LE(largest_difference(tga("m.tga"), tga("map.tga")), 1);
}

TEST_F(StackCommand, SavesAtTheDepthOfTheStackFile)
{
    write_stack("save_depth = '16'\n" + kHill);
    auto const depth_of = [&](char const* name) {
        return nlohmann::json::parse(run({"info", name, "--json"}).out).at("bits_per_channel").get<int>();
    };
    Arguments words{"stack", "s.toml", "-o", "n.png", "--height", "h.png", "--map", "m.png", "--overwrite"};
    ASSERT_EQ(run(words).code, 0);
    for (char const* name : {"n.png", "h.png", "m.png"}) {
        EXPECT_EQ(depth_of(name), 16) << name;
    }
    std::string const preset = "save_depth = 'float'\n"; // PNG would not hold it: the stack file comes before
    write("p.toml", Bytes(preset.begin(), preset.end()));
    words.insert(words.end(), {"--preset", "p.toml"});
    ASSERT_EQ(run(words).code, 0);
    words.insert(words.end(), {"--depth", "8"});
    ASSERT_EQ(run(words).code, 0);
    EXPECT_EQ(depth_of("n.png"), 8);
}

TEST_F(StackCommand, WritesHeightsWithoutAHeader)
{
    write_stack(kHill);
    Arguments const start{"stack", "s.toml", "-o", "n.tga", "--overwrite", "--progress", "none", "--height"};
    auto const with = [&](Arguments const& more) {
        Arguments words = start;
        words.insert(words.end(), more.begin(), more.end());
        return run(words);
    };
    ASSERT_EQ(with({"h.r16"}).code, 0);
    ASSERT_EQ(with({"h.png", "--depth", "16"}).code, 1); // of the normals in TGA
    ASSERT_EQ(with({"h.R32"}).code, 0);
    Bytes const whole = read("h.r16");
    EXPECT_EQ(whole.size(), kSide * kSide * 2U);
    EXPECT_EQ(read("h.R32").size(), kSide * kSide * 4U);
    // The hill, stretched to the full range: white in its middle, black in a corner.
    std::size_t const middle = (kSide / 2 - 1) * kSide + kSide / 2;
    EXPECT_EQ(whole[2 * middle] + 256 * whole[2 * middle + 1], 65535);
    EXPECT_LT(*std::min_element(whole.begin() + 1, whole.end()), 8);
    // It is taken for the same heights again.
    EXPECT_EQ(run({"normal", "h.r16"}).code, 0);
    EXPECT_EQ(run({"info", "h_Normal.png"}).code, 0);

    std::set<std::string> const before = files();
    for (auto const& [words, what] : std::vector<std::pair<Arguments, std::string>>{
             {{"normal", "hill.tga", "-o", "x.r16"},
              "x.r16: .r16 files hold heights alone, in one channel; give a name ending in .png"},
             {{"map", "hill.tga", "-o", "x.r32"},
              "x.r32: .r32 files hold heights alone, in one channel; give a name ending in .png"},
             {{"relight", "hill.tga", "-o", "x.r16"},
              "x.r16: .r16 files hold heights alone, in one channel; give a name ending in .png"},
             {{"stack", "s.toml", "-o", "x.r16"},
              "x.r16: .r16 files hold heights alone, in one channel; give a name ending in .png"},
             {{"stack", "s.toml", "-o", "x.png", "--height", "x.r16", "--depth", "8"},
              "x.r16: .r16 files have no samples of depth 8; give --depth 16, or a name of another "
              "format"}}) {
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 1) << what;
        EXPECT_NE(outcome.err.find("umbrix " + words[0] + ": error: " + what + "\n"), std::string::npos)
            << outcome.err;
    }
    write("wide.tga", height_map(16, 8, [](int x, int y) { return x + y; }));
    write_stack("[[layer]]\nfile = 'wide.tga'\n", "w.toml");
    Outcome const wide = run({"stack", "w.toml", "-o", "x.png", "--height", "x.r16"});
    EXPECT_EQ(wide.code, 1);
    EXPECT_NE(
        wide.err.find("x.r16: .r16 files tell no size, so they hold squares, and not 16 x 8; give a name "
                      "ending in .png\n"),
        std::string::npos)
        << wide.err;
    std::set<std::string> after = files();
    after.erase("wide.tga");
    after.erase("w.toml");
    EXPECT_EQ(after, before);
}

TEST_F(StackCommand, CountsFileNamesFromTheStackFile)
{
    std::filesystem::create_directory(folder() / "sub");
    std::filesystem::rename(folder() / "hill.tga", folder() / "sub" / "hill.tga");
    write_stack(kHill + "[[layer]]\nfile = '" + (folder() / "waves.tga").string() + "'\n", "sub/s.toml");
    EXPECT_EQ(run({"stack", "sub/s.toml"}).code, 0);
    EXPECT_TRUE(std::filesystem::exists(folder() / "sub" / "s_Normal.png"));
}

TEST_F(StackCommand, TellsWhatHasNoEffect)
{
    write("small.tga", waves(8));
    write("large.tga", waves(48));
    std::pair<std::string, char const*> const kCases[] = {
        {kHill + "opacity = 50\n", "s.toml: layer 1: opacity: it has no effect"},
        {kHill + "blend = 'add'\n", "s.toml: layer 1: blend: it has no effect"},
        {kHill + kWaves + "opacity = 150\n", "s.toml: layer 2: opacity: 150 is outside 0 to 100"},
        {kHill + kWaves + "opacity = -1\n", "s.toml: layer 2: opacity: -1 is outside 0 to 100"},
        {kHill + kLean + "n_scale = 2\n", "s.toml: layer 2: n_scale: it has no effect on a normal layer"},
        {kHill + "edges = [1, 0]\n", "s.toml: layer 1: edges: they have no effect"},
        {kHill + "[[layer]]\nfile = 'small.tga'\n", "s.toml: layer 2: file: small.tga: its size is 8 x 8 and "
                                                    "that of the first layer 32 x 32, so it repeats"},
        {kHill + "[[layer]]\nfile = 'large.tga'\n", "s.toml: layer 2: file: large.tga: its size is 48 x 48 "
                                                    "and that of the first layer 32 x 32, so it is cut "
                                                    "off"},
    };
    for (auto const& [text, note] : kCases) {
        Outcome const outcome = blend("x", text);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_NE(outcome.err.find(std::string("umbrix stack: note: ") + note), std::string::npos)
            << outcome.err;
    }
}

TEST_F(StackCommand, LeavesANormalLayerOfAnotherSizeOutAndSaysSo)
{
    write("other.tga", leaning_normals(16));
    std::string const other = "[[layer]]\nfile = 'other.tga'\nkind = 'normal'\nblend = 'add'\nopacity = 90\n";
    ASSERT_EQ(blend("without", kHill + kWaves + "opacity = 30\n").code, 0);
    for (std::string const& text :
         {kHill + other + kWaves + "opacity = 30\n", kHill + kWaves + "opacity = 30\n" + other}) {
        Outcome const outcome = blend("with", text);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_NE(
            outcome.err.find("file: other.tga: its size is 16 x 16 and that of the first layer 32 x 32, so "
                             "this normal layer is left out"),
            std::string::npos)
            << outcome.err;
        EXPECT_EQ(read("with_n.tga"), read("without_n.tga"));
        EXPECT_EQ(read("with_h.tga"), read("without_h.tga"));
    }
}

TEST_F(StackCommand, RefusesAStackFileThatItDoesNotUnderstand)
{
    write("junk.tga", {1, 2, 3, 4, 5});
    write("empty.tga", {});
    std::set<std::string> expected = files();
    expected.insert("s.toml");
    std::pair<std::string, char const*> const kCases[] = {
        {"", "s.toml: it is empty"},
        {"# nothing", "s.toml: it has no layers"},
        {"normal_scale = 1\n", "s.toml: it has no layers"},
        {"layer = []\n", "s.toml: it has no layers"},
        {"layer = 3\n", "s.toml: layer (line 1): it is not a list of tables"},
        {"[layer]\nfile = 'hill.tga'\n", "s.toml: layer (line 1): it is not a list of tables"},
        {"normal_scale = 'high'\n" + kHill, "s.toml: normal_scale (line 1): it is not a number"},
        {"save_depth = 12\n" + kHill, "s.toml: save_depth (line 1): '12' is no depth; give \"8\", \"16\", "},
        {"colour = 1\n" + kHill, "s.toml: colour (line 1): there is no such key"},
        {"[[layer]]\nfile = \n", "s.toml: line 2, column "},
        {kHill + "file = 'waves.tga'\n", "s.toml: line 3, column "},
        {"[[layer]]\nkind = 'height'\n", "s.toml: layer 1: file: it is missing"},
        {kHill + "[[layer]]\nfile = ''\n", "s.toml: layer 2: file (line 4): it is empty"},
        {kHill + "[[layer]]\nfile = 7\n", "s.toml: layer 2: file (line 4): it is not a text in quotes"},
        {kHill + "[[layer]]\nfile = 'none.tga'\n", "s.toml: layer 2: file: none.tga: there is no such file"},
        {kHill + "[[layer]]\nfile = 'empty.tga'\n", "s.toml: layer 2: file: empty.tga: it is empty"},
        {kHill + "[[layer]]\nfile = 'junk.tga'\n", "s.toml: layer 2: file: junk.tga: it is damaged"},
        {kHill + kWaves + "opcity = 3\n", "s.toml: layer 2: opcity (line 5): there is no such key"},
        {kHill + kWaves + "opacity = 'half'\n", "s.toml: layer 2: opacity (line 5): it is not a number"},
        {kHill + kWaves + "opacity = true\n", "s.toml: layer 2: opacity (line 5): it is not a number"},
        {kHill + kWaves + "opacity = nan\n", "s.toml: layer 2: opacity (line 5): it is not a number"},
        {kHill + kWaves + "blend = 'screen'\n",
         "s.toml: layer 2: blend (line 5): 'screen' is no way to blend"},
        {kHill + kWaves + "kind = 'colour'\n",
         "s.toml: layer 2: kind (line 5): 'colour' is no kind of layer"},
        {kHill + "detail = -1\n", "s.toml: layer 1: detail (line 3): -1 is out of range"},
        {kHill + "gaussian = 1001\n", "s.toml: layer 1: gaussian (line 3): 1001 is out of range"},
        {kHill + "edges = 1\n", "s.toml: layer 1: edges (line 3): it is not a pair of numbers"},
        {kHill + "edges = [1, 2, 3]\n", "s.toml: layer 1: edges (line 3): it is not a pair of numbers"},
        {kHill + "edges = [1, 'b']\n", "s.toml: layer 1: edges (line 3): it is not a number"},
        {kLean, "s.toml: layer 1: kind: the first layer has to be a height map"},
    };
    for (auto const& [text, message] : kCases) {
        Outcome const outcome = blend("x", text, {"--progress", "none"});
        EXPECT_EQ(outcome.code, 1) << text;
        EXPECT_EQ(outcome.err.rfind(std::string("umbrix stack: error: ") + message, 0), 0U) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find("; "), std::string::npos) << outcome.err;
        EXPECT_EQ(files(), expected) << text;
    }
    EXPECT_TRUE(complains_about(run({"stack", "none.toml"}), "umbrix stack", "none.toml"));
}

TEST_F(StackCommand, RefusesWhatMakesNoSense)
{
    write_stack(kHill);
    std::set<std::string> const before = files();
    std::pair<Arguments, char const*> const kCases[] = {
        {{"stack"}, "INPUT"},
        {{"stack", "s.toml", "--map-from-layers"}, "--map-from-layers"},
        {{"stack", "s.toml", "--map", "m.tga", "--map-from-layers", "--no-light"}, "--map-from-layers"},
        {{"stack", "s.toml", "--map", "m.tga", "--no-light", "--no-occlusion"}, "--no-light"},
        {{"stack", "s.toml", "--map", "m.bmp", "--height-in-alpha"}, "m.bmp"},
        {{"stack", "s.toml", "-o", "n.toml"}, "n.toml"},
        {{"stack", "s.toml", "-o", "n.tga", "--height", "./n.tga"}, "./n.tga"},
        {{"stack", "s.toml", "-o", "n.tga", "--map", "hill.tga", "--overwrite"}, "hill.tga"},
        {{"stack", "s.toml", "-o", "./hill.tga"}, "./hill.tga"},
        {{"stack", "--new", "-o", "n.tga"}, "--new"},
    };
    for (auto const& [arguments, subject] : kCases) {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << outcome.err;
        EXPECT_TRUE(complains_about(outcome, "umbrix stack", subject));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(StackCommand, WritesAllPicturesOrNone)
{
    write_stack(kHill);
    for (char const* old : {"n.tga", "h.tga", "m.tga"}) {
        write(old, {1, 2, 3});
        std::set<std::string> const before = files();
        Outcome const outcome =
            run({"stack", "s.toml", "-o", "n.tga", "--height", "h.tga", "--map", "m.tga"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix stack", old));
        EXPECT_EQ(read(old), (Bytes{1, 2, 3}));
        EXPECT_EQ(files(), before);
        std::filesystem::remove(folder() / old);
    }
}

TEST_F(StackCommand, LeavesNothingBehindIfItIsInterrupted)
{
    write("large.tga", waves(256));
    write_stack("[[layer]]\nfile = 'large.tga'\n");
    std::set<std::string> const before = files();
    RunningTool tool(folder(),
                     {"stack", "s.toml", "-o", "n.tga", "--height", "h.tga", "--map", "m.tga", "--rays",
                      "10000", "--progress", "lines"},
                     with_scratch());
    ASSERT_TRUE(tool.wait_for_text("occlusion"));
    EXPECT_GT(files().size(), before.size());
    tool.send(SIGINT);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 130);
    EXPECT_NE(outcome.err.find("umbrix stack: interrupted; nothing was written\n"), std::string::npos);
    EXPECT_EQ(files(), before);
}

TEST_F(StackCommand, ChecksTheSizeThatAnOutputCanHaveBeforeTheRun)
{
    write("odd.tga", hill(24));
    write_stack("[[layer]]\nfile = 'odd.tga'\n");
    std::set<std::string> const before = files();
    for (Arguments const& arguments : {Arguments{"stack", "s.toml", "-o", "x.vtf"},
                                       {"stack", "s.toml", "-o", "n.tga", "--height", "x.vtf"},
                                       {"stack", "s.toml", "-o", "n.tga", "--map", "x.vtf"}}) {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix stack", "x.vtf"));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(StackCommand, WritesWholeVtfPictures)
{
    ASSERT_EQ(blend("t", kHill + kWaves + "opacity = 50\n").code, 0);
    ASSERT_EQ(run({"stack", "s.toml", "-o", "n.vtf", "--height", "h.vtf"}).code, 0);
    // Read as heights, both formats have to give the same normals.
    ASSERT_EQ(run({"normal", "t_h.tga", "-o", "1.tga"}).code, 0);
    ASSERT_EQ(run({"normal", "h.vtf", "-o", "2.tga"}).code, 0);
    EXPECT_EQ(read("1.tga"), read("2.tga"));
}

TEST_F(StackCommand, WritesAnExampleThatRunsOnTheShippedTextures)
{
    std::filesystem::create_directory_symlink(UMBRIX_EXAMPLES, folder() / "examples");
    Outcome const written = run({"stack", "--new"});
    EXPECT_EQ(written.code, 0) << written.err;
    EXPECT_EQ(written.err, "");
    Bytes const text = read("stack.toml");
    EXPECT_NE(std::string(text.begin(), text.end()).find("\"examples/textures/cobbles_height.png\""),
              std::string::npos);
    Outcome const made = run(
        {"stack", "stack.toml", "-o", "n.tga", "--height", "h.tga", "--map", "m.tga", "--progress", "none"});
    EXPECT_EQ(made.code, 0);
    EXPECT_EQ(made.err, "");
    ASSERT_EQ(run({"stack", "examples/stack.toml", "-o", "n2.tga"}).code, 0);
    EXPECT_EQ(read("n.tga"), read("n2.tga"));

    Outcome const again = run({"stack", "--new"});
    EXPECT_EQ(again.code, 1);
    EXPECT_TRUE(complains_about(again, "umbrix stack", "stack.toml"));
    write("mine.toml", {'x'});
    EXPECT_EQ(run({"stack", "--new", "mine.toml"}).code, 1);
    EXPECT_EQ(read("mine.toml"), Bytes{'x'});
    EXPECT_EQ(run({"stack", "--new", "mine.toml", "--overwrite"}).code, 0);
    EXPECT_EQ(read("mine.toml"), text);
}

} // namespace
} // namespace umbrixlib::test
