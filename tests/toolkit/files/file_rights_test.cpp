// SPDX-License-Identifier: MIT
#include "toolkit/files/file_rights.h"

#include "temporary_folder.h"
#include "toolkit/files/temporary.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::OutputFile;
using toolkit::rights_in_place_of;

TEST(FileRights, AreTheOldOnesWithoutWhatRuns)
{
    EXPECT_EQ(rights_in_place_of(0640, true, true), 0640U);
    EXPECT_EQ(rights_in_place_of(0606, true, true), 0606U);
    EXPECT_EQ(rights_in_place_of(06777, true, true), 0666U);
    EXPECT_EQ(rights_in_place_of(S_IFREG | 01755U, true, true), 0644U);
}

TEST(FileRights, AreNoNewOnesForAnybodyIfTheOwnerOrTheGroupChanges)
{
    for (bool const owner : {false, true}) {
        EXPECT_EQ(rights_in_place_of(0660, owner, false), 0600U) << "the new group had no right";
        EXPECT_EQ(rights_in_place_of(0604, owner, false), 0600U) << "the old group had no right";
        EXPECT_EQ(rights_in_place_of(0646, owner, false), 0644U);
    }
    EXPECT_EQ(rights_in_place_of(0660, false, true), 0600U);
    EXPECT_EQ(rights_in_place_of(06777, false, false), 0666U);
}

struct stat status_of_file(fs::path const& file)
{
    struct stat status = {};
    stat(file.c_str(), &status);
    return status;
}

TEST(FileRights, SetUserAndSetGroupAreNotCopied)
{
    TemporaryFolder const folder;
    fs::path const target = folder / "a.png";
    std::ofstream(target) << "old";
    ASSERT_EQ(chmod(target.c_str(), 06755), 0);
    OutputFile(target, ".png").move_into_place(true);
    EXPECT_EQ(status_of_file(target).st_mode & 07777U, 0644U);
}

TEST(FileRights, RootKeepsOwnerAndGroup)
{
    if (getuid() != 0) {
        GTEST_SKIP() << "only root gives files away";
    }
    TemporaryFolder const folder;
    fs::path const target = folder / "a.png";
    std::ofstream(target) << "old";
    ASSERT_EQ(chown(target.c_str(), 12345, 23456), 0);
    ASSERT_EQ(chmod(target.c_str(), 0660), 0);
    OutputFile(target, ".png").move_into_place(true);
    EXPECT_EQ(status_of_file(target).st_uid, 12345U);
    EXPECT_EQ(status_of_file(target).st_gid, 23456U);
    EXPECT_EQ(status_of_file(target).st_mode & 07777U, 0660U);
}

TEST(FileRights, AnotherOwnersFileBecomesOurs)
{
    if (getuid() != 0) {
        GTEST_SKIP() << "only root makes files of another owner";
    }
    TemporaryFolder const folder;
    fs::path const target = folder / "a.png";
    std::ofstream(target) << "old";
    ASSERT_EQ(chown(target.c_str(), 12345, 23456), 0);
    ASSERT_EQ(chmod(target.c_str(), 06664), 0);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    pid_t const user = fork();
    if (user == 0) {
        bool const changed = setgid(34567) == 0 && setuid(34567) == 0;
        OutputFile(target, ".png").move_into_place(true);
        _exit(changed ? 0 : 1);
    }
    int end = 1;
    ASSERT_EQ(waitpid(user, &end, 0), user);
    ASSERT_EQ(end, 0);
    EXPECT_EQ(status_of_file(target).st_uid, 34567U);
    EXPECT_EQ(status_of_file(target).st_gid, 34567U);
    EXPECT_EQ(status_of_file(target).st_mode & 07777U, 0644U);
}

} // namespace
} // namespace umbrixlib::test
