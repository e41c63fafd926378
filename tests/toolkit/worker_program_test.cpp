// SPDX-License-Identifier: MIT
/// The worker itself, found and started as a front end's library finds it.
#include "toolkit/workers/worker_program.h"

#include "picture_files.h"
#include "temporary_folder.h"
#include "toolkit/workers/run_one.h"

#include <csignal>
#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using namespace toolkit;

TEST(WorkerProgram, IsFoundFromAnyFolder)
{
    fs::path const program = worker_program();
    EXPECT_TRUE(program.is_absolute());
    EXPECT_EQ(program.filename(), "umbrix-worker");
    TemporaryFolder const folder;
    fs::path const before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_EQ(worker_program(), program);
    fs::current_path(before);
}

TEST(WorkerProgram, DoesAJob)
{
    TemporaryFolder const folder;
    write_file(folder / "a.tga", tga_bytes(3, 2, 3, Bytes(18, 7)));
    Observer silent;
    InfoReport const report = run_one(InfoJob{folder / "a.tga", 1e6, false}, silent, NeverStop());
    EXPECT_EQ(report.width, 3);
    EXPECT_EQ(report.height, 2);
}

/// Exit code, or minus the signal.
int code_of(std::string const& command)
{
    int const status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(WorkerProgram, DoesNothingForOthers)
{
    std::string const program = worker_program().string();
    EXPECT_EQ(code_of(fmt::format("'{}' 2> /dev/null", program)), 2);
    EXPECT_EQ(code_of(fmt::format("'{}' 1 no-such-rights one < /dev/null 2> /dev/null", program)), 2);
    EXPECT_EQ(code_of(fmt::format("'{}' 1 decoding one < /dev/null", program)),
              1); // it is no child of process 1
}

} // namespace
} // namespace umbrixlib::test
