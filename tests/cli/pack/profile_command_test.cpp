// SPDX-License-Identifier: MIT
/// Profiles: `umbrix profile`, and --profile of the other commands, run as a user runs them.
#include "cli/tool.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

class ProfileCommand : public ToolTest {
protected:
    ProfileCommand()
    {
        write("hill_H.tga", hill(16));
        for (auto const& [name, grey] : std::vector<std::pair<std::string, std::uint8_t>>{
                 {"rock_ao.png", 200}, {"rock_rough.png", 60}, {"rock_metal.png", 10}}) {
            write(name, png_bytes(2, PngColour::kGrey, 8, {{grey, 255}, {0, grey}}));
        }
    }

    void make(Arguments const& arguments) const
    {
        Outcome const outcome = run(arguments);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }

    std::string first_line_about(std::string const& file) const
    {
        std::string const told = run({"info", file}).out;
        return told.substr(0, told.find('\n'));
    }

    /// The channels of the upper left texel of a TGA.
    std::vector<int> texel(std::string const& name) const
    {
        TgaPicture const picture = tga(name);
        std::vector<int> values;
        for (int channel = 0; channel < picture.channels; ++channel) {
            values.push_back(picture.at(0, picture.height - 1, channel));
        }
        return values;
    }

    void write_text(std::string const& name, std::string const& text) const
    {
        write(name, Bytes(text.begin(), text.end()));
    }
};

TEST_F(ProfileCommand, ListsAndShowsWhatIsShipped)
{
    std::set<std::string> in_examples;
    for (auto const& entry : std::filesystem::directory_iterator(UMBRIX_EXAMPLES "/profiles")) {
        in_examples.insert(entry.path().stem().string());
    }
    EXPECT_EQ(in_examples,
              (std::set<std::string>{"blender", "gltf", "godot", "unity-hdrp", "unity-urp", "unreal"}));
    std::set<std::string> listed;
    std::string const text = run({"profile", "list"}).out;
    auto const list = nlohmann::json::parse(run({"profile", "list", "--json"}).out);
    for (auto const& each : list.at("profiles")) {
        std::string const name = each.at("name");
        listed.insert(name);
        EXPECT_NE(text.find(name + " "), std::string::npos);
        auto shipped = nlohmann::json::parse(run({"profile", "show", name, "--json"}).out);
        std::string const path = fmt::format("{}/profiles/{}.toml", UMBRIX_EXAMPLES, name);
        auto const file = nlohmann::json::parse(run({"profile", "show", path, "--json"}).out);
        EXPECT_EQ(shipped.at("profile"), name);
        shipped["profile"] = path;
        EXPECT_EQ(shipped, file);
    }
    EXPECT_EQ(listed, in_examples);
    EXPECT_EQ(run({"profile", "show", "unreal"}).out,
              "unreal: Unreal Engine: green down; occlusion, roughness and metalness in one\n"
              "  green      down\n"
              "  map        NAME_Umbrix.png, the usual depth\n"
              "  normal     NAME_N.png, depth 8\n"
              "  height     NAME_H.png, depth 16\n"
              "  bent       NAME_Bent.png, the usual depth\n"
              "  occlusion  NAME_AO.png, the usual depth\n"
              "  packed     NAME_ORM.png, depth 8\n"
              "  packed R   occlusion, without it 1\n"
              "  packed G   roughness, without it 1\n"
              "  packed B   metallic, without it 0\n");
}

TEST_F(ProfileCommand, NamesAndTurnsNormalMaps)
{
    make({"normal", "hill_H.tga", "--profile", "unreal"});
    make({"normal", "hill_H.tga", "--normal-y", "down", "-o", "down.png"});
    EXPECT_EQ(read("hill_N.png"), read("down.png"));
    make({"normal", "hill_H.tga", "--profile", "unity-hdrp"});
    make({"normal", "hill_H.tga", "-o", "up.png"});
    EXPECT_EQ(read("hill_Normal.png"), read("up.png"));
    make({"normal", "hill_H.tga", "--profile", "blender"});
    EXPECT_EQ(first_line_about("hill_normal.png"), "hill_normal.png: 16 x 16, PNG, 16-bit colour");
}

TEST_F(ProfileCommand, ComesBehindOptionsAndBeforePresets)
{
    write_text("p.toml", "normal_y = \"up\"\nsave_depth = \"16\"\nrelief = 0.2\n");
    make({"normal", "hill_H.tga", "--profile", "unreal", "--preset", "p.toml"});
    make({"normal", "hill_H.tga", "--normal-y", "down", "--relief", "0.2", "-o", "down.png"});
    EXPECT_EQ(read("hill_N.png"), read("down.png"));
    make({"normal", "hill_H.tga", "--profile", "unreal", "--normal-y", "up", "--depth", "16", "-o",
          "own.tif"});
    make({"normal", "hill_H.tga", "--depth", "16", "-o", "up.tif"});
    EXPECT_EQ(read("own.tif"), read("up.tif"));
    make({"normal", "hill_H.tga", "--profile", "blender", "-o", "own.tga"});
    EXPECT_EQ(first_line_about("own.tga"), "own.tga: 16 x 16, TGA, 8-bit colour") << "TGA has no 16 bits";
}

TEST_F(ProfileCommand, NamesTheOtherMaps)
{
    make({"map", "hill_H.tga", "--profile", "unreal", "--rays", "8"});
    make({"bent", "hill_H.tga", "--profile", "unreal"});
    make({"normal", "hill_H.tga", "--profile", "unreal"});
    make({"height", "hill_N.png", "--profile", "godot"});
    for (char const* const name : {"hill_Umbrix.png", "hill_Bent.png", "hill_height.png"}) {
        EXPECT_TRUE(files().contains(name)) << name;
    }
    EXPECT_EQ(first_line_about("hill_height.png"), "hill_height.png: 16 x 16, PNG, 16-bit grey");
    make({"bent", "hill_H.tga", "--normal-y", "down", "-o", "down.png"});
    EXPECT_EQ(read("hill_Bent.png"), read("down.png"));
}

TEST_F(ProfileCommand, TakesNormalMapsThatTellNothingForTheEngines)
{
    make({"convert", "hill_H.tga", "-o", "up.png"});
    make({"normal", "up.png", "-o", "told.png"});
    make({"convert", "told.png", "-o", "silent.bmp"}); // which holds nothing but texels
    Outcome const outcome = run({"height", "silent.bmp", "--profile", "unreal"});
    EXPECT_NE(outcome.out.find("green down"), std::string::npos) << outcome.out << outcome.err;
    EXPECT_NE(run({"height", "told.png", "--profile", "unreal"}).out.find("green up"), std::string::npos);
}

TEST_F(ProfileCommand, SaysWhichMapGoesToWhichChannel)
{
    Outcome const outcome = run({"pack", "metallic=rock_metal.png", "occlusion=rock_ao.png",
                                 "roughness=rock_rough.png", "--profile", "unreal"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out.rfind("wrote rock_ORM.png: 2 x 2, 8-bit colour, R from rock_ao.png, G from "
                                "rock_rough.png, B from rock_metal.png, ",
                                0),
              0U)
        << outcome.out;
    struct Line {
        char const* profile;
        Arguments words;
        std::vector<int> texel;
    };
    Arguments const all{"ao=rock_ao.png", "roughness=rock_rough.png", "metalness=rock_metal.png"};
    for (Line const& line : {
             Line{"unreal", all, {200, 60, 10}},
             {"godot", all, {200, 60, 10}},
             {"gltf", all, {200, 60, 10}},
             {"unity-hdrp", all, {10, 200, 255, 195}},
             {"unity-urp", all, {10, 200, 0, 195}},
             {"unity-hdrp", {"smoothness=rock_rough.png", "detail=0.2"}, {0, 255, 51, 60}},
             {"unity-hdrp", {"roughness:invert=rock_rough.png"}, {0, 255, 255, 60}},
             {"unity-hdrp", {"ao=rock_ao.png", "roughness=0.2"}, {0, 200, 255, 204}},
             {"unreal", {"gloss=rock_rough.png"}, {255, 195, 0}},
             {"unreal", {"ao=rock_ao.png", "G=rock_metal.png", "A=0.4"}, {200, 10, 0, 102}},
             {"blender", {"R=rock_ao.png"}, {200, 0, 0}},
         }) {
        Arguments words{"pack", "--profile", line.profile, "-o", "a.tga", "--overwrite"};
        words.insert(words.end(), line.words.begin(), line.words.end());
        make(words);
        EXPECT_EQ(texel("a.tga"), line.texel) << line.profile << ' ' << line.words[0];
    }
}

TEST_F(ProfileCommand, MakesMapsOfFolders)
{
    make({"batch", ".", "--normal", "--include", "*_H.tga", "--profile", "unreal", "--keep-tree", "out"});
    make({"normal", "hill_H.tga", "--profile", "unreal"});
    EXPECT_EQ(read("out/hill_N.png"), read("hill_N.png"));
    make({"batch", ".", "--ao", "--include", "*_H.tga", "--profile", "blender", "--keep-tree", "out"});
    EXPECT_EQ(first_line_about("out/hill_ao.png"), "out/hill_ao.png: 16 x 16, PNG, 16-bit grey");
    make({"batch", ".", "--normal", "--include", "*_H.tga", "--profile", "unreal", "--suffix", "_x",
          "--depth", "16", "--normal-y", "up", "--keep-tree", "out"});
    make({"normal", "hill_H.tga", "--depth", "16", "-o", "up.png"});
    EXPECT_EQ(read("out/hill_x.png"), read("up.png"));
    Outcome const outcome = run({"batch", ".", "--curvature", "--profile", "unreal"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err, "umbrix batch: error: --profile: profiles say nothing of curvature maps; leave it "
                           "out, or leave --curvature out\n");
}

TEST_F(ProfileCommand, TakesProfilesOfTheUser)
{
    make({"profile", "save", "ours.toml", "--profile", "unreal"});
    Bytes const bytes = read("ours.toml");
    std::string text(bytes.begin(), bytes.end());
    for (auto const& [from, to] :
         std::vector<std::pair<std::string, std::string>>{{"normal_y = \"down\"", "normal_y = \"up\""},
                                                          {"suffix = \"_N\"", "suffix = \"_nrm\""},
                                                          {"format = \".png\"", "format = \".tga\""},
                                                          {"depth = \"16\"", "depth = \"8\""},
                                                          {"B = \"metallic\"", "B = \"wetness\""}}) {
        ASSERT_NE(text.find(from), std::string::npos) << text;
        text.replace(text.find(from), from.size(), to);
    }
    write_text("ours.toml", text);
    make({"normal", "hill_H.tga", "--profile", "ours.toml"});
    make({"normal", "hill_H.tga", "-o", "up.tga"});
    EXPECT_EQ(read("hill_nrm.tga"), read("up.tga"));
    make({"pack", "wetness=rock_rough.png", "--profile", "./ours.toml"});
    EXPECT_EQ(texel("rock_ORM.tga"), (std::vector<int>{255, 255, 60}));
}

TEST_F(ProfileCommand, RefusesWhatMakesNoSense)
{
    struct Line {
        Arguments words;
        int code;
        char const* complaint;
    };
    write_text("bad.toml", "[normal]\ndepth = 12\n");
    std::set<std::string> const before = files();
    for (Line const& line : {
             Line{{"normal", "hill_H.tga", "--profile", "unrael"},
                  2,
                  "umbrix normal: error: --profile: 'unrael' is not a shipped profile; perhaps unreal is "
                  "meant; the "
                  "shipped ones are blender, gltf, godot, unity-hdrp, unity-urp, unreal, and the name of a "
                  "file "
                  "ends in .toml\n"},
             {{"normal", "hill_H.tga", "--profile", "bad.toml"},
              1,
              "umbrix normal: error: bad.toml: normal.depth (line 2): '12' is not known; give \"auto\", "
              "\"8\""},
             {{"pack", "height=hill_H.tga", "--profile", "unreal", "-o", "a.png"},
              2,
              "umbrix pack: error: height=hill_H.tga: unreal has no place for 'height'; give R, G, B, A, or "
              "occlusion, "
              "roughness, metallic\n"},
             {{"pack", "occlusion=rock_ao.png", "--profile", "blender", "-o", "a.png"},
              2,
              "umbrix pack: error: occlusion=rock_ao.png: blender has no place for 'occlusion'; give R, G, B "
              "or A\n"},
             {{"pack", "occlusion=rock_ao.png", "-o", "a.png"},
              2,
              "umbrix pack: error: occlusion=rock_ao.png: there is no channel 'occlusion'; give R, G, B or "
              "A, or name a "
              "--profile that knows it\n"},
             {{"pack", "ao=rock_ao.png", "R=rock_metal.png", "--profile", "unreal"},
              2,
              "umbrix pack: error: R=rock_metal.png: ao=rock_ao.png gives the same channel; leave one out\n"},
             {{"pack", "ao=rock_ao.png", "--profile", "unity-hdrp", "-o", "a.jpg"},
              2,
              "umbrix pack: error: a.jpg: .jpg files hold no alpha; give a name ending in .png, or leave "
              "--profile out"},
             {{"pack", "R=rock_ao.png"}, 2, "umbrix pack: error: --output: no file to write is named"},
             {{"profile", "save", "x.txt"},
              2,
              "umbrix profile save: error: x.txt: its name does not end in .toml"},
             {{"profile", "save", "bad.toml"}, 1, "umbrix profile save: error: bad.toml: it exists"},
             {{"profile"}, 2, "umbrix profile: error: "},
         }) {
        Outcome const outcome = run(line.words);
        EXPECT_EQ(outcome.code, line.code) << line.complaint << outcome.err;
        EXPECT_NE(outcome.err.find(line.complaint), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(files(), before);
}

} // namespace
} // namespace umbrixlib::test
