// SPDX-License-Identifier: MIT
/// The damaged pictures in batches and as jobs of a list: what becomes of each is what becomes of it by
/// itself.
#include "hostile_corpus.h"

#include <algorithm>
#include <mutex>
#include <span>
#include <string_view>
#include <thread>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

Arguments const kSettings{"--height-map", "--n-scale", "0.8", "--rays", "4", "--radius", "0.1"};
Arguments const kLimits{"--timeout=3", "--progress", "none"}; // some loaders never end
constexpr char const* kTooLong = "it was still being read after";

Arguments operator+(Arguments left, Arguments const& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// A PNG file without what it tells of its maker, which is another one here and there.
Bytes without_texts(Bytes const& png)
{
    constexpr std::size_t kSignature = 8;
    constexpr std::size_t kAround = 12; // length, name and check sum of a chunk
    Bytes rest(png.begin(), png.begin() + kSignature);
    for (std::size_t at = kSignature; at + kAround <= png.size();) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            length = length << 8U | png[at + i];
        }
        auto const chunk = std::span(png).subspan(at, std::min(length + kAround, png.size() - at));
        if (!std::ranges::equal(chunk.subspan(4, 4), std::string_view("iTXt"))) {
            rest.insert(rest.end(), chunk.begin(), chunk.end());
        }
        at += chunk.size();
    }
    return rest;
}

class HostileBatch : public HostileCorpus {
protected:
    struct Fate {
        bool done = false;
        Bytes map{};
        std::string reason{};
    };
    using Fates = std::map<std::string, Fate>; ///< By the name of the file.

    /// Every third of the damaged pictures: all of them take minutes.
    std::vector<DamagedFile> write_some() const { return write_corpus(3 * test_share(), "in/"); }

    /// What becomes of each file by itself.
    Fates make_each(std::vector<DamagedFile> const& files) const
    {
        Fates fates;
        std::mutex guard;
        std::size_t next = 0;
        auto const work = [&] {
            for (;;) {
                std::string file;
                {
                    std::lock_guard const lock(guard);
                    if (next == files.size()) {
                        return;
                    }
                    file = files[next++].name;
                }
                std::string const output = "alone_" + fs::path(file).filename().string() + ".png";
                Outcome const outcome = run(Arguments{"map", file, "-o", output} + kSettings + kLimits);
                Fate fate{outcome.code == 0, {}, outcome.err};
                if (fate.done) {
                    fate.map = read(output);
                    fs::remove(folder() / output);
                }
                std::lock_guard const lock(guard);
                fates[fs::path(file).filename().string()] = fate;
            }
        };
        std::thread other(work);
        work();
        other.join();
        return fates;
    }

    /// What a run with --json said, checked against what lies on the disk and its own sums.
    Fates fates_in(Outcome const& outcome, std::size_t count) const
    {
        Fates fates;
        auto all = objects(outcome);
        nlohmann::json const sums = all.at("");
        all.erase("");
        std::size_t done = 0;
        for (auto const& [source, object] : all) {
            fs::path const target = folder() / object.at("target").get<std::string>();
            Fate fate{object.at("state") == "done", {}, object.value("reason", "")};
            EXPECT_TRUE(fate.done || object.at("state") == "failed") << object;
            EXPECT_EQ(fs::exists(target), fate.done) << object;
            EXPECT_EQ(fate.reason.empty(), fate.done) << object;
            if (fate.done) {
                ++done;
                fate.map = read_file(target);
                fs::remove(target);
            }
            fates[fs::path(source).filename().string()] = fate;
        }
        EXPECT_EQ(fates.size(), count);
        EXPECT_EQ(sums.at("done"), done);
        EXPECT_EQ(sums.at("failed"), count - done);
        EXPECT_EQ(sums.at("skipped"), 0);
        EXPECT_EQ(sums.at("left"), 0);
        EXPECT_EQ(outcome.code, 1);
        std::string const sentence = std::to_string(count - done) + " of " + std::to_string(count) +
                                     " files: they failed; the results tell why\n";
        EXPECT_TRUE(outcome.err.ends_with(sentence)) << outcome.err;
        return fates;
    }

    /// Pictures are compared where both runs write the same format. A loader that nearly never ends may be
    /// stopped in one run and not in the other.
    static void expect_same(Fates const& alone, Fates const& together, std::string const& what)
    {
        std::size_t done = 0;
        std::size_t compared = 0;
        for (auto const& [file, fate] : together) {
            Fate const& other = alone.at(file);
            bool const stopped = fate.reason.find(kTooLong) != std::string::npos ||
                                 other.reason.find(kTooLong) != std::string::npos;
            EXPECT_TRUE(fate.done == other.done || stopped) << file << ": " << fate.reason << other.reason;
            done += fate.done ? 1 : 0;
            bool const is_png = !fate.map.empty() && fate.map[0] == 0x89;
            if (fate.done && other.done && is_png) {
                EXPECT_TRUE(without_texts(fate.map) == without_texts(other.map))
                    << file << ": another picture";
                ++compared;
            }
        }
        EXPECT_GT(compared, 50 / test_share());
        std::printf("%s: %zu files, %zu done, %zu refused; %zu pictures compared\n", what.c_str(),
                    together.size(), done, together.size() - done, compared);
    }
};

TEST_F(HostileBatch, DoesWithEachFileWhatAMapByItselfDoes)
{
    fs::create_directory(folder() / "in");
    std::vector<DamagedFile> const files = write_some();
    ASSERT_GE(files.size(), 700 / test_share());
    Fates const alone = make_each(files);
    Outcome const batch = run(Arguments{"batch", "in", "--jobs", "2", "--json"} + kSettings + kLimits);
    expect_same(alone, fates_in(batch, files.size()), "batch");
    EXPECT_EQ(contents(folder()).size(), files.size()) << "something was left behind";
    EXPECT_TRUE(fs::is_empty(scratch()));
}

TEST_F(HostileBatch, DoesWithEachFileOfAListWhatAMapByItselfDoes)
{
    fs::create_directory(folder() / "in");
    std::vector<DamagedFile> const files = write_some();
    Fates const alone = make_each(files);
    EXPECT_EQ(run(Arguments{"list", "add", "jobs.ulist", "in"} + kSettings).code, 0);
    Outcome const list = run(Arguments{"list", "run", "jobs.ulist", "--jobs", "2", "--json"} + kLimits);
    expect_same(alone, fates_in(list, files.size()), "list run");
    EXPECT_EQ(contents(folder()).size(), files.size() + 2)
        << "something was left behind"; // the list, its log
    EXPECT_TRUE(fs::is_empty(scratch()));
}

} // namespace
} // namespace umbrixlib::test
