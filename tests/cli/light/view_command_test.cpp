// SPDX-License-Identifier: MIT
/// `umbrix view`, run as a user runs it, and its page in a browser.
#include "cli/tool.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>

namespace umbrixlib::test {
namespace {

class ViewCommand : public ToolTest {
protected:
    ViewCommand()
    {
        write("hill.tga", hill(64));
        EXPECT_EQ(run({"map", "hill.tga", "-o", "map.png"}).code, 0);
    }

    std::string page(std::string const& name) const
    {
        Bytes const bytes = read(name);
        return {bytes.begin(), bytes.end()};
    }
};

TEST_F(ViewCommand, WritesOnePageBesideItsMap)
{
    Outcome const outcome = run({"view", "map.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote map_View.html: a page with 64 x 64 texels, ", 0), 0U) << outcome.out;
    std::string const html = page("map_View.html");
    EXPECT_NE(html.find("<title>map</title>"), std::string::npos);
    EXPECT_NE(html.find("data-mode=\"projection\""), std::string::npos);
    auto const size = static_cast<double>(std::filesystem::file_size(folder() / "map.png"));
    EXPECT_LT(static_cast<double>(html.size()), 1.4 * size + 65536);
    EXPECT_EQ(run({"view", "map.png"}).code, 1); // it is there already
    EXPECT_EQ(run({"view", "map.png", "--overwrite", "--title", "A <hill>"}).code, 0);
    EXPECT_NE(page("map_View.html").find("<title>A &lt;hill&gt;</title>"), std::string::npos);
}

TEST_F(ViewCommand, TakesTheModeThatAMapTells)
{
    ASSERT_EQ(run({"map", "hill.tga", "--mode", "squared", "-o", "squared.png"}).code, 0);
    ASSERT_EQ(run({"view", "squared.png", "-o", "a.html"}).code, 0);
    EXPECT_NE(page("a.html").find("data-mode=\"squared\""), std::string::npos);
    ASSERT_EQ(run({"view", "squared.png", "-o", "b.html", "--mode", "unit"}).code, 0);
    EXPECT_NE(page("b.html").find("data-mode=\"unit\""), std::string::npos);
}

TEST_F(ViewCommand, RefusesWhatItCannotShow)
{
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "normals.png"}).code, 0);
    write("small.tga", hill(32));
    struct Line {
        Arguments words;
        int code;
        char const* text;
    };
    for (Line const& line :
         {Line{{"normals.png"}, 1, "normals.png: it tells of itself that it is a normal map"},
          {{"map.png", "-o", "a.png"}, 2, "a.png: a page is an HTML file; give a name ending in .html"},
          {{"map.png", "--albedo", "small.tga"},
           1,
           "small.tga: its size is 32 x 32 and that of the map 64 x 64"},
          {{"none.png"}, 1, "none.png"}}) {
        Arguments words{"view"};
        words.insert(words.end(), line.words.begin(), line.words.end());
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, line.code) << outcome.err;
        EXPECT_NE(outcome.err.find(line.text), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(files().size(), 4U);
}

/// What Debian's browser makes of a page. Needs no display and no graphics processor.
class ViewInABrowser : public ViewCommand {
protected:
    void SetUp() override
    {
        if (std::system("command -v chromium > /dev/null") != 0) {
            GTEST_SKIP() << "chromium is not installed";
        }
    }

    /// The texels of a window of @p side, as a TGA, with what is behind the # of the address.
    TgaPicture shown(std::string const& page, int side, std::string const& behind) const
    {
        std::string const command = fmt::format(
            "cd '{0}' && timeout 120 chromium --headless --no-sandbox --use-angle=swiftshader "
            "--enable-unsafe-swiftshader --hide-scrollbars --force-device-scale-factor=1 "
            "--virtual-time-budget=5000 --user-data-dir='{1}' --window-size={2},{2} --screenshot=shown.png "
            "'file://{0}/{3}#{4}' > /dev/null 2>&1",
            folder().string(), scratch().string(), side, page, behind);
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        EXPECT_EQ(run({"convert", "shown.png", "-o", "shown.tga", "--overwrite"}).code, 0);
        return tga("shown.tga");
    }

    static void expect_near(TgaPicture const& one, TgaPicture const& other)
    {
        ASSERT_EQ(one.width, other.width);
        ASSERT_EQ(one.height, other.height);
        for (int y = 0; y < one.height; ++y) {
            for (int x = 0; x < one.width; ++x) {
                for (int c = 0; c < 3; ++c) {
                    ASSERT_NEAR(one.at(x, y, c), other.at(x, y, c), 2) << x << ' ' << y;
                }
            }
        }
    }
};

constexpr int kWindow = 256; // smaller ones are widened

TEST_F(ViewInABrowser, IsLitAsByRelight)
{
    write("broad.tga", hill(kWindow));
    for (char const* const mode : {"projection", "unit", "flat", "squared"}) {
        ASSERT_EQ(run({"map", "broad.tga", "-o", "broad.png", "--mode", mode, "--overwrite"}).code, 0);
        ASSERT_EQ(run({"view", "broad.png", "-o", "a.html", "--overwrite"}).code, 0);
        ASSERT_EQ(run({"relight", "broad.png", "-o", "lit.tga", "--light", "200,30", "--exposure", "0.8",
                       "--ambient", "0.1", "--overwrite"})
                      .code,
                  0);
        expect_near(shown("a.html", kWindow, "azimuth=200&elevation=30&exposure=0.8&ambient=0.1&panel=off"),
                    tga("lit.tga"));
    }
}

TEST_F(ViewInABrowser, HasItsColours)
{
    write("broad.tga", hill(kWindow));
    write("albedo.png", png_bytes(kWindow, PngColour::kRgb, 8, std::vector<Bytes>(kWindow, [] {
                                      Bytes row;
                                      for (int x = 0; x < kWindow; ++x) {
                                          row.insert(row.end(), {static_cast<std::uint8_t>(x), 128, 200});
                                      }
                                      return row;
                                  }())));
    ASSERT_EQ(run({"convert", "albedo.png", "-o", "albedo.jpg"}).code, 0);
    ASSERT_EQ(run({"map", "broad.tga", "-o", "broad.png"}).code, 0);
    for (char const* const albedo : {"albedo.png", "albedo.jpg"}) {
        ASSERT_EQ(run({"view", "broad.png", "--albedo", albedo, "-o", "a.html", "--overwrite"}).code, 0);
        ASSERT_EQ(run({"relight", "broad.png", "--albedo", albedo, "-o", "lit.tga", "--light", "20,50",
                       "--overwrite"})
                      .code,
                  0);
        expect_near(shown("a.html", kWindow, "azimuth=20&elevation=50&panel=off"), tga("lit.tga"));
    }
}

TEST_F(ViewInABrowser, ShowsOneChannelAndTiles)
{
    write("broad.tga", hill(kWindow / 2));
    ASSERT_EQ(run({"map", "broad.tga", "-o", "broad.png"}).code, 0);
    ASSERT_EQ(run({"view", "broad.png", "-o", "a.html"}).code, 0);
    ASSERT_EQ(run({"convert", "broad.png", "-o", "map.tga"}).code, 0);
    TgaPicture const map = tga("map.tga");
    TgaPicture const tiles = shown("a.html", kWindow, "tiles=2&show=2&panel=off");
    for (int y = 0; y < kWindow; ++y) {
        for (int x = 0; x < kWindow; ++x) {
            ASSERT_NEAR(tiles.at(x, y, 1), map.at(x % map.width, y % map.height, 0), 1) << x << ' ' << y;
        }
    }
}

} // namespace
} // namespace umbrixlib::test
