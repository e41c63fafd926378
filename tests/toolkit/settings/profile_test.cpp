// SPDX-License-Identifier: MIT
#include "toolkit/settings/profile.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <fstream>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using toolkit::Failure;
using toolkit::Fault;
using toolkit::NormalY;
using toolkit::place_of;
using toolkit::Profile;
using toolkit::profile_text;
using toolkit::ProfileMap;
using toolkit::read_profile;

class Profiles : public testing::Test {
protected:
    std::string file() const { return folder_ / "p.toml"; }

    Profile of(std::string const& text) const
    {
        std::ofstream(file(), std::ios::binary) << text;
        return read_profile(file());
    }

    /// The failure to read @p text, with the file left out.
    std::string sentence(std::string const& text) const
    {
        try {
            of(text);
        } catch (Failure const& failure) {
            EXPECT_EQ(failure.subject.find(file() + ": "), 0U) << failure.subject;
            std::string const rest = failure.remedy.empty() ? "" : "; " + failure.remedy;
            return failure.subject.substr(file().size() + 2) + ": " + failure.what() + rest;
        }
        return "nothing is wrong";
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Profiles, AreAsWithoutOneUnlessTheyMentionIt)
{
    EXPECT_EQ(of(""), Profile());
    EXPECT_EQ(Profile().normal_y, NormalY::kUp);
    EXPECT_EQ(Profile().file(ProfileMap::kNormals).suffix, "_Normal");
    EXPECT_FALSE(Profile().file(ProfileMap::kPacked).depth.has_value());
}

TEST_F(Profiles, TakeWhatTheyMention)
{
    Profile const profile = of("description = 'ours'\nnormal_y = 'down'\nformat = '.TIF'\n"
                               "[normal]\nsuffix = '_nrm'\ndepth = 16\n[height]\ndepth = 'float'\n"
                               "[packed]\nG = 'wetness'\nA = 'gloss'\n");
    EXPECT_EQ(profile.description, "ours");
    EXPECT_EQ(profile.normal_y, NormalY::kDown);
    EXPECT_EQ(profile.format, ".tif");
    EXPECT_EQ(profile.file(ProfileMap::kNormals).suffix, "_nrm");
    EXPECT_EQ(profile.file(ProfileMap::kNormals).depth, SampleType::kUint16);
    EXPECT_EQ(profile.file(ProfileMap::kHeights).depth, SampleType::kFloat);
    EXPECT_EQ(profile.channels, (std::array<std::string, 4>{"", "wetness", "", "smoothness"}));
}

TEST_F(Profiles, AreReadBackAsTheyAreWritten)
{
    for (std::string_view const name : toolkit::shipped_profiles()) {
        Profile const shipped = read_profile(std::string(name));
        EXPECT_EQ(of(profile_text(shipped)), shipped) << name;
        EXPECT_FALSE(shipped.description.empty()) << name;
    }
    Profile strange;
    strange.description = "\"quoted\" \\ back";
    strange.files[0].suffix = "_\"x\"";
    EXPECT_EQ(of(profile_text(strange)), strange);
}

TEST_F(Profiles, TellWhereAMapGoes)
{
    Profile const unity = read_profile("unity-hdrp");
    EXPECT_EQ(place_of(unity, "metallic")->channel, 0U);
    EXPECT_EQ(place_of(unity, "metalness")->channel, 0U);
    EXPECT_EQ(place_of(unity, "ao")->channel, 1U);
    EXPECT_EQ(place_of(unity, "smoothness")->channel, 3U);
    EXPECT_FALSE(place_of(unity, "smoothness")->invert);
    EXPECT_EQ(place_of(unity, "roughness")->channel, 3U);
    EXPECT_TRUE(place_of(unity, "roughness")->invert);
    EXPECT_TRUE(place_of(read_profile("unreal"), "gloss")->invert);
    EXPECT_FALSE(place_of(unity, "height").has_value());
    EXPECT_FALSE(place_of(unity, "").has_value());
    EXPECT_FALSE(place_of(read_profile("blender"), "occlusion").has_value());
    EXPECT_EQ(toolkit::neutral_value("ao"), 1.0);
    EXPECT_EQ(toolkit::neutral_value("metallic"), 0.0);
    EXPECT_EQ(toolkit::neutral_value("wetness"), 0.0);
}

TEST_F(Profiles, TellWhatIsWrongWithThem)
{
    for (auto const& [text, expected] : std::vector<std::pair<std::string, std::string>>{
             {"normal_y = 'left'",
              "normal_y (line 1): 'left' is neither up nor down; give \"up\" or \"down\""},
             {"\nnormals = 1", "normals (line 2): there is no such key; perhaps normal is meant"},
             {"fnord = 1", "fnord (line 1): there is no such key"},
             {"normal = 1", "normal (line 1): it is no table; begin it with [normal]"},
             {"[normal]\nsuffix = 'a/b'",
              "normal.suffix (line 2): it is no part of a name of a file; give what is "
              "put after the name: \"_N\""},
             {"[normal]\nR = 'occlusion'", "normal.R (line 2): there is no such key"},
             {"[normal]\ndepth = 12",
              "normal.depth (line 2): '12' is not known; give \"auto\", \"8\", \"16\", "
              "\"half\", \"float\""},
             {"[normal]\ndepth = 'half'",
              "normal: .png files have no samples of depth half; give another depth, "
              "or another format"},
             {"[packed]\nR = 'g'",
              "packed.R (line 2): 'g' is no name of a map; give letters and digits, other "
              "than r, g, b and a alone: \"roughness\""},
             {"[packed]\nR = 'a=b'",
              "packed.R (line 2): 'a=b' is no name of a map; give letters and digits, other "
              "than r, g, b and a alone: \"roughness\""},
             {"[packed]\nR = 'ao'\nB = 'occlusion'",
              "packed.B: occlusion has a place already, in R; leave one out"},
         }) {
        EXPECT_EQ(sentence(text), expected) << text;
    }
    for (char const* const format : {"png", ".r16", ".xyz", ""}) {
        EXPECT_EQ(sentence(std::string("format = '") + format + "'")
                      .rfind("format (line 1): maps cannot be written as '", 0),
                  0U)
            << format;
    }
}

TEST_F(Profiles, AreNotFoundUnderAnyName)
{
    try {
        read_profile("unral");
        FAIL() << "it was found";
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kUnknownProfile);
        EXPECT_EQ(failure.remedy.rfind("perhaps unreal is meant; the shipped ones are blender, ", 0), 0U)
            << failure.remedy;
    }
    EXPECT_THROW(read_profile("./gone.toml"), Failure);
}

} // namespace
} // namespace umbrixlib::test
