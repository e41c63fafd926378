// SPDX-License-Identifier: MIT
/// Batches with stand-ins for their workers, which do what is written in their inputs.
#include "toolkit/batch/batch_run.h"

#include "stand_in_worker.h"
#include "temporary_folder.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <stdexcept>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using namespace toolkit;

/// Keeps what it is told.
class Diary : public BatchObserver {
public:
    void planned(BatchFile const& file) override { planned_files.push_back(name(file)); }
    void begin(BatchFile const& file, BatchProgress const& progress) override
    {
        begun.push_back(name(file));
        EXPECT_GE(progress.number, begun.size());
        EXPECT_LT(progress.ended, progress.number);
        count = progress.count;
        if (on_begin) {
            on_begin(name(file));
        }
    }
    void note(BatchFile const& file, std::string const& about, Note const& note) override
    {
        notes.push_back(name(file) + " " + about + ": " + note.text);
    }
    void end(BatchResult const& result) override
    {
        EXPECT_TRUE(results.emplace(name(result.file), result).second);
    }
    void stopping(std::size_t running) override
    {
        stopped_with.push_back(running);
        if (on_stopping) {
            on_stopping();
        }
    }

    BatchState state(std::string const& file) const { return results.at(file).state; }
    std::string what(std::string const& file) const
    {
        auto const& failure = results.at(file).failure;
        return failure ? failure->what() : "";
    }

    std::function<void(std::string const&)> on_begin;
    std::function<void()> on_stopping;
    std::vector<std::string> planned_files;
    std::vector<std::string> begun;
    std::vector<std::string> notes;
    std::map<std::string, BatchResult> results;
    std::vector<std::size_t> stopped_with;
    std::size_t count = 0;

private:
    static std::string name(BatchFile const& file) { return file.source.filename().string(); }
};

class BatchRuns : public testing::Test {
protected:
    BatchRuns()
    {
        orders_.job_for = [](BatchFile const&) { return MapJob(); };
    }

    /// @param acts Of the stand-in.
    void add(std::string const& name, std::string const& acts)
    {
        std::ofstream(folder_.path() / name) << acts;
        plan_.files.push_back({folder_.path() / name, target(name)});
    }

    fs::path target(std::string const& name) const
    {
        return folder_.path() / "out" / fs::path(name).replace_extension(".png");
    }

    BatchSummary run() { return run_batch(plan_, orders_, diary_, stop_); }

    /// Names in the folder of the outputs.
    std::set<std::string> outputs() const
    {
        std::set<std::string> names;
        if (fs::exists(folder_ / "out")) {
            for (auto const& entry : fs::directory_iterator(folder_ / "out")) {
                names.insert(entry.path().filename().string());
            }
        }
        return names;
    }

    TemporaryFolder folder_;
    BatchPlan plan_;
    BatchOrders orders_;
    Diary diary_;
    StopSource stop_;
};

using Names = std::set<std::string>;

TEST_F(BatchRuns, TellWhatBecomesOfEachFile)
{
    add("a.tga", "note hello write map");
    add("b.tga", "abort now");
    add("c.tga", "write map");
    add("d.tga", "fail badly");
    plan_.failures.emplace_back(Fault::kMissingFile, "nowhere", "there is no such file or folder");
    fs::create_directory(folder_ / "out");
    std::ofstream(target("c.tga")) << "old";
    orders_.workers = 2;
    BatchSummary const summary = run();
    EXPECT_EQ(summary.done, 1U);
    EXPECT_EQ(summary.skipped, 1U);
    EXPECT_EQ(summary.failed, 3U);
    EXPECT_EQ(summary.left, 0U);
    EXPECT_EQ(summary.total(), 5U);
    EXPECT_FALSE(summary.stopped);
    EXPECT_EQ(diary_.count, 3U);
    EXPECT_EQ(diary_.state("a.tga"), BatchState::kDone);
    EXPECT_EQ(diary_.results.at("a.tga").kind, Kind::kHeightMap);
    EXPECT_EQ(diary_.results.at("a.tga").notes.size(), 1U);
    EXPECT_GT(diary_.results.at("a.tga").peak_kib, 0);
    EXPECT_EQ(diary_.notes, std::vector<std::string>{"a.tga in: hello"});
    EXPECT_EQ(diary_.what("b.tga"), "its decoder broke down (Aborted)");
    EXPECT_EQ(diary_.state("c.tga"), BatchState::kSkipped);
    EXPECT_EQ(diary_.results.at("c.tga").reason, "its output is already there");
    EXPECT_EQ(diary_.what("d.tga"), "badly");
    EXPECT_EQ(diary_.what("nowhere"), "there is no such file or folder");
    EXPECT_TRUE(diary_.results.at("nowhere").file.target.empty());
    EXPECT_EQ(outputs(), (Names{"a.png", "c.png"}));
}

TEST_F(BatchRuns, TellOnlyWhatTheyWouldDo)
{
    add("a.tga", "write map");
    add("b.tga", "write map");
    orders_.dry_run = true;
    BatchSummary const summary = run();
    EXPECT_EQ(summary.planned, 2U);
    EXPECT_EQ(summary.left, 0U);
    EXPECT_EQ(diary_.planned_files, (std::vector<std::string>{"a.tga", "b.tga"}));
    EXPECT_TRUE(diary_.begun.empty());
    EXPECT_FALSE(fs::exists(folder_ / "out"));
}

TEST_F(BatchRuns, TakeTheFailureOfAJobThatCannotBe)
{
    add("a.tga", "write map");
    add("b.tga", "write map");
    orders_.job_for = [](BatchFile const& file) {
        if (file.source.filename() == "a.tga") {
            throw Failure(Fault::kSettingOutOfRange, "a.tga", "its rays is 0");
        }
        return MapJob();
    };
    EXPECT_EQ(run().failed, 1U);
    EXPECT_EQ(diary_.what("a.tga"), "its rays is 0");
    EXPECT_EQ(diary_.results.at("a.tga").peak_kib, 0);
    EXPECT_EQ(outputs(), Names{"b.png"});
}

TEST_F(BatchRuns, SkipWhatAnotherRunHasMadeMeanwhile)
{
    add("a.tga", "write map");
    add("b.tga", "write map");
    diary_.on_begin = [this](std::string const& name) {
        if (name == "a.tga") { // one before its worker ends, one before its worker begins
            std::ofstream(target("a.tga")) << "theirs";
            std::ofstream(target("b.tga")) << "theirs";
        }
    };
    BatchSummary const summary = run();
    EXPECT_EQ(summary.skipped, 2U);
    EXPECT_EQ(summary.failed, 0U);
    EXPECT_EQ(diary_.begun, std::vector<std::string>{"a.tga"});
    std::string text;
    std::ifstream(target("a.tga")) >> text;
    EXPECT_EQ(text, "theirs");
}

TEST_F(BatchRuns, FinishWhatIsAtWorkAtAWishToStop)
{
    for (char const* const name : {"a.tga", "b.tga", "c.tga", "d.tga"}) {
        add(name, "phase 1 wait 50 write map");
    }
    diary_.on_begin = [this](std::string const& name) {
        if (name == "b.tga") {
            stop_.request();
        }
    };
    orders_.workers = 2;
    BatchSummary const summary = run();
    EXPECT_TRUE(summary.stopped);
    EXPECT_EQ(summary.done, 2U);
    EXPECT_EQ(summary.left, 2U);
    EXPECT_EQ(diary_.stopped_with.size(), 1U);
    EXPECT_EQ(outputs(), (Names{"a.png", "b.png"}));
}

TEST_F(BatchRuns, LeaveNothingOfWhatIsStopped)
{
    add("a.tga", "write map phase 1 wait 20000");
    add("b.tga", "write map");
    diary_.on_begin = [this](std::string const&) { stop_.request(); };
    diary_.on_stopping = [this] { stop_.request(); };
    BatchSummary const summary = run();
    EXPECT_TRUE(summary.stopped);
    EXPECT_EQ(summary.left, 2U);
    EXPECT_EQ(diary_.state("a.tga"), BatchState::kStopped);
    EXPECT_EQ(diary_.results.size(), 1U);
    EXPECT_EQ(outputs(), Names{});
}

} // namespace
} // namespace umbrixlib::test
