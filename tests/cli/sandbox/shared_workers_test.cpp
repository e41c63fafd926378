// SPDX-License-Identifier: MIT
/// How many workers there are, and what the kernel tells of those that do many files.
#include "cli/sandbox/traced_tool.h"

namespace umbrixlib::test {
namespace {

class SharedWorkers : public ToolTest {
protected:
    void put_pictures(int count) const
    {
        std::filesystem::create_directory(folder() / "in");
        for (int i = 0; i < count; ++i) {
            write("in/" + std::to_string(i) + ".tga", hill(4));
        }
    }

    TracedRun batch(Arguments const& more = {}) const
    {
        Arguments arguments{"batch", "in", "--overwrite", "--rays", "4", "--jobs", "1"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return TracedTool(folder(), arguments, {"OMP_NUM_THREADS=1"}).finish();
    }
};

/// The first number.
double soft(SeenWorker const& worker, std::string const& limit)
{
    return std::stod(worker.limits.at(limit));
}

TEST_F(SharedWorkers, AreAsManyAsThereAreFilesTimesTheirService)
{
    put_pictures(3);
    EXPECT_EQ(batch().workers.size(), 1U);
    EXPECT_EQ(batch({"--isolate"}).workers.size(), 3U);
    run({"list", "add", "jobs.ulist", "in/0.tga", "in/1.tga", "--rays", "4"});
    Arguments list_run{"list", "run", "jobs.ulist", "--jobs", "1", "--overwrite"};
    EXPECT_EQ(TracedTool(folder(), list_run, {}).finish().workers.size(), 1U);
    list_run.emplace_back("--isolate");
    EXPECT_EQ(TracedTool(folder(), list_run, {}).finish().workers.size(), 2U);
}

TEST_F(SharedWorkers, HaveTheLimitsOfOneFileButForTheirMinute)
{
    put_pictures(2);
    TracedRun const shared = batch();
    TracedRun const own = batch({"--isolate"});
    ASSERT_FALSE(shared.workers.empty() || own.workers.empty());
    for (char const* const limit : {"Max address space", "Max file size", "Max core file size"}) {
        EXPECT_EQ(shared.workers[0].limits.at(limit), own.workers[0].limits.at(limit)) << limit;
    }
    EXPECT_EQ(soft(shared.workers[0], "Max cpu time"), soft(own.workers[0], "Max cpu time") + 60);
}

TEST_F(SharedWorkers, LeaveNoDescriptorsBehindOver300Files)
{
    put_pictures(300);
    TracedRun const many = batch();
    EXPECT_EQ(many.code, 0);
    ASSERT_EQ(many.workers.size(), 2U) << "one for 256 files, one for the rest";
    std::filesystem::remove_all(folder() / "in");
    put_pictures(2);
    TracedRun const few = batch();
    ASSERT_EQ(few.workers.size(), 1U);
    for (SeenWorker const& worker : many.workers) {
        EXPECT_EQ(worker.descriptors, few.workers[0].descriptors);
    }
    EXPECT_EQ(many.descriptors, few.descriptors);
}

} // namespace
} // namespace umbrixlib::test
