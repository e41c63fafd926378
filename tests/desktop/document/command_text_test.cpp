// SPDX-License-Identifier: MIT
#include "document/command_text.h"

#include "random_state.h"
#include "toolkit/base/failure.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace umbrix_desktop {
namespace {

using toolkit::Failure;
using Words = std::vector<std::string>;

/// What the system's shell makes of the words of @p line: each, and a zero byte behind it.
std::string words_by_sh(std::string const& line)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const shell(
        popen(("printf '%s\\0' " + line).c_str(), "r"), pclose);
    std::string all;
    std::array<char, 4096> piece{};
    for (std::size_t got = 0; (got = std::fread(piece.data(), 1, piece.size(), shell.get())) > 0;) {
        all.append(piece.data(), got);
    }
    return all;
}

std::string joined(Words const& words)
{
    std::string all;
    for (std::string const& word : words) {
        all += word + '\0';
    }
    return all;
}

std::string complaint_about_line(std::string const& line)
{
    try {
        state_of_command(line, {});
    } catch (Failure const& failure) {
        return failure.subject + ": " + failure.what();
    }
    return "none";
}

/// A state with settings that a map has; the others count in no map.
State state_for_map(test::RandomState& random)
{
    State state;
    state.source = "/" + random.name() + "x";
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        bool const counts =
            row.users == toolkit::kForPresets || (row.users & (toolkit::kForMap | toolkit::kForHeights)) != 0;
        if (counts && random.coin()) {
            random.change(row, state.settings);
        }
    }
    if (state.settings.kind == toolkit::Kind::kHeightMap) {
        state.settings.normal_y = toolkit::kDefaults.normal_y;
    }
    return state;
}

TEST(DesktopCommand, HasTheOptionsThatDifferFromTheDefaults)
{
    State state;
    state.source = "/textures/old brick's.png";
    EXPECT_EQ(command_of(state), "umbrix map '/textures/old brick'\\''s.png'");
    state.settings.relief = 0.125f;
    state.settings.tile = false;
    state.settings.generate_normal = true;
    state.settings.contrast = -0.5f;
    state.settings.kind = toolkit::Kind::kNormalMap;
    state.settings.normal_y = toolkit::NormalY::kDown;
    state.settings.save_depth = umbrixlib::SampleType::kUint16;
    state.settings.height_range = {toolkit::HeightRange::How::kGiven, -1, 4};
    state.source = "-brick.png";
    EXPECT_EQ(command_of(state),
              "umbrix map ./-brick.png --normal-map --normal-y down --depth 16 "
              "--height-range=-1,4 --generate-normal --relief 0.125 --no-tile --contrast=-0.5");
}

TEST(DesktopCommand, IsReadBackAsItWasWritten)
{
    test::RandomState random(3);
    for (int i = 0; i < 1000; ++i) {
        State const state = state_for_map(random);
        State before;
        before.lighting.exposure = 0.25;
        State const read = state_of_command(command_of(state), before);
        ASSERT_EQ(read.settings, state.settings) << command_of(state);
        ASSERT_EQ(read.source, state.source);
        ASSERT_EQ(read.lighting, before.lighting);
    }
}

TEST(DesktopCommand, IsSplitAsTheShellDoes)
{
    test::RandomState random(4);
    for (int i = 0; i < 50; ++i) {
        std::string const line = command_of(state_for_map(random));
        ASSERT_EQ(joined(shell_words(line)), words_by_sh(line)) << line;
    }
    for (std::string const line :
         {R"(a  b	c)", R"(a'b c'd)", R"("a b"c)", R"("a\"b\\c\d")", R"(a\ b \\ \')", R"('a\b')",
          "a\\\nb", "\"a\\\nb\"", R"('' "" x)", R"(a#b a~b)", R"(a=b)"}) {
        EXPECT_EQ(joined(shell_words(line)), words_by_sh(line)) << line;
    }
    EXPECT_EQ(shell_words("  \n"), Words{});
}

TEST(DesktopCommand, RefusesWhatIsMoreThanWords)
{
    for (std::string const line :
         {"a $b", "a `b`", "a | b", "a; b", "a > b", "*.png", "\"$a\"", "# a", "~/a", "a'b", "a\"b"}) {
        EXPECT_THROW(shell_words(line), Failure) << line;
    }
}

TEST(DesktopCommand, TakesAnyLineOfTheTool)
{
    State const state = state_of_command(
        "/usr/bin/umbrix map --relief=0.5 --overwrite -o out.png --depth=16 -- brick.png", {});
    EXPECT_EQ(state.source, "brick.png");
    EXPECT_EQ(state.settings.relief, 0.5f);
    EXPECT_EQ(state.settings.save_depth, umbrixlib::SampleType::kUint16);
    State const preset = state_of_command("umbrix map brick.png --relief 0.5 --preset stone", {});
    EXPECT_EQ(preset.settings.relief, 0.5f);
    EXPECT_NE(preset.settings, state_of_command("umbrix map brick.png --relief 0.5", {}).settings);
    EXPECT_FALSE(state_of_command("umbrix map a.png --tile=false", {}).settings.tile);
}

TEST(DesktopCommand, SaysWhatIsWrongWithALine)
{
    EXPECT_EQ(complaint_about_line("umbrix normal a.png"), "the line: it does not begin with umbrix map");
    EXPECT_EQ(complaint_about_line(""), "the line: it does not begin with umbrix map");
    EXPECT_EQ(complaint_about_line("umbrix map"), "umbrix map: it names no picture");
    EXPECT_EQ(complaint_about_line("umbrix map a.png b.png"),
              "b.png: the line names a.png as the picture already");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --releif 1"), "--releif: umbrix map has no such option");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --relief"), "--relief: its value is missing");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --relief 11"), "--relief: 11 is out of range");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --relief high"), "--relief: 'high' is not a number");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --gpu"), "--gpu: the window makes no such map");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --directions 8"),
              "--directions: umbrix map has no such option");
    EXPECT_EQ(complaint_about_line("umbrix map a.png --normal-y left"),
              "--normal-y: 'left' is not a normal-y");
}

} // namespace
} // namespace umbrix_desktop
