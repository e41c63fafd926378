// SPDX-License-Identifier: MIT
#include "toolkit/files/file_search.h"

#include "temporary_folder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::Fault;
using toolkit::Search;
using toolkit::SearchResult;

using Names = std::vector<std::string>;

class FileSearch : public testing::Test {
protected:
    void make(char const* file) const
    {
        fs::path const path = folder_ / file;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "picture";
    }

    std::string place(char const* name) const { return (folder_ / name).string(); }

    /// Files counted from the folder, with the folder of the tree behind a '|'.
    Names found(Search search)
    {
        result_ = find_files(search);
        Names names;
        for (toolkit::FoundFile const& each : result_.files) {
            names.push_back(each.file.lexically_relative(folder_.path()).string() + "|" + each.tree.string());
        }
        return names;
    }

    fs::path const& folder() const { return folder_.path(); }
    SearchResult const& result() const { return result_; }

private:
    TemporaryFolder folder_;
    SearchResult result_;
};

TEST_F(FileSearch, TakesWhatIsCalledLikeAPicture)
{
    for (char const* file : {"b.png", "a.TGA", "notes.txt", ".hidden.png", "below/c.png", ".below/d.png"}) {
        make(file);
    }
    Search search;
    search.places = {folder().string()};
    EXPECT_EQ(found(search), (Names{"a.TGA|", "b.png|"}));
    search.recurse = true;
    EXPECT_EQ(found(search), (Names{"a.TGA|", "b.png|", "below/c.png|below"}));
    EXPECT_TRUE(result().failures.empty());
}

TEST_F(FileSearch, TakesAnyFileThatIsNamed)
{
    make("notes.txt");
    make(".hidden.png");
    Search search;
    search.places = {place("notes.txt"), place(".hidden.png")};
    EXPECT_EQ(found(search), (Names{".hidden.png|", "notes.txt|"}));
}

TEST_F(FileSearch, KeepsToThePattern)
{
    for (char const* file : {"a_h.png", "a_n.png", "a_h.png.txt", "a_H.raw", "b_h.txt", ".c_h.png"}) {
        make(file);
    }
    Search search;
    search.places = {folder().string()};
    search.include = {"*_h.*"}; // an open extension means pictures
    EXPECT_EQ(found(search), (Names{"a_h.png|"}));
    search.include = {"*_h.txt"}; // a given one means what it says
    EXPECT_EQ(found(search), (Names{"b_h.txt|"}));
    search.include = {".*"};
    EXPECT_EQ(found(search), (Names{".c_h.png|"}));
}

TEST_F(FileSearch, TakesWhatOnePatternAsksForAndNoneRefuses)
{
    for (char const* file : {"a_h.png", "a_n.png", "a_h.txt", "b_h.png", "b_ao.png"}) {
        make(file);
    }
    Search search;
    search.places = {folder().string(), place("a_h.txt")};
    search.include = {"*_H.*", "*_ao.png"};
    EXPECT_EQ(found(search), (Names{"a_h.png|", "a_h.txt|", "b_ao.png|", "b_h.png|"}));
    search.exclude = {"B*"};
    EXPECT_EQ(found(search), (Names{"a_h.png|", "a_h.txt|"}));
    search.exclude = {"*.png", "*.txt"};
    EXPECT_EQ(found(search), Names{});
    search.include.clear();
    search.exclude = {"?_h.*"};
    EXPECT_EQ(found(search), (Names{"a_n.png|", "b_ao.png|"}));
}

TEST_F(FileSearch, TellsWhatAskedForAFile)
{
    make("wet/a.png");
    make("wet/b.png");
    Search search;
    search.places = {folder().string(), place("wet/a.png"), place("w*/?.png")};
    search.recurse = true;
    SearchResult const result = find_files(search);
    ASSERT_EQ(result.files.size(), 2U);
    EXPECT_EQ(result.files[0].asked_for, (std::vector<std::string>{"a.png", "?.png"}));
    EXPECT_EQ(result.files[1].asked_for, (std::vector<std::string>{"?.png"}));
}

TEST_F(FileSearch, ExpandsPlaces)
{
    for (char const* file : {"wet/a.png", "dry/b.png", "dry/deep/c.png"}) {
        make(file);
    }
    Search search;
    search.places = {place("*/*.png")};
    EXPECT_EQ(found(search), (Names{"dry/b.png|dry", "wet/a.png|wet"}));
    search.places = {place("d*")};
    search.recurse = true;
    EXPECT_EQ(found(search), (Names{"dry/b.png|dry", "dry/deep/c.png|dry/deep"}));
}

TEST_F(FileSearch, TakesAPlaceWithWildcardsByItsNameIfItIsThere)
{
    make("a[1].png");
    make("a1.png");
    Search search;
    search.places = {place("a[1].png")};
    EXPECT_EQ(found(search), (Names{"a[1].png|"}));
}

TEST_F(FileSearch, TakesAFileOnce)
{
    make("below/a.png");
    Search search;
    search.places = {place("below/a.png"), place("below"), place("below/../below")};
    EXPECT_EQ(found(search), (Names{"below/a.png|"}));
}

TEST_F(FileSearch, EntersALinkedFolderOnceAndByItsOwnNameFirst)
{
    make("stone/a.png");
    fs::create_directory_symlink("stone", folder() / "again");
    fs::create_directory_symlink(".", folder() / "stone" / "itself");
    Search search;
    search.places = {folder().string()};
    search.recurse = true;
    EXPECT_EQ(found(search), (Names{"stone/a.png|stone"}));
}

TEST_F(FileSearch, LeavesTheAvoidedFolderOutUnlessItIsAPlace)
{
    make("in/a.png");
    make("out/b.png");
    Search search;
    search.places = {folder().string()};
    search.recurse = true;
    search.avoided = folder() / "out";
    EXPECT_EQ(found(search), (Names{"in/a.png|in"}));
    search.places = {place("out")};
    EXPECT_EQ(found(search), (Names{"out/b.png|"}));
}

TEST_F(FileSearch, TellsOfPlacesThatDoNotExist)
{
    make("a.png");
    Search search;
    search.places = {place("nowhere"), folder().string()};
    EXPECT_EQ(found(search), (Names{"a.png|"}));
    ASSERT_EQ(result().failures.size(), 1U);
    EXPECT_EQ(result().failures[0].fault, Fault::kMissingFile);
    EXPECT_EQ(result().failures[0].subject, place("nowhere"));
    search.places = {place("*.bmp")};
    EXPECT_EQ(found(search), Names{});
    EXPECT_TRUE(result().failures.empty());
}

/// Who reads the result is told of it by name, in whatever state its target is.
TEST_F(FileSearch, TakesADanglingLinkThatIsNamed)
{
    fs::create_symlink("nowhere", folder() / "dangling.png");
    Search search;
    search.places = {place("dangling.png")};
    EXPECT_EQ(found(search), (Names{"dangling.png|"}));
    EXPECT_TRUE(result().failures.empty());
}

} // namespace
} // namespace umbrixlib::test
