// SPDX-License-Identifier: MIT
/// What Landlock leaves of the files by name. On a kernel without it nothing is tested.
#include "toolkit/workers/sandbox/landlock_internal.h"

#include "child.h"
#include "temporary_folder.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace umbrixlib::test {
namespace {

using toolkit::close_folders;

class Landlock : public testing::Test {
protected:
    void SetUp() override
    {
        if (in_child([] { return close_folders({}) ? 0 : 1; }) != 0) {
            GTEST_SKIP() << "this kernel has no Landlock";
        }
    }

private:
    TemporaryFolder own_;

protected:
    std::string const folder_ = own_.path().string();
};

int to_read(std::string const& file)
{
    return error_of(SYS_openat, AT_FDCWD, file.c_str(), O_RDONLY);
}

int to_make(std::string const& file)
{
    return error_of(SYS_openat, AT_FDCWD, file.c_str(), O_RDWR | O_CREAT, 0600);
}

TEST_F(Landlock, LeavesNoFileIfNoneIsNamed)
{
    EXPECT_EQ(in_child([&] {
                  close_folders({});
                  return to_read("/proc/self/status") == EACCES && to_make(folder_ + "/a") == EACCES &&
                                 error_of(SYS_mkdirat, AT_FDCWD, (folder_ + "/b").c_str(), 0700) == EACCES
                             ? 0
                             : 1;
              }),
              0);
}

TEST_F(Landlock, LeavesOpenFilesAsTheyAre)
{
    EXPECT_EQ(in_child([&] {
                  int const file = open((folder_ + "/a").c_str(), O_RDWR | O_CREAT, 0600);
                  close_folders({});
                  char bytes[3] = {};
                  return write(file, "abc", 3) == 3 && ftruncate(file, 2) == 0 &&
                                 lseek(file, 0, SEEK_SET) == 0 && read(file, bytes, 3) == 2
                             ? 0
                             : 1;
              }),
              0);
}

TEST_F(Landlock, LeavesAllThatIsBelowANamedFolder)
{
    EXPECT_EQ(in_child([&] {
                  close_folders({false, {folder_, "/there/is/no/such/folder", ""}});
                  bool const inside = to_make(folder_ + "/a") == 0 && to_read(folder_ + "/a") == 0 &&
                                      mkdir((folder_ + "/b").c_str(), 0700) == 0 &&
                                      rename((folder_ + "/a").c_str(), (folder_ + "/b/a").c_str()) == 0 &&
                                      unlink((folder_ + "/b/a").c_str()) == 0;
                  bool const outside = to_read("/proc/self/status") == EACCES &&
                                       to_read(folder_ + "/..") == EACCES &&
                                       to_make(folder_ + "/../outside") == EACCES;
                  return inside && outside ? 0 : 1;
              }),
              0);
}

TEST_F(Landlock, LeavesAllToReadIfThatIsAsked)
{
    EXPECT_EQ(in_child([&] {
                  close_folders({true, {}});
                  return to_read("/proc/self/status") == 0 && to_make(folder_ + "/a") == EACCES ? 0 : 1;
              }),
              0);
}

} // namespace
} // namespace umbrixlib::test
