// SPDX-License-Identifier: MIT
// The folder batch of normal maps on real pictures.
#include "files/folder_to_normal.h"

#include "kept_directory.h"
#include "normals/height_to_normal.h"
#include "picture_files.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>
#include <set>

namespace {

namespace fs = std::filesystem;
using umbrixlib::test::Bytes;
using umbrixlib::test::KeptDirectory;
using umbrixlib::test::read_tga;
using umbrixlib::test::TemporaryFolder;

class FolderToNormalFiles : public testing::Test {
protected:
    void add_picture(char const* name, unsigned seed) const
    {
        fs::create_directories((root_ / name).parent_path());
        Bytes bytes(8 * 8 * 3);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>((i * 37 + seed * 11) & 255U);
        }
        umbrixlib::test::write_file(root_ / name, umbrixlib::test::tga_bytes(8, 8, 3, bytes));
    }

    bool run(char const* pattern, LinkedList<n_layer> const& layers = {})
    {
        return FolderToNormal(root_.path().string(), pattern, 3.0f, 1.0f, false, 1, 0.0f, false, layers,
                              false, true, &current_, &status_, &progress_);
    }

    std::set<std::string> names() const
    {
        std::set<std::string> found;
        for (auto const& entry : fs::recursive_directory_iterator(root_.path())) {
            if (entry.is_regular_file()) {
                found.insert(fs::relative(entry.path(), root_.path()).string());
            }
        }
        return found;
    }

    /// The pixels alone: DevIL leaves the header's origin unset.
    static Bytes pixels(fs::path const& file) { return read_tga(file).pixels; }

    /// What one call for one file makes of @p source.
    Bytes single(char const* source)
    {
        fs::path const output = other_ / "single.tga";
        HeightToNormal((root_ / source).c_str(), output.c_str(), 3.0f, 1.0f, false, 1, 0.0f, false, false,
                       &status_, &progress_);
        return pixels(output);
    }

    TemporaryFolder root_;
    TemporaryFolder other_;
    KeptDirectory kept_;
    std::string current_;
    std::string status_;
    int progress_ = 0;
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
