// SPDX-License-Identifier: MIT
// The folder batch of normal maps on real pictures.
#include "files/folder_to_normal.h"

#include "folder_pictures.h"
#include "normals/height_to_normal.h"

#include <gtest/gtest.h>
#include <set>

namespace {

namespace fs = std::filesystem;
using umbrixlib::test::Bytes;

class FolderToNormalFiles : public umbrixlib::test::FolderPictures {
protected:
    void add_picture(char const* name, unsigned seed) const { FolderPictures::add_picture(name, seed, 3); }

    bool run(char const* pattern, LinkedList<n_layer> const& layers = {})
    {
        return FolderToNormal(root_.path().string(), pattern, 3.0f, 1.0f, false, 1, 0.0f, false, layers,
                              false, true, &current_, &status_, &progress_);
    }

    /// What one call for one file makes of @p source.
    Bytes single(char const* source)
    {
        fs::path const output = other_ / "single.tga";
        HeightToNormal((root_ / source).c_str(), output.c_str(), 3.0f, 1.0f, false, 1, 0.0f, false, false,
                       &status_, &progress_);
        return pixels(output);
    }
};

TEST_F(FolderToNormalFiles, ATreeOfThreeLevelsHasTheFilesOfSingleCalls)
{
    add_picture("rock_H.tga", 1);
    add_picture("Old Walls/wall one.TGA", 2);
    add_picture("Old Walls/\xc3\x84ste/bark_Height.tga", 3);
    ASSERT_TRUE(run("*.tga"));
    EXPECT_EQ(names(),
              (std::set<std::string>{"rock_H.tga", "rock_Normal.tga", "Old Walls/wall one.TGA",
                                     "Old Walls/wall one_Normal.TGA", "Old Walls/\xc3\x84ste/bark_Height.tga",
                                     "Old Walls/\xc3\x84ste/bark_Normal.tga"}))
        << "results made on the way are no inputs of the same walk";
    EXPECT_EQ(pixels(root_ / "rock_Normal.tga"), single("rock_H.tga"));
    EXPECT_EQ(pixels(root_ / "Old Walls/wall one_Normal.TGA"), single("Old Walls/wall one.TGA"));
    EXPECT_EQ(pixels(root_ / "Old Walls/\xc3\x84ste/bark_Normal.tga"),
              single("Old Walls/\xc3\x84ste/bark_Height.tga"));
    EXPECT_FALSE(single("rock_H.tga").empty());
}

TEST_F(FolderToNormalFiles, WithLayersNothingIsWritten)
{
    add_picture("rock_H.tga", 1);
    add_picture("sub/wall.tga", 2);
    auto const before = names();
    LinkedList<n_layer> layers;
    layers.Add({});
    EXPECT_TRUE(run("*.tga", layers));
    EXPECT_EQ(names(), before);
}

TEST_F(FolderToNormalFiles, ATreeWithLinksThatLeadBackUpEnds)
{
    add_picture("a.tga", 1);
    fs::create_directory_symlink(".", root_ / "again");
    fs::create_directory_symlink(root_.path(), root_ / "once more");
    ASSERT_TRUE(run("*.tga"));
    EXPECT_EQ(names(), (std::set<std::string>{"a.tga", "a_Normal.tga"}));
}

} // namespace
