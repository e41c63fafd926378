// SPDX-License-Identifier: MIT
#include "toolkit/settings/preset.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"
#include "toolkit/settings/setting_table.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::Failure;
using toolkit::Fault;
using toolkit::Preset;
using toolkit::preset_text;
using toolkit::read_preset;
using toolkit::SettingRow;
using toolkit::Settings;

class PresetValues : public testing::Test {
protected:
    std::string file() const { return folder_ / "p.toml"; }

    Preset of(std::string const& text) const
    {
        std::ofstream(file(), std::ios::binary) << text;
        return read_preset(file());
    }

    /// The failure to read @p text: "key (line 1): what; remedy", with the file left out.
    std::string sentence(std::string const& text, Fault expected) const
    {
        try {
            of(text);
        } catch (Failure const& failure) {
            EXPECT_EQ(static_cast<int>(failure.fault), static_cast<int>(expected)) << text;
            EXPECT_EQ(failure.subject.find(file() + ": "), 0U) << failure.subject;
            std::string const rest = failure.remedy.empty() ? "" : "; " + failure.remedy;
            return failure.subject.substr(file().size() + 2) + ": " + failure.what() + rest;
        }
        return "nothing is wrong";
    }

    std::string wrong_value(std::string const& text) const { return sentence(text, Fault::kWrongValue); }

private:
    TemporaryFolder folder_;
};

SettingRow const& row(std::string_view name)
{
    for (SettingRow const& each : toolkit::setting_table()) {
        if (each.name == name) {
            return each;
        }
    }
    throw std::out_of_range(std::string(name));
}

TEST_F(PresetValues, AreTheDefaultsUnlessMentioned)
{
    Preset const empty = of("");
    EXPECT_EQ(empty.description, "");
    EXPECT_EQ(preset_text(empty), preset_text(Preset()));
    EXPECT_EQ(empty.settings.rays, 128);
}

TEST_F(PresetValues, AreTakenInByTheirType)
{
    Preset const preset = of("description = 'wet slate'\n"
                             "kind = 'normal'\nnormal_y = 'down'\nlight = false\nmode = 'squared'\n"
                             "relief = 0.5\nh_scale = 2\nn_scale = -3.5\nrays = 17\n");
    EXPECT_EQ(preset.description, "wet slate");
    Settings const& settings = preset.settings;
    EXPECT_EQ(settings.kind, toolkit::Kind::kNormalMap);
    EXPECT_EQ(settings.normal_y, toolkit::NormalY::kDown);
    EXPECT_FALSE(settings.light);
    EXPECT_EQ(static_cast<int>(settings.mode), 3);
    EXPECT_EQ(settings.relief, 0.5f);
    EXPECT_EQ(settings.h_scale, 2.0f);
    EXPECT_EQ(settings.n_scale, -3.5f);
    EXPECT_EQ(settings.rays, 17);
    EXPECT_EQ(of("n_scale = 'auto'\nkind = 'auto'\n").settings.n_scale, std::nullopt);
}

TEST_F(PresetValues, AreRefusedWithTheLineAndTheKey)
{
    EXPECT_EQ(wrong_value("\nrays = 1.5\n"), "rays (line 2): 1.5 is not a whole number; give 1 to 10000");
    EXPECT_EQ(wrong_value("rays = 'many'\n"), "rays (line 1): it is not a number; give 1 to 10000");
    EXPECT_EQ(wrong_value("rays = 0\n"), "rays (line 1): 0 is out of range; give 1 to 10000");
    EXPECT_EQ(wrong_value("relief = nan\n"), "relief (line 1): it is not a number; give 0 to 10");
    EXPECT_EQ(wrong_value("relief = 10.5\n"), "relief (line 1): 10.5 is out of range; give 0 to 10");
    EXPECT_EQ(wrong_value("relief = 'auto'\n"), "relief (line 1): it is not a number; give 0 to 10");
    EXPECT_EQ(wrong_value("n_scale = 'some'\n"),
              "n_scale (line 1): it is neither a number nor \"auto\"; give -1000000 to 1000000, or \"auto\"");
    EXPECT_EQ(wrong_value("h_scale = true\n"), "h_scale (line 1): it is not a number; give 0 to 10");
    EXPECT_EQ(wrong_value("tile = 1\n"),
              "tile (line 1): it is neither true nor false; give one of these, without quotes");
    EXPECT_EQ(wrong_value("tile = 'yes'\n"),
              "tile (line 1): it is neither true nor false; give one of these, without quotes");
    EXPECT_EQ(wrong_value("mode = 'bright'\n"),
              "mode (line 1): 'bright' is not known; give \"projection\", \"unit\", \"flat\", \"squared\"");
    EXPECT_EQ(
        wrong_value("mode = 2\n"),
        "mode (line 1): it is not a text in quotes; give \"projection\", \"unit\", \"flat\", \"squared\"");
    EXPECT_EQ(wrong_value("kind = 'stone'\n"),
              "kind (line 1): 'stone' is not known; give \"auto\", \"height\", \"normal\"");
    EXPECT_EQ(wrong_value("[rays]\nn = 1\n"), "rays (line 1): it is not a number; give 1 to 10000");
}

TEST_F(PresetValues, DescribeInOneLine)
{
    for (char const* description : {"a\\nb", "a\\u0085b", "a\\u009b2J"}) {
        EXPECT_EQ(
            wrong_value(std::string("description = \"") + description + "\"\n"),
            "description (line 1): it has line breaks or other control characters; give one line of text");
    }
    EXPECT_EQ(of("description = 'wet \"slate\" \\ \xC3\xA4'\n").description, "wet \"slate\" \\ \xC3\xA4");
}

TEST_F(PresetValues, OfUnknownKeysComeWithTheOneThatIsMeant)
{
    EXPECT_EQ(sentence("rays = 16\nreleif = 1\n", Fault::kUnknownKey),
              "releif (line 2): there is no such key; perhaps relief is meant");
    EXPECT_EQ(sentence("h-scale = 1\n", Fault::kUnknownKey),
              "h-scale (line 1): there is no such key; perhaps h_scale is meant");
    EXPECT_EQ(sentence("colour = 'red'\n", Fault::kNoPreset), "colour (line 1): there is no such key");
}

TEST_F(PresetValues, AreToml)
{
    EXPECT_EQ(sentence("rays = 1\nrays = 2\n", Fault::kNoPreset).find("line 2, column "), 0U);
    EXPECT_EQ(sentence("rays = \n", Fault::kNoPreset).find("line 1, column "), 0U);
}

TEST_F(PresetValues, ComeBackFromTheTextOfAPreset)
{
    Preset preset;
    preset.description = "wet \"slate\" \\ \xC3\xA4\xE2\x82\xAC";
    preset.settings.rays = 17;
    preset.settings.n_scale = -0.0f;
    preset.settings.h_scale = 0.1f;
    preset.settings.kind = toolkit::Kind::kHeightMap;
    preset.settings.tile = false;
    std::string const text = preset_text(preset);
    Preset const again = of(text);
    EXPECT_EQ(again.description, preset.description);
    EXPECT_TRUE(std::signbit(again.settings.n_scale.value()));
    EXPECT_EQ(again.settings.h_scale, 0.1f);
    EXPECT_EQ(preset_text(again), text);
}

TEST_F(PresetValues, StandInTomlAsTheyWouldBeTyped)
{
    Settings settings;
    settings.rays = 17;
    settings.relief = 0.05f;
    settings.tile = true;
    settings.mode = static_cast<Modes>(1);
    settings.n_scale = std::nullopt;
    EXPECT_EQ(preset_value(row("rays"), settings), "17");
    EXPECT_EQ(preset_value(row("relief"), settings), "0.05");
    EXPECT_EQ(preset_value(row("tile"), settings), "true");
    EXPECT_EQ(preset_value(row("mode"), settings), "\"unit\"");
    EXPECT_EQ(preset_value(row("n-scale"), settings), "\"auto\"");
    settings.n_scale = -0.0f;
    EXPECT_EQ(preset_value(row("n-scale"), settings), "-0.0");
    EXPECT_EQ(preset_key(row("n-scale")), "n_scale");
}

TEST_F(PresetValues, OfShippedPresetsAreFoundByName)
{
    EXPECT_EQ(toolkit::shipped_presets(),
              (std::vector<std::string_view>{"brick", "cloth", "stone", "terrain"}));
    for (std::string_view const name : toolkit::shipped_presets()) {
        EXPECT_NE(read_preset(std::string(name)).description, "") << name;
    }
    try {
        read_preset("ston");
        FAIL() << "it was found";
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kUnknownPreset);
        EXPECT_STREQ(failure.what(), "'ston' is not a shipped preset");
        EXPECT_EQ(failure.remedy,
                  "perhaps stone is meant; the shipped ones are brick, cloth, stone, terrain, and "
                  "the name of a file ends in .toml");
    }
}

} // namespace
} // namespace umbrixlib::test
