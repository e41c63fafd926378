// SPDX-License-Identifier: MIT
// `umbrix batch` over two thousand files: what the batch and its workers hold does not grow.
#include "process_use.h"
#include "tool.h"

#include <atomic>
#include <gtest/gtest.h>
#include <map>
#include <thread>

namespace {

using umbrixlib::test::height_map;
using umbrixlib::test::Outcome;
using umbrixlib::test::ProcessUse;
using umbrixlib::test::RunningTool;
using umbrixlib::test::ToolTest;
using umbrixlib::test::use_of;

constexpr int kFiles = 2000;
constexpr long kSlackKib = 2048;
constexpr long kSlackHandles = 16; ///< Of a process just started; one lost with each file would be 1800.

/// Children that run the worker's program; those that are just being started do not yet.
std::vector<pid_t> workers_of(pid_t process)
{
    std::ifstream children("/proc/" + std::to_string(process) + "/task/" + std::to_string(process) +
                           "/children");
    std::vector<pid_t> workers(std::istream_iterator<pid_t>(children), {});
    std::erase_if(workers, [](pid_t child) {
        std::string name;
        std::ifstream("/proc/" + std::to_string(child) + "/comm") >> name;
        return !name.starts_with("umbrix-");
    });
    return workers;
}

/// The largest part of each kind that was seen. A worker lives for 256 files, so any one look may meet it
/// while it is starting; many looks meet some at their largest.
ProcessUse largest_of(std::vector<ProcessUse> const& seen)
{
    ProcessUse largest;
    for (ProcessUse const& each : seen) {
        largest.resident_kib = std::max(largest.resident_kib, each.resident_kib);
        largest.handles = std::max(largest.handles, each.handles);
        largest.threads = std::max(largest.threads, each.threads);
    }
    return largest;
}

void print(char const* who, ProcessUse const& early, ProcessUse const& late)
{
    std::printf("%s: in the first tenth %ld KiB, %ld handles, %ld threads; in the last tenth %ld, %ld, %ld\n",
                who, early.resident_kib, early.handles, early.threads, late.resident_kib, late.handles,
                late.threads);
}

using BatchLongRun = ToolTest;

TEST_F(BatchLongRun, TwoThousandFilesGrowNothing)
{
    for (int i = 0; i < kFiles; ++i) {
        write(std::to_string(i) + "_height.tga",
              height_map(32, 32, [i](int x, int y) { return x * 7 + y * 5 + i; }));
    }
    RunningTool batch(folder(), {"batch", ".", "--jobs", "2", "--rays", "4", "--progress", "none"},
                      with_scratch());
    std::atomic<bool> running = true;
    std::vector<ProcessUse> batch_seen[2];
    std::vector<ProcessUse> worker_seen[2];
    std::size_t most_workers = 0;
    std::thread watcher([&] {
        for (; running; std::this_thread::sleep_for(std::chrono::milliseconds(20))) {
            std::size_t done = 0;
            for (auto const& entry : std::filesystem::directory_iterator(folder())) {
                done += entry.path().filename().string().find("_Umbrix.tga") != std::string::npos;
            }
            bool const early = done >= 10 && done < kFiles / 10;
            bool const late = done >= kFiles - kFiles / 10;
            if (!early && !late) {
                continue;
            }
            batch_seen[late].push_back(use_of(batch.process()));
            std::vector<pid_t> const workers = workers_of(batch.process());
            most_workers = std::max(most_workers, workers.size());
            for (pid_t const worker : workers) {
                worker_seen[late].push_back(use_of(worker));
            }
        }
    });
    Outcome const outcome = batch.finish();
    running = false;
    watcher.join();

    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(files().size(), 2U * kFiles);
    ProcessUse const batch_early = largest_of(batch_seen[0]);
    ProcessUse const batch_late = largest_of(batch_seen[1]);
    ProcessUse const worker_early = largest_of(worker_seen[0]);
    ProcessUse const worker_late = largest_of(worker_seen[1]);
    print("batch", batch_early, batch_late);
    print("worker", worker_early, worker_late);
    std::printf("workers at most: %zu\n", most_workers);
    ASSERT_GT(batch_early.resident_kib, 0);
    ASSERT_GT(batch_late.resident_kib, 0);
    ASSERT_GT(worker_early.resident_kib, 0);
    ASSERT_GT(worker_late.resident_kib, 0);
    EXPECT_LE(batch_late.resident_kib, batch_early.resident_kib + kSlackKib);
    EXPECT_LE(batch_late.handles, batch_early.handles + kSlackHandles);
    EXPECT_LE(batch_late.threads, batch_early.threads);
    EXPECT_LE(worker_late.resident_kib, worker_early.resident_kib + kSlackKib);
    EXPECT_LE(worker_late.handles, worker_early.handles + kSlackHandles);
    EXPECT_LE(worker_late.threads, worker_early.threads);
    EXPECT_LE(most_workers, 2U);
}

} // namespace
