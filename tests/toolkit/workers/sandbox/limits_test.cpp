// SPDX-License-Identifier: MIT
/// What a worker may use.
#include "toolkit/workers/sandbox/limits_internal.h"

#include "child.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <sys/resource.h>

namespace umbrixlib::test {
namespace {

using toolkit::Limits;
using toolkit::limits_of;
using toolkit::Service;
using toolkit::set_limits;

constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;
constexpr double kPlenty = 1e15; ///< Bytes of a machine.

toolkit::MapJob map_of(double texels)
{
    toolkit::MapJob job;
    job.files = {"in", {"out", "out"}, texels};
    return job;
}

TEST(WorkerLimits, GrowWithThePicturesOfTheJob)
{
    double const small = limits_of(map_of(1e6), Service::kOneJob, 1, kPlenty).memory;
    double const large = limits_of(map_of(1e9), Service::kOneJob, 1, kPlenty).memory;
    EXPECT_LT(small, 2 * kGibibyte);
    EXPECT_DOUBLE_EQ(large - small, 256 * (1e9 - 1e6));
    toolkit::StackJob stack;
    stack.max_texels = 1e9;
    stack.description.layers.resize(3);
    EXPECT_DOUBLE_EQ(limits_of(stack, Service::kOneJob, 1, kPlenty).memory - small, 256 * (3e9 - 1e6));
    EXPECT_GT(limits_of(map_of(1e9), Service::kOneJob, 1, kPlenty).file, 16e9) << "four floats a texel";
}

TEST(WorkerLimits, EndAtTheMemoryOfTheMachineAndTheRoomForThreads)
{
    double const machine = 8 * kGibibyte;
    EXPECT_LE(limits_of(map_of(1e12), Service::kOneJob, 4, machine).memory, machine + 2 * kGibibyte);
    EXPECT_LE(limits_of(toolkit::FolderJob(), Service::kOneJob, 4, machine).memory, machine + 2 * kGibibyte);
}

TEST(WorkerLimits, LeaveNoFileToJobsThatWriteNone)
{
    EXPECT_EQ(limits_of(toolkit::InfoJob(), Service::kOneJob, 4, kPlenty).file, 0);
    EXPECT_EQ(limits_of(toolkit::FitJob(), Service::kOneJob, 4, kPlenty).file, 0);
}

TEST(WorkerLimits, AddTheTimeThatJobsBeforeMayHaveTaken)
{
    Limits const one = limits_of(map_of(1e6), Service::kOneJob, 2, kPlenty);
    Limits const many = limits_of(map_of(1e6), Service::kManyJobs, 2, kPlenty);
    EXPECT_EQ(many.cpu_seconds, one.cpu_seconds + toolkit::kCpuSecondsOfService);
    EXPECT_EQ(many.memory, one.memory);
    EXPECT_EQ(many.file, one.file);
}

TEST(WorkerLimits, LeaveDriversAllMemory)
{
    EXPECT_TRUE(std::isinf(limits_of(toolkit::DevicesJob(), Service::kOneJob, 4, kPlenty).memory));
}

TEST(WorkerLimits, HoldForGood)
{
    EXPECT_EQ(in_child([] {
                  set_limits({kGibibyte, 1000, 3600});
                  void* volatile const memory = std::malloc(std::size_t{2} << 30);
                  bool kept = true;
                  for (auto const& [resource, most] :
                       {std::pair(RLIMIT_AS, kGibibyte), std::pair(RLIMIT_FSIZE, 1000.0),
                        std::pair(RLIMIT_CPU, 3601.0), std::pair(RLIMIT_CORE, 0.0)}) {
                      rlimit limit{};
                      getrlimit(resource, &limit);
                      kept = kept && static_cast<double>(limit.rlim_max) == most;
                  }
                  return memory == nullptr && kept ? 0 : 1;
              }),
              0);
}

TEST(WorkerLimits, NeverAllowMoreThanTheUserDoes)
{
    EXPECT_EQ(in_child([] {
                  rlimit const own{1000, 2000};
                  setrlimit(RLIMIT_FSIZE, &own);
                  set_limits({kPlenty, 1e9, 1e9});
                  rlimit limit{};
                  getrlimit(RLIMIT_FSIZE, &limit);
                  return limit.rlim_cur == 1000 && limit.rlim_max == 2000 ? 0 : 1;
              }),
              0);
}

TEST(WorkerLimits, EndAWorkerThatUsesUpItsTime)
{
    EXPECT_EQ(in_child([]() -> int {
                  std::signal(SIGXCPU, SIG_DFL);
                  set_limits({kPlenty, 1e9, 1});
                  while (std::clock() >= 0) {
                  }
                  return 0;
              }),
              -SIGXCPU);
}

} // namespace
} // namespace umbrixlib::test
