// SPDX-License-Identifier: MIT
/// Help, wrong usage and progress.
#include "tool.h"

namespace umbrixlib::test {
namespace {

class ToolUsage : public ToolTest {
protected:
    ToolUsage() { write("hill.tga", hill(32)); }
};

TEST_F(ToolUsage, TellsItsVersion)
{
    Outcome const outcome = run({"--version"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out.rfind("umbrix ", 0), 0U);
}

TEST_F(ToolUsage, HelpsWithEveryOption)
{
    Outcome const help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    for (char const* text :
         {"map",     "normal",  "height",     "curvature",     "bent",    "horizon",
          "stack",   "relight", "view",       "batch",         "list",    "info",
          "check",   "export",  "pack",       "fit",           "preset",  "profile",
          "devices", "0 done",  "1 an input", "2 wrong usage", "3 a map", "130 interrupted"}) {
        EXPECT_NE(help.out.find(text), std::string::npos) << text;
    }
    std::string const map = run({"map", "--help"}).out;
    for (char const* option : {"--height-map",
                               "--normal-map",
                               "--normal-y",
                               "--gpu [N]",
                               "--match-cpu",
                               "--compare-cpu",
                               "--[no-]light",
                               "--[no-]occlusion",
                               "--mode",
                               "--relief",
                               "--h-scale",
                               "--n-scale",
                               "--gaussian",
                               "--detail",
                               "--rays",
                               "--radius",
                               "--alpha-limit",
                               "--theta-limit",
                               "--[no-]tile",
                               "--[no-]h-tile",
                               "--[no-]v-tile",
                               "--b-radius",
                               "--h-contrast",
                               "--h-min",
                               "--h-max",
                               "--h-brightness",
                               "--h-smooth",
                               "--contrast",
                               "--min",
                               "--max",
                               "--brightness",
                               "--smooth",
                               "--[no-]height-in-alpha",
                               "--timeout",
                               "--max-texels",
                               "--progress",
                               "--output",
                               "--overwrite",
                               "--[no-]generate-normal",
                               "--preset"}) {
        std::size_t const at = map.find(option);
        ASSERT_NE(at, std::string::npos) << option;
    }
    EXPECT_NE(map.find("0 to 4 image widths; default 0.25"), std::string::npos) << map;
}

TEST_F(ToolUsage, RefusesOptionsOutOfRange)
{
    std::vector<Arguments> const wrong{
        {"--rays", "-3"},       {"--rays", "0"},        {"--rays", "10001"},  {"--rays", "1.5"},
        {"--rays", "many"},     {"--relief", "nan"},    {"--relief", "inf"},  {"--relief", "-1"},
        {"--relief", "0.1x"},   {"--relief", ""},       {"--radius", "1e30"}, {"--min", "256"},
        {"--min", "-1"},        {"--contrast", "1.01"}, {"--smooth", "-1"},   {"--mode", "bright"},
        {"--normal-y", "left"}, {"--progress", "loud"}, {"--timeout", "0"},   {"--max-texels", "-5"},
        {"--n-scale", "some"},
    };
    for (Arguments const& option : wrong) {
        Outcome const outcome = run({"map", "hill.tga", option[0], option[1]});
        EXPECT_EQ(outcome.code, 2) << option[0] << " " << option[1];
        EXPECT_EQ(outcome.err.rfind("umbrix map: error: " + option[0] + ": ", 0), 0U) << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga"}));
}

TEST_F(ToolUsage, RefusesWhatMakesNoSense)
{
    std::vector<Arguments> const wrong{
        {},
        {"frobnicate"},
        {"map"},
        {"map", "hill.tga", "extra.tga"},
        {"map", "hill.tga", "--frobnicate"},
        {"map", "hill.tga", "--height-map", "--normal-map"},
        {"map", "hill.tga", "--height-map", "--normal-y", "up"},
        {"map", "hill.tga", "--no-light", "--no-occlusion"},
        {"map", "hill.tga", "--min", "9", "--max", "8"},
        {"map", "hill.tga", "--height-in-alpha", "-o", "x.jpg"},
        {"normal", "hill.tga", "--rays", "9"},
        {"relight", "hill.tga", "--turntable", "0"},
        {"relight", "hill.tga", "--turntable", "2.5"},
        {"info", "hill.tga", "-o", "x.tga"},
        {"list"},
        {"list", "frobnicate"},
        {"list", "show"},
        {"list", "add", "x.ulist"},
        {"list", "set", "x.ulist"},
        {"list", "set", "x.ulist", "1"},
        {"list", "set", "x.ulist", "first", "--rays", "3"},
        {"list", "remove", "x.ulist"},
        {"list", "add", "x.ulist", "hill.tga", "--rays", "0"},
        {"list", "add", "x.ulist", "hill.tga", "--no-light", "--no-occlusion"},
    };
    for (Arguments const& arguments : wrong) {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << testing::PrintToString(arguments);
        EXPECT_NE(outcome.err.find("error: "), std::string::npos);
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga"}));
}

TEST_F(ToolUsage, ShowsProgressAsAsked)
{
    auto const progress = [&](char const* style) {
        Outcome const outcome =
            run({"normal", "hill.tga", "-o", "x.tga", "--overwrite", "--progress", style});
        EXPECT_EQ(outcome.code, 0);
        return outcome.err;
    };
    EXPECT_EQ(progress("none"), "");
    std::string const lines = progress("lines");
    EXPECT_NE(lines.find("writing\n"), std::string::npos) << lines;
    EXPECT_EQ(lines.find('\r'), std::string::npos);
    EXPECT_EQ(progress("auto").find('\r'), std::string::npos); // no terminal here
    std::string const bar = progress("bar");
    EXPECT_NE(bar.find("] "), std::string::npos);
    EXPECT_EQ(bar.rfind("\r\033[K"), bar.size() - 4); // taken off in the end
}

TEST_F(ToolUsage, TellsItsVersionAndHelpInEveryWay)
{
    std::string const version = run({"--version"}).out;
    for (Arguments const& words :
         {Arguments{"-V"}, Arguments{"map", "--version"}, Arguments{"list", "add", "-V"}}) {
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out, version);
    }
    EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
    EXPECT_EQ(run({"help", "map"}).out, run({"map", "--help"}).out);
    EXPECT_EQ(run({"help", "list", "add"}).out, run({"list", "add", "--help"}).out);
    EXPECT_EQ(run({"map", "--help"}).out.find("Print this help message and exit") == std::string::npos,
              false);
    EXPECT_EQ(run({"normal", "--help"}).out.find("--detail"), std::string::npos);
}

TEST_F(ToolUsage, AnswersAMistypedWordWithTheNearest)
{
    write("hill.tga", hill(16));
    write("-dash.tga", hill(16));
    for (auto const& [words, sentence] : std::vector<std::pair<Arguments, std::string>>{
             {{"mpa", "hill.tga"},
              "umbrix: error: there is no command mpa; perhaps map is meant; see umbrix --help"},
             {{"list", "ad"},
              "umbrix list: error: there is no command ad; perhaps add is meant; see umbrix list --help"},
             {{"help", "lsit"},
              "umbrix help: error: there is no command lsit; perhaps list is meant; see umbrix --help"},
             {{"map", "hill.tga", "--releif=1"},
              "umbrix map: error: there is no option --releif; perhaps --relief is meant; see umbrix map "
              "--help"},
             {{"map", "--releif", "1"},
              "umbrix map: error: there is no option --releif; perhaps --relief is meant; see umbrix map "
              "--help"},
             {{"map", "hill.tga", "-q"}, "umbrix map: error: there is no option -q; see umbrix map --help"},
             {{"map", "-dash.tga"},
              "umbrix map: error: -dash.tga counts as an option; give the file as ./-dash.tga, or behind --; "
              "see "
              "umbrix map --help"},
             {{"map", "hill.tga", "b", "a"},
              "umbrix map: error: The following arguments were not expected: b a; see umbrix map --help"}}) {
        Outcome const outcome = run(words);
        EXPECT_EQ(outcome.code, 2) << sentence;
        EXPECT_EQ(outcome.err, sentence + "\n");
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(run({"map", "./-dash.tga"}).code, 0);
    EXPECT_EQ(run({"map", "-o", "b.tga", "--", "-dash.tga"}).code, 0);
}

} // namespace
} // namespace umbrixlib::test
