// SPDX-License-Identifier: MIT
#include "boundary/platform.h"

#include "temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace {

namespace platform = umbrixlib::detail::platform;
using umbrixlib::test::TemporaryFolder;

TEST(Platform, RandomHasFifteenBitsAndUsesAllOfThem)
{
    platform::seed_random(1);
    int lowest = platform::kRandomMax;
    int highest = 0;
    std::set<int> seen;
    for (int i = 0; i < 20000; ++i) {
        int const value = platform::random();
        lowest = std::min(lowest, value);
        highest = std::max(highest, value);
        seen.insert(value);
    }
    EXPECT_GE(lowest, 0);
    EXPECT_LE(highest, 32767);
    EXPECT_GT(highest, 32700);
    EXPECT_GT(seen.size(), 12000U);
}

TEST(Platform, TheSameSeedGivesTheSameSequence)
{
    platform::seed_random(42);
    int const first = platform::random();
    int const second = platform::random();
    platform::seed_random(42);
    EXPECT_EQ(platform::random(), first);
    EXPECT_EQ(platform::random(), second);
}

TEST(Platform, SecondsMoveOnFromTheYear2024)
{
    EXPECT_GT(platform::seconds_since_epoch(), 1704067200);
}

class PlatformFolder : public testing::Test {
protected:
    PlatformFolder()
    {
        for (char const* name : {"a.tga", "B.TGA", "stone_N.tga", "no_dot", "x.tga.bak", ".hidden"}) {
            std::ofstream(folder_ / name) << "x";
        }
        std::filesystem::create_directory(folder_ / "sub.tga");
        EXPECT_TRUE(platform::change_directory(folder_.path().string().c_str()));
    }
    ~PlatformFolder() override { EXPECT_TRUE(platform::change_directory(before_.string().c_str())); }

    static std::vector<std::string> names(char const* pattern)
    {
        std::vector<std::string> found;
        for (auto const& entry : platform::list_current_directory(pattern)) {
            found.push_back(entry.name);
        }
#if defined(_WIN32)
        std::sort(found.begin(), found.end()); // they come in the order of the file system
#endif
        return found;
    }

    std::filesystem::path before_ = std::filesystem::current_path();
    TemporaryFolder folder_;
};

using Names = std::vector<std::string>;

TEST_F(PlatformFolder, MatchingIgnoresCase)
{
    EXPECT_EQ(names("*.tga"), (Names{"B.TGA", "a.tga", "stone_N.tga", "sub.tga"}));
    EXPECT_EQ(names("STONE_?.T*"), (Names{"stone_N.tga"}));
    EXPECT_EQ(names("?.tga"), (Names{"B.TGA", "a.tga"}));
    EXPECT_EQ(names("nothing"), Names{});
}

TEST_F(PlatformFolder, StarDotStarMatchesEveryEntryWithAndWithoutADot)
{
    EXPECT_EQ(names("*.*"), (Names{".", "..", ".hidden", "B.TGA", "a.tga", "no_dot", "stone_N.tga", "sub.tga",
                                   "x.tga.bak"}));
    EXPECT_EQ(names("*"), names("*.*"));
}

TEST_F(PlatformFolder, EntriesTellFoldersFromFiles)
{
    auto const entries = platform::list_current_directory("s*.tga");
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_FALSE(entries[0].is_folder);
    EXPECT_TRUE(entries[1].is_folder);
}

TEST_F(PlatformFolder, AMissingFolderIsRefused)
{
    EXPECT_FALSE(platform::change_directory("missing"));
}

} // namespace
