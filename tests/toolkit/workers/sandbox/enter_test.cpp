// SPDX-License-Identifier: MIT
/// A worker's way into its sandbox: what a job names is open, and nothing else is.
#include "toolkit/workers/sandbox/sandbox_internal.h"

#include "child.h"
#include "temporary_folder.h"
#include "toolkit/base/failure.h"
#include "toolkit/files/opened_files.h"
#include "toolkit/workers/handed_files_internal.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/resource.h>
#include <sys/socket.h>

namespace umbrixlib::test {
namespace {

using toolkit::enter_sandbox;
using toolkit::Job;
using toolkit::open_file;
using toolkit::OpenFor;
using toolkit::Rights;
using toolkit::rights_of;

class Sandbox : public testing::Test {
protected:
    Sandbox() { put("in", "input"); }

    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    void put(std::string const& name, std::string const& text) const { std::ofstream(path(name)) << text; }

    std::string content(std::string const& name) const
    {
        std::string text;
        std::getline(std::ifstream(path(name)), text, '\0');
        return text;
    }

    toolkit::MapJob map_job() const
    {
        toolkit::MapJob job;
        job.files.input = path("in");
        job.files.output.file = path("out");
        return job;
    }

    /// What can be read under a name, or the error.
    static std::string read_all(std::string const& file)
    {
        int const descriptor = open_file(file, OpenFor::kReading);
        if (descriptor < 0) {
            return std::to_string(errno);
        }
        char bytes[64] = {};
        ssize_t const size = read(descriptor, bytes, sizeof bytes);
        close(descriptor);
        return {bytes, static_cast<std::size_t>(size > 0 ? size : 0)};
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Sandbox, LeavesTheFilesOfTheJobAndNoOther)
{
    put("other", "secret");
    EXPECT_EQ(in_child([&] {
                  enter_sandbox(map_job(), Rights::kDecoding);
                  bool const reads = read_all(path("in")) == "input" && read_all(path("in")) == "input";
                  int const out = open_file(path("out"), OpenFor::kWriting);
                  bool const writes = write(out, "output", 6) == 6 && close(out) == 0;
                  bool const reads_back = read_all(path("out")) == "output";
                  bool const refused = read_all(path("other")) == std::to_string(EPERM) &&
                                       open_file(path("new"), OpenFor::kWriting) < 0 && errno == EPERM;
                  return reads && writes && reads_back && refused ? 0 : 1;
              }),
              0);
    EXPECT_EQ(content("out"), "output");
    EXPECT_FALSE(std::filesystem::exists(path("new")));
}

/// In the sandbox code of the first picture may do what it likes.
TEST_F(Sandbox, LeavesManyJobsTheFilesThatAreHandedAndNoOther)
{
    put("in2", "second");
    put("other", "secret");
    toolkit::MapJob second = map_job();
    second.files.input = path("in2");
    second.files.output.file = path("out2");
    EXPECT_EQ(in_child([&] {
                  int ends[2];
                  toolkit::HandedFiles files;
                  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0 || dup2(ends[0], STDIN_FILENO) < 0 ||
                      !files.open(second) || files.send(ends[1], "x", 1) != 1) {
                      return 1;
                  }
                  files.close_all();
                  enter_sandbox(map_job(), Rights::kDecoding, toolkit::Service::kManyJobs);
                  toolkit::close_opened_files();
                  bool const first_is_gone = read_all(path("in")) == std::to_string(EPERM);
                  char byte = 0;
                  if (files.receive(STDIN_FILENO, &byte, 1) != 1) {
                      return 2;
                  }
                  files.take_for(second);
                  int const out = open_file(path("out2"), OpenFor::kWriting);
                  bool const writes = write(out, "output", 6) == 6 && close(out) == 0;
                  bool const reads = read_all(path("in2")) == "second" && read_all(path("out2")) == "output";
                  bool const refused = read_all(path("other")) == std::to_string(EPERM) &&
                                       error_of(SYS_socket, AF_UNIX, SOCK_STREAM, 0) == EPERM;
                  return first_is_gone && writes && reads && refused ? 0 : 3;
              }),
              0);
    EXPECT_EQ(content("in2"), "second");
    EXPECT_EQ(content("out2"), "output");
}

TEST_F(Sandbox, HandsNoFileThatIsNotAsItShouldBe)
{
    toolkit::HandedFiles files;
    toolkit::MapJob job = map_job();
    EXPECT_TRUE(files.open(job));
    put("out", "of somebody else");
    EXPECT_FALSE(files.open(job));
    std::filesystem::remove(path("out"));
    std::filesystem::create_symlink(path("in"), path("out"));
    EXPECT_FALSE(files.open(job));
    std::filesystem::remove(path("out"));
    job.files.input = path("");
    EXPECT_FALSE(files.open(job));
    EXPECT_TRUE(files.empty());
}

TEST_F(Sandbox, TellsOfAFileThatCouldNotBeOpenedWhenItsTurnComes)
{
    EXPECT_EQ(in_child([&] {
                  toolkit::FitJob job;
                  job.heights = path("gone");
                  job.normals = path("in");
                  enter_sandbox(job, Rights::kDecoding);
                  return read_all(path("gone")) == std::to_string(ENOENT) && read_all(path("in")) == "input"
                             ? 0
                             : 1;
              }),
              0);
}

TEST_F(Sandbox, HasNoDescriptorOfOthers)
{
    EXPECT_EQ(in_child([&] {
                  int const strange = open(path("in").c_str(), O_RDONLY);
                  int const there = fcntl(strange, F_DUPFD, 50);
                  enter_sandbox(map_job(), Rights::kDecoding);
                  char byte = 0;
                  return error_of(SYS_read, there, &byte, 1);
              }),
              EBADF);
}

TEST_F(Sandbox, LeavesRootNoWayToRaiseLimits)
{
    EXPECT_EQ(in_child([&] {
                  enter_sandbox(map_job(), Rights::kDecoding);
                  rlimit const core{1, 1};
                  return setrlimit(RLIMIT_CORE, &core) == 0 ? 0 : errno;
              }),
              EPERM);
}

TEST_F(Sandbox, FollowsNoLinkToAnOutput)
{
    put("precious", "kept");
    std::filesystem::create_symlink(path("precious"), path("out"));
    EXPECT_EQ(in_child([&] {
                  enter_sandbox(map_job(), Rights::kDecoding);
                  return open_file(path("out"), OpenFor::kWriting) < 0 && errno == ELOOP ? 0 : 1;
              }),
              0);
    EXPECT_EQ(content("precious"), "kept");
}

TEST_F(Sandbox, TellsOfMoreFilesThanAProcessMayHave)
{
    toolkit::StackJob job;
    for (int i = 0; i < 60; ++i) {
        std::string const name = "layer" + std::to_string(i);
        put(name, name);
        job.description.layers.emplace_back().file = path(name);
    }
    auto const with_limit = [&](rlim_t soft, rlim_t hard) {
        return in_child([&] {
            rlimit const limit{soft, hard};
            setrlimit(RLIMIT_NOFILE, &limit);
            try {
                enter_sandbox(job, Rights::kDecoding);
            } catch (toolkit::Failure const& failure) {
                return failure.fault == toolkit::Fault::kTooManyFiles ? 1 : 2;
            }
            return read_all(path("layer59")) == "layer59" ? 0 : 3;
        });
    };
    EXPECT_EQ(with_limit(40, 40), 1);
    EXPECT_EQ(with_limit(40, 100), 0);
}

TEST_F(Sandbox, LeavesTheWalkItsFolder)
{
    EXPECT_EQ(in_child([&] {
                  toolkit::FolderJob job;
                  job.folder = path("");
                  enter_sandbox(job, Rights::kFolder);
                  bool const inside = read_all(path("in")) == "input" &&
                                      open_file(path("out"), OpenFor::kWriting) >= 0 &&
                                      unlink(path("out").c_str()) == 0;
                  return inside && error_of(SYS_socket, AF_UNIX, SOCK_STREAM, 0) == EPERM ? 0 : 1;
              }),
              0);
}

TEST_F(Sandbox, OfAllRightsTakesNone)
{
    EXPECT_EQ(in_child([&] {
                  enter_sandbox(map_job(), Rights::kAll);
                  return error_of(SYS_socket, AF_UNIX, SOCK_STREAM, 0);
              }),
              0);
}

TEST_F(Sandbox, IsTheOneOfItsJob)
{
    toolkit::Graphics const device{.device = 0};
    toolkit::MapJob on_device;
    on_device.graphics = device;
    toolkit::StackJob stack_on_device;
    stack_on_device.graphics = device;
    toolkit::ListJob list_on_device;
    list_on_device.graphics = device;
    toolkit::FolderJob walk_on_device;
    walk_on_device.graphics = device;
    for (Job const& job : {Job(toolkit::MapJob()), Job(toolkit::NormalJob()), Job(toolkit::HeightJob()),
                           Job(toolkit::CurvatureJob()), Job(toolkit::BentJob()), Job(toolkit::HorizonJob()),
                           Job(toolkit::RelightJob()), Job(toolkit::ViewJob()), Job(toolkit::ConvertJob()),
                           Job(toolkit::ExportJob()), Job(toolkit::PackJob()), Job(toolkit::InfoJob()),
                           Job(toolkit::CheckJob()), Job(toolkit::StackJob()), Job(toolkit::FitJob()),
                           Job(toolkit::ListJob()), Job(toolkit::DecodeJob())}) {
        EXPECT_EQ(rights_of(job), Rights::kDecoding) << job.index();
    }
    EXPECT_EQ(rights_of(toolkit::FolderJob()), Rights::kFolder);
    for (Job const& job : {Job(toolkit::DevicesJob()), Job(on_device), Job(stack_on_device),
                           Job(list_on_device), Job(walk_on_device)}) {
        EXPECT_EQ(rights_of(job), Rights::kGraphics) << job.index();
    }
}

} // namespace
} // namespace umbrixlib::test
