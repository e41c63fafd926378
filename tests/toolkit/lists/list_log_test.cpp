// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_log.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <chrono>
#include <fstream>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::digest_of;
using toolkit::Failure;
using toolkit::Fault;
using toolkit::ListLog;
using toolkit::Shard;

class ListLogs : public testing::Test {
protected:
    ListLogs() { target_ = folder_ / "a_Umbrix.png"; }

    /// Writes to the log of a shard as a run does.
    void add(Shard const& shard, std::uint64_t digest, char const* state = "done") const
    {
        ListLog log(list(), shard);
        log.open_for_adding();
        log.add(target_, digest, state, "");
    }

    std::uint64_t maker() const { return ListLog(list(), {1, 1}).maker_of(target_); }
    /// Of the log, empty ones included.
    std::vector<std::string> lines() const
    {
        std::vector<std::string> all;
        std::ifstream in(folder_ / "jobs.ulist.log");
        for (std::string line; std::getline(in, line);) {
            all.push_back(line);
        }
        return all;
    }

    fs::path list() const { return folder_ / "jobs.ulist"; }

    TemporaryFolder folder_;
    fs::path target_;
};

TEST(Shards, HoldEachJobOnce)
{
    EXPECT_TRUE((Shard{1, 1}.holds(0)));
    EXPECT_TRUE((Shard{2, 3}.holds(1)));
    EXPECT_TRUE((Shard{2, 3}.holds(4)));
    EXPECT_FALSE((Shard{2, 3}.holds(0)));
    EXPECT_FALSE((Shard{2, 3}.holds(2)));
}

TEST_F(ListLogs, LieBesideTheListUnderTheNameOfTheShard)
{
    EXPECT_EQ(ListLog(list(), {1, 1}).file(), folder_ / "jobs.ulist.log");
    EXPECT_EQ(ListLog(list(), {2, 3}).file(), folder_ / "jobs.ulist.2of3.log");
}

TEST_F(ListLogs, TellWhatEarlierRunsMade)
{
    EXPECT_EQ(maker(), 0U);
    add({1, 1}, 18446744073709551615U);
    EXPECT_EQ(maker(), 18446744073709551615U);
    add({1, 1}, 7);
    EXPECT_EQ(maker(), 7U); // the last line counts
    EXPECT_EQ(ListLog(list(), {1, 1}).maker_of(folder_ / "b_Umbrix.png"), 0U);
    EXPECT_EQ(ListLog(folder_ / "other.ulist", {1, 1}).maker_of(target_), 0U);
}

TEST_F(ListLogs, TellNothingOfWhatFailed)
{
    add({1, 1}, 7);
    add({1, 1}, 8, "failed");
    EXPECT_EQ(maker(), 7U);
}

TEST_F(ListLogs, KnowATargetByAnyOfItsNames)
{
    add({1, 1}, 7);
    EXPECT_EQ(ListLog(list(), {1, 1}).maker_of(folder_ / "below" / ".." / "a_Umbrix.png"), 7U);
}

TEST_F(ListLogs, OfAllShardsAreReadAndTheLastOneCounts)
{
    add({1, 2}, 5);
    add({2, 2}, 6);
    auto const now = fs::file_time_type::clock::now();
    fs::last_write_time(folder_ / "jobs.ulist.1of2.log", now);
    fs::last_write_time(folder_ / "jobs.ulist.2of2.log", now - std::chrono::hours(1));
    EXPECT_EQ(maker(), 5U);
    fs::last_write_time(folder_ / "jobs.ulist.1of2.log", now - std::chrono::hours(2));
    EXPECT_EQ(maker(), 6U);
}

/// A run that is killed may leave the first part of a line.
TEST_F(ListLogs, GoOnBehindALineThatIsCutOff)
{
    add({1, 1}, 5);
    std::ofstream(folder_ / "jobs.ulist.log", std::ios::app) << "{\"target\":\"/a";
    EXPECT_EQ(maker(), 5U);
    add({1, 1}, 6);
    EXPECT_EQ(maker(), 6U);
    EXPECT_EQ(lines().size(), 3U);
}

TEST_F(ListLogs, HaveALineForEachRecordAndNoOther)
{
    add({1, 1}, 5);
    add({1, 1}, 18446744073709551615U, "failed");
    std::string const target = R"({"target":")" + target_.string();
    EXPECT_EQ(lines(),
              (std::vector<std::string>{target + R"(","digest":"5","state":"done"})",
                                        target + R"(","digest":"18446744073709551615","state":"failed"})"}));
}

TEST_F(ListLogs, TellTheNamesOfTargetsThatAreNoUtf8)
{
    target_ = folder_ / "a\x80\x1B\u202E_Umbrix.png";
    add({1, 1}, 7);
    EXPECT_EQ(maker(), 7U);
    EXPECT_NE(lines().at(0).find("/a\\udc80\\u001b\u202E_Umbrix.png\""), std::string::npos) << lines().at(0);
    target_ = folder_ / "a\x81\x1B\u202E_Umbrix.png";
    EXPECT_EQ(maker(), 0U);
}

TEST_F(ListLogs, ThatHaveDigestsAsNumbersAreReadAsWell)
{
    std::ofstream(folder_ / "jobs.ulist.log") << "\n"
                                                 R"({"target":")"
                                              << target_.string()
                                              << R"(","digest":18446744073709551615,"state":"done"})"
                                                 "\n";
    EXPECT_EQ(maker(), 18446744073709551615U);
}

TEST_F(ListLogs, SkipLinesOfOtherShapes)
{
    std::ofstream(folder_ / "jobs.ulist.log")
        << "[]\n{\"target\":1,\"digest\":2,\"state\":\"done\"}\n{\"state\":\"done\"}\nnull\n"
        << R"({"target":")" << target_.string()
        << R"(","digest":"7x","state":"done"})"
           "\n";
    EXPECT_EQ(maker(), 0U);
}

TEST_F(ListLogs, SayWhenTheyCannotBeWritten)
{
    ListLog log(folder_ / "nowhere" / "jobs.ulist", {1, 1});
    try {
        log.open_for_adding();
        FAIL() << "it was opened";
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kLogNotWritable);
    }
}

TEST_F(ListLogs, DigestIsThatOfTheJobAndOfTheFilesSizeAndTime)
{
    // FNV-1a with 64 bits, of "" and "a".
    EXPECT_EQ(digest_of({}, {}), 0xcbf29ce484222325U);
    EXPECT_EQ(digest_of({'a'}, {}), 0xaf63dc4c8601ec8cU);

    fs::path const file = folder_ / "a.png";
    EXPECT_EQ(digest_of({'a'}, {file}), digest_of({'a'}, {})); // it is not there
    std::ofstream(file) << "picture";
    auto const written = fs::last_write_time(file);
    std::uint64_t const digest = digest_of({'a'}, {file});
    EXPECT_NE(digest, digest_of({'a'}, {}));
    EXPECT_NE(digest, digest_of({'b'}, {file}));
    EXPECT_EQ(digest, digest_of({'a'}, {file}));
    std::ofstream(file) << "wider picture";
    fs::last_write_time(file, written);
    EXPECT_NE(digest, digest_of({'a'}, {file}));
    std::ofstream(file) << "picture";
    fs::last_write_time(file, written);
    EXPECT_EQ(digest, digest_of({'a'}, {file}));
    fs::last_write_time(file, written + std::chrono::nanoseconds(1));
    EXPECT_NE(digest, digest_of({'a'}, {file}));
}

} // namespace
} // namespace umbrixlib::test
