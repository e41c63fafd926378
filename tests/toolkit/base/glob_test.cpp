// SPDX-License-Identifier: MIT
#include "toolkit/base/glob.h"

#include "temporary_folder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::expand;
using toolkit::fixed_part;
using toolkit::has_wildcards;
using toolkit::matches;

TEST(Glob, MatchesInAnyLetterCase)
{
    EXPECT_TRUE(matches("*_H.png", "brick_h.PNG"));
    EXPECT_TRUE(matches("brick?.png", "brick1.png"));
    EXPECT_TRUE(matches("[ab]rick.png", "Arick.png"));
    EXPECT_FALSE(matches("brick?.png", "brick.png"));
    EXPECT_FALSE(matches("*_H.png", "brick_h.tga"));
    EXPECT_FALSE(matches("brick", "brick.png"));
}

TEST(Glob, MatchesHiddenNamesOnlyIfAskedTo)
{
    EXPECT_FALSE(matches("*", ".hidden"));
    EXPECT_FALSE(matches("?hidden", ".hidden"));
    EXPECT_TRUE(matches(".*", ".hidden"));
}

TEST(Glob, KnowsItsWildcards)
{
    EXPECT_TRUE(has_wildcards("a*"));
    EXPECT_TRUE(has_wildcards("a?"));
    EXPECT_TRUE(has_wildcards("[a"));
    EXPECT_FALSE(has_wildcards("a]{}.png"));
    EXPECT_FALSE(has_wildcards(""));
}

TEST(Glob, BeginsWithWhatHasNoWildcards)
{
    EXPECT_EQ(fixed_part("a/b/c*/d"), "a/b");
    EXPECT_EQ(fixed_part("/a/b"), "/a/b");
    EXPECT_EQ(fixed_part("*/a"), "");
}

TEST(Glob, ExpandsFoldersAndFilesInOrder)
{
    TemporaryFolder const folder;
    for (char const* name : {"b", "a", ".c"}) {
        fs::create_directory(folder / name);
        std::ofstream(folder / name / "x.png");
        std::ofstream(folder / name / "y.tga");
    }
    fs::create_symlink("nowhere", folder / "b" / "dangling.png");
    std::vector<fs::path> const expected{folder / "a" / "x.png", folder / "b" / "dangling.png",
                                         folder / "b" / "x.png"};
    EXPECT_EQ(expand(folder / "*" / "*.png"), expected);
    EXPECT_EQ(expand(folder / "a" / "x.png"), std::vector<fs::path>{folder / "a" / "x.png"});
    EXPECT_TRUE(expand(folder / "*" / "*.bmp").empty());
    EXPECT_TRUE(expand(folder / "nowhere" / "*").empty());
}

} // namespace
} // namespace umbrixlib::test
