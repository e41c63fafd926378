// SPDX-License-Identifier: MIT
#include "boundary/platform.h"
#include "files/folder_walk_internal.h"

#include "kept_directory.h"
#include "temporary_folder.h"

#include <fstream>
#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using umbrixlib::detail::FolderPath;
using umbrixlib::detail::FolderVisitor;
using umbrixlib::detail::walk_folder;
using umbrixlib::detail::platform::kSeparator;
using umbrixlib::test::KeptDirectory;
using umbrixlib::test::TemporaryFolder;

class FolderWalk : public testing::Test {
protected:
    void add_file(char const* name) const
    {
        fs::create_directories((root_ / name).parent_path());
        std::ofstream(root_ / name) << "x";
    }

    std::string root() const { return root_.path().string(); }

    /// Walks and notes what happens; asked @p asks times, the stop flag is set.
    bool walk(std::string const& folder, char const* pattern, bool recurse, int asks = -1,
              FolderPath const* above = nullptr)
    {
        FolderVisitor visitor;
        visitor.stopped = [this, asks] {
            events_.emplace_back("stopped?");
            return asks >= 0 && ++asked_ > asks;
        };
        visitor.subfolder = [&](std::string const& name, std::string const& path, FolderPath const& here) {
            events_.push_back("folder " + name);
            EXPECT_EQ(path, folder + kSeparator + name);
            last_subfolder_ = walk(path, pattern, recurse, asks, &here);
        };
        visitor.file = [&](std::string const& name) { events_.push_back("file " + name); };
        return walk_folder(folder, pattern, recurse, visitor, above);
    }

    /// The same without the questions in the notes.
    std::vector<std::string> visited(std::string const& folder, char const* pattern, bool recurse)
    {
        EXPECT_TRUE(walk(folder, pattern, recurse));
        std::vector<std::string> found;
        std::copy_if(events_.begin(), events_.end(), std::back_inserter(found),
                     [](std::string const& event) { return event != "stopped?"; });
        return found;
    }

    TemporaryFolder root_;
    KeptDirectory kept_;
    std::vector<std::string> events_;
    int asked_ = 0;
    bool last_subfolder_ = false;
};

TEST_F(FolderWalk, SubfoldersComeFirstAtAnyDepth)
{
    for (char const* const name : {"b.tga", "A.TGA", "no_dot", "x.png", "sub one/c.tga", "sub one/deep/d.tga",
                                   "sub one/deep/deeper/\xc3\xbc.tga", "zone.tga/e.tga"}) {
        add_file(name);
    }
    EXPECT_THAT(visited(root(), "*.tga", true),
                ElementsAre("folder sub one", "folder deep", "folder deeper", "file \xc3\xbc.tga",
                            "file d.tga", "file c.tga", "folder zone.tga", "file e.tga", "file A.TGA",
                            "file b.tga"));
}

TEST_F(FolderWalk, WithoutRecurseOnlyTheFilesOfTheFolder)
{
    for (char const* const name : {"b.tga", "no_dot", "sub/c.tga", "folder.tga/d.tga"}) {
        add_file(name);
    }
    EXPECT_THAT(visited(root(), "*.*", false), ElementsAre("file b.tga", "file no_dot"));
}

TEST_F(FolderWalk, APatternThatMatchesNothingIsNoFailure)
{
    add_file("a.tga");
    EXPECT_TRUE(walk(root(), "*.png", false));
    EXPECT_TRUE(walk(root(), "*.png", true));
}

TEST_F(FolderWalk, AFolderThatCannotBeEnteredEndsTheWalk)
{
    EXPECT_FALSE(walk(root() + "/missing", "*.*", false));
    EXPECT_FALSE(walk(root() + "/missing", "*.*", true));
    add_file("a.tga");
    EXPECT_FALSE(walk(root() + "/a.tga", "*.*", true));
    EXPECT_THAT(events_, ElementsAre("stopped?", "stopped?", "stopped?"));
}

TEST_F(FolderWalk, ASubfolderThatCannotBeEnteredDoesNotEndTheWalk)
{
    for (char const* const name : {"a.tga", "one/b.tga", "two/c.tga"}) {
        add_file(name);
    }
    FolderVisitor visitor;
    std::vector<std::string> files;
    visitor.subfolder = [&](std::string const& name, std::string const& path, FolderPath const&) {
        fs::remove_all(root_ / "one");
        EXPECT_EQ(walk(path, "*.tga", true), name == "two");
    };
    visitor.file = [&](std::string const& name) { files.push_back(name); };
    EXPECT_TRUE(walk_folder(root(), "*.tga", true, visitor));
    EXPECT_THAT(files, ElementsAre("a.tga"));
}

TEST_F(FolderWalk, WhatAppearsDuringAnEnumerationIsNotInIt)
{
    for (char const* const name : {"a.tga", "b.tga", "c.tga"}) {
        add_file(name);
    }
    FolderVisitor visitor;
    std::vector<std::string> files;
    visitor.file = [&](std::string const& name) {
        files.push_back(name);
        add_file(("new_" + name).c_str());
        add_file(("0" + name).c_str());
        fs::remove(root_ / "c.tga");
    };
    EXPECT_TRUE(walk_folder(root(), "*.tga", false, visitor));
    EXPECT_THAT(files, ElementsAre("a.tga", "b.tga", "c.tga")) << "not even what has gone";
}

TEST_F(FolderWalk, FilesMadeInSubfoldersFirstAreFoundLater)
{
    add_file("sub/a.tga");
    FolderVisitor visitor;
    std::vector<std::string> files;
    visitor.subfolder = [&](std::string const&, std::string const&, FolderPath const&) {
        add_file("late.tga");
    };
    visitor.file = [&](std::string const& name) { files.push_back(name); };
    EXPECT_TRUE(walk_folder(root(), "*.tga", true, visitor));
    EXPECT_THAT(files, ElementsAre("late.tga")) << "the files are enumerated behind the subfolders";
}

TEST_F(FolderWalk, TheStopFlagIsAskedBetweenEntries)
{
    for (char const* const name : {"a.tga", "b.tga", "sub/c.tga"}) {
        add_file(name);
    }
    EXPECT_TRUE(walk(root(), "*.tga", true));
    // ".", "..", "a.tga", "b.tga", "sub" are entries of the first enumeration.
    std::vector<std::string> const sub{"folder sub", "stopped?", "stopped?",
                                       "stopped?",   "stopped?", "file c.tga"};
    std::vector<std::string> expected(5, "stopped?");
    expected.insert(expected.end(), sub.begin(), sub.end());
    for (char const* const event : {"stopped?", "file a.tga", "stopped?", "file b.tga"}) {
        expected.emplace_back(event);
    }
    EXPECT_EQ(events_, expected);
}

TEST_F(FolderWalk, AStopFlagSetBeforeTheCallEndsItAtOnce)
{
    add_file("a.tga");
    fs::path const before = fs::current_path();
    EXPECT_FALSE(walk(root(), "*.*", true, 0));
    EXPECT_THAT(events_, ElementsAre("stopped?"));
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(FolderWalk, AStopFlagSetOnTheWayEndsItAtTheNextQuestion)
{
    for (char const* const name : {"a.tga", "b.tga", "sub/c.tga"}) {
        add_file(name);
    }
    EXPECT_TRUE(walk(root(), "*.tga", true));
    auto const questions = static_cast<int>(std::count(events_.begin(), events_.end(), "stopped?"));
    auto const all = events_;
    for (int asks = 0; asks < questions; ++asks) {
        events_.clear();
        asked_ = 0;
        EXPECT_FALSE(walk(root(), "*.tga", true, asks)) << asks;
        auto const done = std::count_if(events_.begin(), events_.end(),
                                        [](std::string const& event) { return event != "stopped?"; });
        std::ptrdiff_t expected = 0;
        int seen = 0;
        for (std::string const& event : all) {
            seen += event == "stopped?" ? 1 : 0;
            if (seen > asks) {
                break;
            }
            expected += event == "stopped?" ? 0 : 1;
        }
        EXPECT_EQ(done, expected) << asks;
    }
    events_.clear();
    asked_ = 0;
    EXPECT_TRUE(walk(root(), "*.tga", true, questions)) << "behind the last entry nobody asks";
}

TEST_F(FolderWalk, TheDirectoryIsLeftAtTheLastFolderEntered)
{
    add_file("a.tga");
    add_file("sub/c.tga");
    EXPECT_TRUE(walk(root(), "*.tga", true));
    EXPECT_EQ(fs::current_path(), fs::canonical(root_.path()));
    fs::path const top = fs::current_path().root_path();
    fs::current_path(top);
    EXPECT_FALSE(walk(root() + "/missing", "*.tga", true));
    EXPECT_EQ(fs::current_path(), top);
}

TEST_F(FolderWalk, ARelativeFolderIsNotFoundAgainAfterADescent)
{
    add_file("tree/a.tga");
    add_file("tree/sub/c.tga");
    fs::current_path(root_.path());
    EXPECT_FALSE(walk("tree", "*.tga", true));
    EXPECT_FALSE(last_subfolder_);
    EXPECT_THAT(events_, testing::Contains("folder sub"));
    EXPECT_THAT(events_, testing::Not(testing::Contains(testing::StartsWith("file"))));
    EXPECT_EQ(fs::current_path(), fs::canonical(root_ / "tree"));
    fs::current_path(root_.path());
    events_.clear();
    EXPECT_THAT(visited("tree", "*.tga", false), ElementsAre("file a.tga"));
}

TEST_F(FolderWalk, ALinkThatLeadsBackUpIsNotEntered)
{
    for (char const* const name : {"a.tga", "sub/deep/b.tga"}) {
        add_file(name);
    }
    fs::create_directory_symlink(".", root_ / "again");
    fs::create_directory_symlink(root_.path(), root_ / "once more");
    fs::create_directory_symlink("../..", root_ / "sub/deep/up");
    fs::create_directory_symlink("deep", root_ / "sub/same");
    EXPECT_THAT(visited(root(), "*.tga", true), ElementsAre("folder sub", "folder deep", "file b.tga",
                                                            "folder same", "file b.tga", "file a.tga"))
        << "a second way to a folder beside the path is no way back";
}

TEST_F(FolderWalk, FoldersThatLinkToEachOtherEnd)
{
    for (char const* const name : {"one/a.tga", "two/b.tga"}) {
        add_file(name);
    }
    fs::create_directory_symlink("../two", root_ / "one/other");
    fs::create_directory_symlink("../one", root_ / "two/other");
    EXPECT_THAT(visited(root(), "*.tga", true),
                ElementsAre("folder one", "folder other", "file b.tga", "file a.tga", "folder two",
                            "folder other", "file a.tga", "file b.tga"));
}

TEST_F(FolderWalk, AnEmptyFolderIsWalkedThrough)
{
    EXPECT_THAT(visited(root(), "*.*", true), IsEmpty());
}

TEST_F(FolderWalk, NamesAreJoinedWithTheSeparator)
{
    EXPECT_EQ(umbrixlib::detail::joined("/a/b", "c.tga"), std::string("/a/b") + kSeparator + "c.tga");
    EXPECT_EQ(umbrixlib::detail::polled_folder("b"), std::string("b") + kSeparator);
}

} // namespace
