// SPDX-License-Identifier: MIT
/// What a map loses at black and at white is told, with the relief that would halve it.
#include "task_test.h"

#include <cmath>
#include <numbers>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// Shares of the samples that are black and of the texels that have one at 255.
struct Shares {
    double black = 0;
    double cut = 0;
};

class LostLight : public TaskTest {
protected:
    Shares shares_of(std::string const& name) const
    {
        Picture const map = picture(name);
        Shares shares;
        for (std::size_t i = 0; i < map.texels(); ++i) {
            auto const* const texel = map.texel(i);
            shares.black += static_cast<double>(std::count(texel, texel + 3, 0));
            shares.cut += *std::max_element(texel, texel + 3) == 255 ? 1.0 : 0.0;
        }
        auto const texels = static_cast<double>(map.texels());
        return {shares.black / (3.0 * texels), shares.cut / texels};
    }

    /// The notes on a map of heights.png.
    std::vector<std::string> notes_on_map(Settings const& settings)
    {
        MapJob job;
        job.files = files("heights.png", "map.png");
        job.settings = settings;
        job.kind = Kind::kHeightMap;
        Notes notes;
        run(job, notes);
        return notes.texts;
    }

    /// The number that follows @p words in @p text.
    static float number_behind(std::string const& text, std::string const& words)
    {
        std::size_t const at = text.find(words);
        EXPECT_NE(at, std::string::npos) << text;
        return at == std::string::npos ? 0.0f : std::stof(text.substr(at + words.size()));
    }
};

/// Hills of several sizes on a picture that tiles.
auto hills(int side)
{
    return [side](int x, int y) {
        double const turn = 2.0 * std::numbers::pi / side;
        return 0.5 + 0.2 * std::sin(turn * x) * std::cos(turn * 2 * y) +
               0.15 * std::sin(turn * (7 * x + 3 * y)) + 0.1 * std::cos(turn * (11 * y - 5 * x));
    };
}

void expect_about_half(double then, double now)
{
    EXPECT_GT(then, 0.35 * now);
    EXPECT_LT(then, 0.65 * now);
}

TEST_F(LostLight, TheProposedReliefHalvesTheBlack)
{
    for (int const side : {128, 400}) { // looked at as a whole, and in pieces
        put_heights("heights.png", side, 8, hills(side));
        Settings settings = kDefaults;
        settings.relief = 2.0f;
        settings.rays = 32;
        auto const notes = notes_on_map(settings);
        ASSERT_EQ(notes.size(), 1U);
        Shares const now = shares_of("map.png");
        EXPECT_GT(now.black, 1.0 / 3.0);
        EXPECT_EQ(notes[0].substr(0, 36),
                  std::to_string(std::lround(100 * now.black)) + " % of the map's samples are black;");
        settings.relief = number_behind(notes[0], "; a relief of ");
        notes_on_map(settings);
        expect_about_half(shares_of("map.png").black, now.black);
    }
}

TEST_F(LostLight, TheProposedReliefHalvesWhatIsCut)
{
    // Most of the ground faces the light from the right.
    for (int const side : {128, 400}) {
        put_heights("heights.png", side, 16, [side](int x, int y) {
            double const across = 1.0 - std::fmod(8.0 * x / side, 1.0);
            return across * (0.8 + 0.2 * std::sin(10.0 * std::numbers::pi * y / side));
        });
        Settings settings = kDefaults;
        settings.relief = 0.1f;
        settings.rays = 32;
        auto const notes = notes_on_map(settings);
        ASSERT_EQ(notes.size(), 1U);
        Shares const now = shares_of("map.png");
        EXPECT_GT(now.cut, 0.1);
        EXPECT_NE(notes[0].find(std::to_string(std::lround(100 * now.cut)) +
                                " % of the map's texels are cut off at 255;"),
                  std::string::npos)
            << notes[0];
        settings.relief = number_behind(notes[0], "; a relief of ");
        notes_on_map(settings);
        expect_about_half(shares_of("map.png").cut, now.cut);
    }
}

TEST_F(LostLight, IsNotCutOffInFloats)
{
    put_heights("heights.png", 128, 16, [](int x, int) { return 1.0 - std::fmod(x / 16.0, 1.0); });
    MapJob job;
    job.settings.relief = 0.1f;
    job.settings.rays = 32;
    job.kind = Kind::kHeightMap;
    auto const notes_in = [&](SampleType depth) {
        job.files = files("heights.png", depth == SampleType::kFloat ? "map.exr" : "map.png");
        job.files.output.saving.depth = depth;
        Notes notes;
        run(job, notes);
        return notes.texts;
    };
    EXPECT_TRUE(notes_in(SampleType::kFloat).empty());
    auto const words = notes_in(SampleType::kUint16);
    ASSERT_EQ(words.size(), 1U);
    EXPECT_NE(words[0].find("cut off at 65535"), std::string::npos) << words[0];
}

TEST_F(LostLight, TheNoteSpeaksOfTheScalesThatWereGiven)
{
    put_heights("heights.png", 128, 8, hills(128));
    Settings settings = kDefaults;
    settings.h_scale = 2.0f;
    settings.n_scale = 128.0f;
    settings.rays = 32;
    auto const notes = notes_on_map(settings);
    ASSERT_EQ(notes.size(), 1U);
    double const now = shares_of("map.png").black;
    settings.h_scale = number_behind(notes[0], "; an h-scale of ");
    settings.n_scale = number_behind(notes[0], " with an n-scale of ");
    notes_on_map(settings);
    expect_about_half(shares_of("map.png").black, now);
}

TEST_F(LostLight, OfAStackIsTold)
{
    put_heights("heights.png", 128, 8, hills(128));
    StackJob job;
    job.file = "stack";
    StackLayer layer;
    layer.label = "layer 1";
    layer.file = path("heights.png");
    job.description.layers = {layer};
    job.normals = {path("n.png"), "n.png"};
    job.map = {path("map.png"), "map.png"};
    job.max_texels = kMostTexels;
    job.settings.relief = 2.0f;
    job.settings.rays = 32;
    Notes notes;
    run(job, notes);
    ASSERT_EQ(notes.texts.size(), 1U);
    double const now = shares_of("map.png").black;
    job.settings.relief = number_behind(notes.texts[0], "; a relief of ");
    run(job, notes);
    expect_about_half(shares_of("map.png").black, now);
}

TEST_F(LostLight, NoReliefIsProposedWhereItDecidesNothing)
{
    put_heights("heights.png", 64, 8, hills(64));
    Settings settings = kDefaults;
    settings.brightness = -1.0f;
    EXPECT_EQ(
        notes_on_map(settings),
        (std::vector<std::string>{"100 % of the map's samples are black; no lower relief would halve that"}));
}

TEST_F(LostLight, GroundAtFullLightIsNotCut)
{
    put_heights("heights.png", 64, 8, [](int, int) { return 0.5; });
    Settings settings = kDefaults;
    settings.mode = Modes_FlatIsFull;
    EXPECT_EQ(notes_on_map(settings), std::vector<std::string>{});
    EXPECT_GT(shares_of("map.png").cut, 0.9);
    settings.light = false;
    EXPECT_EQ(notes_on_map(settings), std::vector<std::string>{});
    EXPECT_GT(shares_of("map.png").cut, 0.9);
}

TEST_F(LostLight, IsToldOfEveryDepth)
{
    put_heights("heights.png", 128, 8, hills(128));
    Settings settings = kDefaults;
    settings.relief = 2.0f;
    settings.rays = 32;
    auto const expected = notes_on_map(settings);
    for (auto const& [name, depth] : {std::pair("map.png", SampleType::kUint16),
                                      {"map.exr", SampleType::kHalf},
                                      {"map.exr", SampleType::kFloat}}) {
        MapJob job;
        job.files = files("heights.png", name);
        job.files.output.saving.depth = depth;
        job.settings = settings;
        Notes notes;
        run(job, notes);
        EXPECT_EQ(notes.texts, expected) << name;
    }
}

} // namespace
} // namespace umbrixlib::test
