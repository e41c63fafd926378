// SPDX-License-Identifier: MIT
// The folder batch of Umbrix maps on real pictures.
#include "files/umbrix_folder.h"

#include "files/umbrix_file.h"
#include "folder_pictures.h"
#include "umbrix_test_options.h"

#include <gtest/gtest.h>
#include <omp.h>
#include <set>

namespace {

namespace fs = std::filesystem;
using umbrixlib::test::Bytes;

class UmbrixFolderFiles : public umbrixlib::test::FolderPictures {
protected:
    void SetUp() override
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        options_.recurse = true;
        options_.generate_normal = true;
        options_.height_map = true;
    }

    void add_picture(char const* name, unsigned seed) const { FolderPictures::add_picture(name, seed, 4); }

    bool run(char const* search)
    {
        return UmbrixFolder(root_.path().string(), search, options_, &layers_, &current_, &status_,
                            &progress_);
    }

    /// What one call for one file makes of @p source.
    Bytes single(char const* source)
    {
        fs::path const output = other_ / "single.tga";
        UmbrixFile((root_ / source).string(), output.string(), options_, &layers_, nullptr, &status_,
                   &progress_);
        return pixels(output);
    }

    umbrix_options options_ = umbrixlib::test::neutral_options();
    LinkedList<n_layer> layers_;
};

TEST_F(UmbrixFolderFiles, ATreeOfThreeLevelsHasTheFilesOfSingleCalls)
{
    add_picture("rock_H.tga", 1);
    add_picture("Old Walls_N.d/wall one.TGA", 2);
    add_picture("Old Walls_N.d/\xc3\x84ste/bark_Height.tga", 3);
    ASSERT_TRUE(run("*.tga"));
    EXPECT_EQ(names(), (std::set<std::string>{"rock_H.tga", "rock_Umbrix.tga", "Old Walls_N.d/wall one.TGA",
                                              "Old Walls_N.d/wall one_Umbrix.TGA",
                                              "Old Walls_N.d/\xc3\x84ste/bark_Height.tga",
                                              "Old Walls_N.d/\xc3\x84ste/bark_Umbrix.tga"}))
        << "results made on the way are no inputs of the same walk";
    EXPECT_EQ(pixels(root_ / "rock_Umbrix.tga"), single("rock_H.tga"));
    EXPECT_EQ(pixels(root_ / "Old Walls_N.d/wall one_Umbrix.TGA"), single("Old Walls_N.d/wall one.TGA"));
    EXPECT_EQ(pixels(root_ / "Old Walls_N.d/\xc3\x84ste/bark_Umbrix.tga"),
              single("Old Walls_N.d/\xc3\x84ste/bark_Height.tga"));
    EXPECT_FALSE(single("rock_H.tga").empty());
}

TEST_F(UmbrixFolderFiles, EachFilesLayerIsThatFile)
{
    add_picture("a.tga", 1);
    add_picture("sub/b.tga", 2);
    n_layer record;
    record.n_scale = 1.0f;
    record.normal_scale = 1.0f;
    record.opacity = 100.0f;
    layers_.Add(record);
    ASSERT_TRUE(run("*.tga"));
    for (char const* const name : {"a", "sub/b"}) {
        layers_.GetRef(0)->filename = (root_ / (std::string(name) + ".tga").c_str()).string();
        EXPECT_EQ(pixels(root_ / (std::string(name) + "_Umbrix.tga").c_str()),
                  single((std::string(name) + ".tga").c_str()));
    }
}

TEST_F(UmbrixFolderFiles, ASecondRunTakesTheResultsOfTheFirstForInputs)
{
    add_picture("a.tga", 1);
    ASSERT_TRUE(run("*.tga"));
    ASSERT_TRUE(run("*.tga"));
    EXPECT_EQ(names(), (std::set<std::string>{"a.tga", "a_Umbrix.tga", "a_Umbrix_Umbrix.tga"}));
}

TEST_F(UmbrixFolderFiles, ALargerTeamGivesTheSamePictures)
{
    add_picture("a.tga", 1);
    add_picture("sub/b.tga", 2);
    options_.b_radius = 2.0f;
    ASSERT_TRUE(run("*.tga"));
    Bytes const a = pixels(root_ / "a_Umbrix.tga");
    Bytes const b = pixels(root_ / "sub/b_Umbrix.tga");
    for (int const team : {omp_get_num_procs() + 1, 16, 64}) {
        omp_set_num_threads(team);
        ASSERT_TRUE(run("?.tga"));
        EXPECT_EQ(pixels(root_ / "a_Umbrix.tga"), a) << team;
        EXPECT_EQ(pixels(root_ / "sub/b_Umbrix.tga"), b) << team;
    }
}

TEST_F(UmbrixFolderFiles, ATreeWithLinksThatLeadBackUpEnds)
{
    add_picture("a.tga", 1);
    fs::create_directory_symlink(".", root_ / "again");
    fs::create_directory_symlink(root_.path(), root_ / "once more");
    ASSERT_TRUE(run("*.tga"));
    EXPECT_EQ(names(), (std::set<std::string>{"a.tga", "a_Umbrix.tga"}));
}

} // namespace
