// SPDX-License-Identifier: MIT
#include "document/project_file.h"

#include "random_state.h"
#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

namespace umbrix_desktop {
namespace {

namespace fs = std::filesystem;
using toolkit::Failure;
using umbrixlib::test::TemporaryFolder;

std::string content_of(fs::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The subject and what is wrong with it.
std::string complaint_about_text(std::string const& text)
{
    try {
        project_in(text, "/p", "a.toml");
    } catch (Failure const& failure) {
        return failure.subject + ": " + failure.what();
    }
    return "none";
}

TEST(DesktopProject, ReadsWhatItWroteOfAThousandRandomStates)
{
    test::RandomState random(2);
    State state;
    for (int i = 0; i < 1000; ++i) {
        random.change(state);
        std::string const text = project_text({state, ""}, "/brick");
        Project const read = project_in(text, "/brick", "a.toml");
        ASSERT_EQ(read.state, state) << text;
        ASSERT_EQ(read.saved_as, "");
        ASSERT_EQ(project_text(read, "/brick"), text);
    }
}

TEST(DesktopProject, HoldsAllOfAState)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        State const state = test::RandomState(seed).state();
        EXPECT_EQ(project_in(project_text({state, "/q/a.toml"}), "", "a.toml").state, state);
        EXPECT_EQ(project_in(project_text({state, "/q/a.toml"}), "", "a.toml").saved_as, "/q/a.toml");
    }
}

TEST(DesktopProject, NamesWhatLiesBesideItRelatively)
{
    State state;
    state.source = "/p/textures/brick.png";
    state.lighting.albedo = "/q/colour.png";
    std::string const text = project_text({state, ""}, "/p");
    EXPECT_NE(text.find("source = \"textures/brick.png\"\n"), std::string::npos) << text;
    EXPECT_NE(text.find("albedo = \"/q/colour.png\"\n"), std::string::npos) << text;
    EXPECT_EQ(project_in(text, "/moved", "a.toml").state.source, "/moved/textures/brick.png");
}

TEST(DesktopProject, IsReplacedAsAWhole)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "a.toml";
    State state;
    state.source = (folder / "brick.png").string();
    save_project(state, file);
    state.settings.relief = 0.25f;
    save_project(state, file);
    EXPECT_EQ(read_project(file).state, state);
    EXPECT_NE(content_of(file).find("source = \"brick.png\""), std::string::npos);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(DesktopProject, StaysWhenItCannotBeReplaced)
{
    TemporaryFolder const folder;
    EXPECT_THROW(save_project({}, folder.path() / "none" / "a.toml"), Failure);
    fs::path const file = folder / "a.toml";
    save_project({}, file);
    std::string const before = content_of(file);
    State state;
    state.source = "/\xff.png";
    EXPECT_THROW(save_project(state, file), Failure);
    EXPECT_EQ(content_of(file), before);
}

TEST(DesktopProject, SaysWhereItIsWrong)
{
    EXPECT_EQ(complaint_about_text(""), "a.toml: version: it is no project file");
    EXPECT_EQ(complaint_about_text("version = 2\n"), "a.toml: version: it is of a newer version");
    EXPECT_EQ(complaint_about_text("version = 1\nsourse = \"\"\n"),
              "a.toml: sourse (line 2): there is no such key");
    EXPECT_EQ(complaint_about_text("version = 1\nsource = 3\n"),
              "a.toml: source (line 2): it is not a text in quotes");
    EXPECT_EQ(complaint_about_text("version = 1\n[settings]\nrelief = 11\n"),
              "a.toml: settings.relief (line 3): 11 is out of range");
    EXPECT_EQ(complaint_about_text("version = 1\n[settings]\nrelief = [1]\n"),
              "a.toml: settings.relief (line 3): '' is not a number");
    EXPECT_EQ(complaint_about_text("version = 1\n[view]\nleft = \"front\"\n"),
              "a.toml: view.left (line 3): it is no such word");
    EXPECT_EQ(complaint_about_text("version = 1\nview = 3\n"), "a.toml: view (line 2): it is no table");
    EXPECT_EQ(complaint_about_text("version = 1\n[layers]\nlayer = [3]\n"),
              "a.toml: layers.layer (line 3): it is not a list of tables");
    EXPECT_EQ(complaint_about_text("version = 1\n[[layers.layer]]\n[[layers.layer]]\nshown = 1\n"),
              "a.toml: layers.layer 2.shown (line 4): it is neither true nor false");
    EXPECT_EQ(complaint_about_text("version = 1\n[lighting]\nexposure = nan\n"),
              "a.toml: lighting.exposure (line 3): nan is out of range");
    EXPECT_NE(complaint_about_text("version = \n").find("a.toml (line 1): it is no project file"),
              std::string::npos);
    EXPECT_NE(complaint_about_text("version = " + std::string(100'000, '[')).find("levels deep"),
              std::string::npos);
}

TEST(DesktopProject, TakesWhatIsNotMentionedAsInANewDocument)
{
    EXPECT_EQ(project_in("version = 1\n", "/p", "a.toml").state, State{});
}

TEST(DesktopProject, RefusesWhatIsNoFileOrTooLarge)
{
    TemporaryFolder const folder;
    EXPECT_THROW(read_project(folder / "none.toml"), Failure);
    EXPECT_THROW(read_project(folder.path()), Failure);
    fs::path const large = folder / "large.toml";
    std::ofstream(large) << "version = 1\n";
    fs::resize_file(large, 17U << 20U);
    EXPECT_THROW(read_project(large), Failure);
}

} // namespace
} // namespace umbrix_desktop
