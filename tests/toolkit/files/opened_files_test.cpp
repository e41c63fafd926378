// SPDX-License-Identifier: MIT
#include "toolkit/files/opened_files.h"

#include "temporary_folder.h"

#include <cerrno>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::open_ahead;
using toolkit::open_file;
using toolkit::OpenFor;

/// The error with which @p file is opened for writing after it was opened ahead; 0 if there is none.
int error_of_output(fs::path const& file)
{
    EXPECT_TRUE(open_ahead(file, OpenFor::kWriting));
    int const descriptor = open_file(file, OpenFor::kWriting);
    return descriptor < 0 ? errno : close(descriptor);
}

TEST(OpenedAhead, OutputsAreEmptyFilesOfOneName)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "private") << "private";
    std::ofstream(folder / "empty").flush();
    fs::create_symlink("private", folder / "link");
    fs::create_hard_link(folder / "private", folder / "second");
    fs::create_hard_link(folder / "empty", folder / "third");
    std::ofstream(folder / "full") << "private";
    std::ofstream(folder / "fresh").flush();
    EXPECT_EQ(error_of_output(folder / "link"), ELOOP);
    EXPECT_EQ(error_of_output(folder / "second"), EEXIST);
    EXPECT_EQ(error_of_output(folder / "third"), EEXIST);
    EXPECT_EQ(error_of_output(folder / "full"), EEXIST);
    EXPECT_EQ(error_of_output(folder / "fresh"), 0);
    EXPECT_EQ(error_of_output(folder / "new"), 0);
    EXPECT_EQ(fs::file_size(folder / "private"), 7U);
    EXPECT_EQ(fs::file_size(folder / "full"), 7U);
}

TEST(OpenedAhead, FilesStayTheSameAfterTheirNameLeadsElsewhere)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "output").flush();
    std::ofstream(folder / "private") << "private";
    ASSERT_TRUE(open_ahead(folder / "output", OpenFor::kWriting));
    fs::rename(folder / "output", folder / "moved");
    fs::create_symlink("private", folder / "output");
    int const descriptor = open_file(folder / "output", OpenFor::kWriting);
    ASSERT_EQ(write(descriptor, "new", 3), 3);
    close(descriptor);
    EXPECT_EQ(fs::file_size(folder / "moved"), 3U);
    EXPECT_EQ(fs::file_size(folder / "private"), 7U);
}

} // namespace
} // namespace umbrixlib::test
