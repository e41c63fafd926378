// SPDX-License-Identifier: MIT
/// Presets: `umbrix preset`, and --preset of the other commands, run as a user runs them.
#include "tool.h"

#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <span>

namespace umbrixlib::test {
namespace {

struct OptionSample {
    char const* key;
    char const* option;
    char const* value;  ///< On the command line; null for a flag.
    char const* stored; ///< In a preset. Not the default.
};

/// One for each key of a preset. The last ones are of other commands than `map`.
constexpr OptionSample kSamples[] = {
    {"kind", "--normal-map", nullptr, "\"normal\""},
    {"normal_y", "--normal-y", "down", "\"down\""},
    {"light", "--no-light", nullptr, "false"},
    {"height_from", "--height-from", "luma", "\"luma\""},
    {"replace_invalid", "--replace-invalid", "0.25", "\"0.25\""},
    {"height_range", "--height-range", "-1,3", "\"-1,3\""},
    {"invert", "--invert", nullptr, "true"},
    {"generate_normal", "--generate-normal", nullptr, "true"},
    {"mode", "--mode", "squared", "\"squared\""},
    {"height_in_alpha", "--height-in-alpha", nullptr, "true"},
    {"relief", "--relief", "0.123456", "0.123456"},
    {"h_scale", "--h-scale", "0.07", "0.07"},
    {"n_scale", "--n-scale", "-2.5", "-2.5"},
    {"gaussian", "--gaussian", "0.7", "0.7"},
    {"detail", "--detail", "2", "2"},
    {"occlusion", "--no-occlusion", nullptr, "false"},
    {"rays", "--rays", "17", "17"},
    {"radius", "--radius", "4", "4"},
    {"alpha_limit", "--alpha-limit", "33.3", "33.3"},
    {"theta_limit", "--theta-limit", "1e-5", "1e-05"},
    {"tile", "--no-tile", nullptr, "false"},
    {"h_tile", "--no-h-tile", nullptr, "false"},
    {"v_tile", "--no-v-tile", nullptr, "false"},
    {"b_radius", "--b-radius", "1.5", "1.5"},
    {"h_contrast", "--h-contrast", "-0.1", "-0.1"},
    {"h_min", "--h-min", "3", "3"},
    {"h_max", "--h-max", "250", "250"},
    {"h_brightness", "--h-brightness", "0.2", "0.2"},
    {"h_smooth", "--h-smooth", "0.6", "0.6"},
    {"contrast", "--contrast", "0.3", "0.3"},
    {"min", "--min", "4", "4"},
    {"max", "--max", "251", "251"},
    {"brightness", "--brightness", "-0.25", "-0.25"},
    {"smooth", "--smooth", "0.8", "0.8"},
    {"directions", "--directions", "16", "16"},
    {"curvature_part", "--curvature-part", "cavity", "\"cavity\""},
    {"curvature_radius", "--curvature-radius", "0.02", "0.02"},
    {"save_depth", "--depth", "16", "\"16\""},
};

constexpr std::size_t kNotOfMap = 4; // TGA holds no 16 bits

class PresetCommand : public ToolTest {
protected:
    PresetCommand() { write("hill.tga", hill(32)); }

    void write_preset(std::string const& text, std::string const& name = "p.toml") const
    {
        write(name, Bytes(text.begin(), text.end()));
    }

    /// What `umbrix preset show` tells about a preset.
    nlohmann::json shown(std::string const& preset) const
    {
        Outcome const outcome = run({"preset", "show", preset, "--json"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return nlohmann::json::parse(outcome.out, nullptr, false);
    }

    /// The map that `umbrix map` makes of the hill with these arguments.
    Bytes map_of(Arguments const& arguments) const
    {
        Arguments all{"map", "hill.tga", "-o", "map.tga", "--overwrite"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        Outcome const outcome = run(all);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return read("map.tga");
    }
};

TEST_F(PresetCommand, ShipsPresetsThatEachGiveAMap)
{
    std::set<std::string> in_examples;
    for (auto const& entry : std::filesystem::directory_iterator(UMBRIX_EXAMPLES "/presets")) {
        in_examples.insert(entry.path().stem().string());
    }
    EXPECT_EQ(in_examples, (std::set<std::string>{"brick", "cloth", "stone", "terrain"}));

    std::string const text = run({"preset", "list"}).out;
    auto const list = nlohmann::json::parse(run({"preset", "list", "--json"}).out);
    Bytes const plain = map_of({});
    std::set<std::string> listed;
    for (auto const& each : list.at("presets")) {
        std::string const name = each.at("name");
        listed.insert(name);
        EXPECT_NE(text.find(name), std::string::npos);
        EXPECT_GT(each.at("description").get<std::string>().size(), 10U) << name;
        EXPECT_FALSE(shown(name).at("different_from_default").empty()) << name;
        EXPECT_NE(map_of({"--preset", name}), plain) << name;
        std::string const file = std::string(UMBRIX_EXAMPLES "/presets/") + name + ".toml";
        EXPECT_EQ(shown(file).at("options"), shown(name).at("options")) << name;
    }
    EXPECT_EQ(listed, in_examples);
}

TEST_F(PresetCommand, PutsAnOptionBeforeAPresetBeforeTheDefault)
{
    write_preset("relief = 0.2\nrays = 16\n");
    Bytes const of_preset = map_of({"--preset", "p.toml"});
    EXPECT_EQ(of_preset, map_of({"--relief", "0.2", "--rays", "16"}));
    Bytes const of_both = map_of({"--relief", "0.1", "--rays", "16"});
    EXPECT_NE(of_both, of_preset);
    EXPECT_EQ(map_of({"--preset", "p.toml", "--relief", "0.1"}), of_both);
    EXPECT_EQ(map_of({"--relief", "0.1", "--preset", "p.toml"}), of_both);
    // The default itself, given as an option, comes before the preset, too.
    EXPECT_EQ(map_of({"--relief", "0.05", "--preset", "p.toml"}), map_of({"--rays", "16"}));
}

TEST_F(PresetCommand, GivesWayToFlagsAndToAuto)
{
    write_preset("occlusion = false\nn_scale = 3\nheight_in_alpha = true\n");
    EXPECT_EQ(map_of({"--occlusion", "--n-scale", "auto", "--no-height-in-alpha", "--preset", "p.toml"}),
              map_of({}));
    EXPECT_EQ(map_of({"--preset", "p.toml"}),
              map_of({"--no-occlusion", "--n-scale", "3", "--height-in-alpha"}));
}

TEST_F(PresetCommand, SavesAndShowsEveryOption)
{
    nlohmann::json const defaults = shown(UMBRIX_EXAMPLES "/presets/stone.toml").at("options");
    ASSERT_EQ(defaults.size(), std::size(kSamples)); // no key without a sample
    for (OptionSample const& sample : kSamples) {
        Arguments save{"preset", "save", "one.toml", "--overwrite", sample.option};
        if (sample.value != nullptr) {
            save.emplace_back(sample.value);
        }
        Outcome const saved = run(save);
        ASSERT_EQ(saved.code, 0) << sample.key << saved.err;
        EXPECT_NE(saved.out.find(fmt::format("1 of {} options differ", std::size(kSamples))),
                  std::string::npos)
            << saved.out;
        nlohmann::json const report = shown("one.toml");
        EXPECT_EQ(report.at("different_from_default"), nlohmann::json::array({sample.key}));
        EXPECT_EQ(report.at("options").at(sample.key), nlohmann::json::parse(sample.stored));

        write_preset(std::string(sample.key) + " = " + sample.stored + "\n");
        EXPECT_EQ(shown("p.toml").at("options"), report.at("options")) << sample.key;
        ASSERT_EQ(run({"preset", "save", "two.toml", "--overwrite", "--preset", "p.toml"}).code, 0);
        EXPECT_EQ(read("two.toml"), read("one.toml")) << sample.key;
    }
}

TEST_F(PresetCommand, MakesWithEveryKeyTheMapOfTheSameOptions)
{
    // The hill is a height map, and without light and occlusion nothing would be left of its map.
    std::string text = "description = 'every key'\nkind = 'auto'\nnormal_y = 'down'\nlight = true\n";
    Arguments options;
    for (OptionSample const& sample : std::span(kSamples).subspan(3, std::size(kSamples) - 3 - kNotOfMap)) {
        text += std::string(sample.key) + " = " + sample.stored + "\n";
        options.emplace_back(sample.option);
        if (sample.value != nullptr) {
            options.emplace_back(sample.value);
        }
    }
    write_preset(text);
    EXPECT_EQ(shown("p.toml").at("description"), "every key");
    Bytes const with_preset = map_of({"--preset", "p.toml"});
    EXPECT_EQ(with_preset, map_of(options));
    EXPECT_NE(with_preset, map_of({}));
}

TEST_F(PresetCommand, ServesTheOtherCommandsToo)
{
    write_preset("relief = 0.2\nnormal_y = 'down'\nmode = 'squared'\n");
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "a.tga", "--preset", "p.toml"}).code, 0);
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "b.tga", "--relief", "0.2", "--normal-y", "down"}).code, 0);
    EXPECT_EQ(read("a.tga"), read("b.tga"));
    ASSERT_EQ(run({"normal", "hill.tga", "-o", "c.tga", "--preset", "p.toml", "--normal-y", "up"}).code, 0);
    EXPECT_NE(read("c.tga"), read("b.tga"));

    ASSERT_EQ(run({"relight", "hill.tga", "-o", "d.tga", "--preset", "p.toml"}).code, 0);
    ASSERT_EQ(run({"relight", "hill.tga", "-o", "e.tga", "--mode", "squared"}).code, 0);
    ASSERT_EQ(run({"relight", "hill.tga", "-o", "f.tga"}).code, 0);
    EXPECT_EQ(read("d.tga"), read("e.tga"));
    EXPECT_NE(read("d.tga"), read("f.tga"));

    std::string const stack = "[[layer]]\nfile = 'hill.tga'\n";
    write("s.toml", Bytes(stack.begin(), stack.end()));
    ASSERT_EQ(run({"stack", "s.toml", "-o", "g.tga", "--preset", "p.toml"}).code, 0);
    ASSERT_EQ(run({"stack", "s.toml", "-o", "h.tga", "--relief", "0.2"}).code, 0);
    EXPECT_EQ(read("g.tga"), read("h.tga"));
}

TEST_F(PresetCommand, TellsTheDepthThatIsSaved)
{
    auto const depth_of = [&](std::string const& name) {
        return nlohmann::json::parse(run({"info", name, "--json"}).out).at("bits_per_channel").get<int>();
    };
    std::string const stack = "[[layer]]\nfile = 'hill.tga'\n";
    write("s.toml", Bytes(stack.begin(), stack.end()));
    for (char const* value : {"'16'", "16"}) {
        write_preset(std::string("save_depth = ") + value + "\n");
        for (Arguments const& command :
             std::vector<Arguments>{{"map", "hill.tga"}, {"normal", "hill.tga"}, {"stack", "s.toml"}}) {
            Arguments words = command;
            words.insert(words.end(), {"-o", "a.png", "--overwrite", "--preset", "p.toml"});
            ASSERT_EQ(run(words).code, 0) << command[0];
            EXPECT_EQ(depth_of("a.png"), 16) << command[0];
            words.insert(words.end(), {"--depth", "8"});
            ASSERT_EQ(run(words).code, 0) << command[0];
            EXPECT_EQ(depth_of("a.png"), 8) << command[0];
        }
    }
    std::filesystem::create_directory(folder() / "in");
    std::filesystem::rename(folder() / "a.png", folder() / "in/a.png");
    ASSERT_EQ(run({"batch", "in", "--normal", "--preset", "p.toml"}).code, 0);
    EXPECT_EQ(depth_of("in/a_Normal.png"), 16);

    write_preset("save_depth = '12'\n");
    Outcome const wrong = run({"map", "hill.tga", "--preset", "p.toml"});
    EXPECT_EQ(wrong.code, 1);
    EXPECT_NE(wrong.err.find("p.toml: save_depth (line 1): '12' is not known; give \"auto\", \"8\", \"16\", "
                             "\"half\", \"float\"\n"),
              std::string::npos)
        << wrong.err;
}

TEST_F(PresetCommand, TellsWhatTheInputIs)
{
    write_preset("kind = 'normal'\nnormal_y = 'down'\n");
    std::string const of_preset = run({"map", "hill.tga", "-o", "a.tga", "--preset", "p.toml"}).out;
    EXPECT_NE(of_preset.find("from a normal map, green down"), std::string::npos) << of_preset;
    std::string const of_flag =
        run({"map", "hill.tga", "-o", "b.tga", "--preset", "p.toml", "--height-map"}).out;
    EXPECT_NE(of_flag.find("from a height map, relief"), std::string::npos) << of_flag;
}

TEST_F(PresetCommand, RefusesWithTheFileTheLineAndTheKey)
{
    struct Fault {
        char const* text;
        char const* message;
    };
    for (Fault const& fault : {
             Fault{"rays = 16\nreleif = 1\n",
                   "p.toml: releif (line 2): there is no such key; perhaps relief is"},
             Fault{"colour = 'red'\n", "p.toml: colour (line 1): there is no such key; `umbrix preset save`"},
             Fault{"rays = 1.5\n", "p.toml: rays (line 1): 1.5 is not a whole number; give 1 to 10000"},
             Fault{"rays = \n", "p.toml: line 1, column "},
         }) {
        write_preset(fault.text);
        for (Arguments const& arguments :
             {Arguments{"map", "hill.tga", "--preset", "p.toml"}, Arguments{"preset", "show", "p.toml"}}) {
            Outcome const outcome = run(arguments);
            EXPECT_EQ(outcome.code, 1) << fault.text;
            EXPECT_NE(outcome.err.find(std::string(": error: ") + fault.message), std::string::npos)
                << fault.text << outcome.err;
            EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
        }
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "p.toml"}));
}

TEST_F(PresetCommand, TellsShippedPresetsFromFiles)
{
    write_preset("rays = 16\n", "stone.toml");
    write_preset("rays = 16\n", "own");
    EXPECT_EQ(shown("stone.toml").at("options").at("rays"), 16);
    EXPECT_EQ(shown("./own").at("options").at("rays"), 16);
    EXPECT_NE(shown("stone").at("options").at("rays"), 16);

    Outcome const unknown = run({"preset", "show", "ston"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_NE(unknown.err.find("--preset: 'ston' is not a shipped preset; perhaps stone is meant"),
              std::string::npos)
        << unknown.err;
    EXPECT_EQ(run({"preset", "show", "own"}).code, 2);
    Outcome const missing = run({"map", "hill.tga", "--preset", "nowhere.toml"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(complains_about(missing, "umbrix map", "nowhere.toml"));
    Outcome const a_folder = run({"map", "hill.tga", "--preset", "./"});
    EXPECT_EQ(a_folder.code, 1);
    EXPECT_TRUE(complains_about(a_folder, "umbrix map", "./"));
}

TEST_F(PresetCommand, KeepsAFileUnlessToldOtherwise)
{
    write_preset("rays = 16\n");
    Bytes const before = read("p.toml");
    Outcome const kept = run({"preset", "save", "p.toml", "--rays", "17"});
    EXPECT_EQ(kept.code, 1);
    EXPECT_TRUE(complains_about(kept, "umbrix preset save", "p.toml"));
    EXPECT_EQ(read("p.toml"), before);
    // A preset may be its own base.
    EXPECT_EQ(run({"preset", "save", "p.toml", "--preset", "p.toml", "--min", "3", "--overwrite"}).code, 0);
    EXPECT_EQ(shown("p.toml").at("different_from_default"), (nlohmann::json{"rays", "min"}));
    EXPECT_EQ(run({"preset", "save", "p.txt"}).code, 2);
    EXPECT_EQ(run({"preset", "save", "nowhere/p.toml"}).code, 1);
    EXPECT_EQ(run({"preset", "save", "q.toml", "--rays", "0"}).code, 2);
    EXPECT_EQ(run({"preset", "save", "q.toml", "--min", "9", "--max", "8"}).code, 2);
    EXPECT_EQ(run({"preset", "save", "q.toml", "--description", "two\nlines"}).code, 2);
    EXPECT_EQ(run({"preset"}).code, 2);
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "p.toml"}));
}

TEST_F(PresetCommand, KeepsADescriptionWithOddLetters)
{
    std::string const description = "wet \"slate\" \\ \xC3\xA4\xE2\x82\xAC";
    ASSERT_EQ(run({"preset", "save", "p.toml", "--description", description}).code, 0);
    EXPECT_EQ(shown("p.toml").at("description"), description);
}

TEST_F(PresetCommand, KeepsTheSignOfZero)
{
    ASSERT_EQ(run({"preset", "save", "p.toml", "--n-scale=-0"}).code, 0);
    ASSERT_EQ(run({"preset", "save", "again.toml", "--preset", "p.toml"}).code, 0);
    EXPECT_EQ(read("again.toml"), read("p.toml"));
    EXPECT_TRUE(std::signbit(shown("again.toml").at("options").at("n_scale").get<double>()));
}

TEST_F(PresetCommand, ShowsATableWithWhatDiffers)
{
    write_preset("description = 'few rays'\nrays = 16\n");
    std::string const table = run({"preset", "show", "p.toml"}).out;
    EXPECT_EQ(table.rfind("p.toml: few rays\n", 0), 0U) << table;
    EXPECT_NE(table.find("* rays              16           default 128\n"), std::string::npos) << table;
    EXPECT_NE(table.find("  relief            0.05\n"), std::string::npos) << table;
    EXPECT_NE(table.find(fmt::format("* differs from the default: 1 of {}\n", std::size(kSamples))),
              std::string::npos)
        << table;
}

} // namespace
} // namespace umbrixlib::test
