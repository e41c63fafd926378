// SPDX-License-Identifier: MIT
#include "document/recovery.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/wait.h>
#include <unistd.h>

namespace umbrix_desktop {
namespace {

namespace fs = std::filesystem;
using umbrixlib::test::TemporaryFolder;

Project project_of(float relief)
{
    Project project;
    project.state.source = "/brick.png";
    project.state.settings.relief = relief;
    project.saved_as = "/brick.toml";
    return project;
}

/// A process that does something and then waits to be killed.
class Child {
public:
    explicit Child(std::function<void()> const& act)
    {
        int ready[2] = {};
        EXPECT_EQ(pipe(ready), 0);
        process_ = fork();
        if (process_ == 0) {
            act();
            static_cast<void>(!write(ready[1], "r", 1));
            for (;;) {
                pause();
            }
        }
        close(ready[1]);
        char letter = 0;
        EXPECT_EQ(read(ready[0], &letter, 1), 1);
        close(ready[0]);
    }
    ~Child() { kill(); }
    Child(Child const&) = delete;
    Child& operator=(Child const&) = delete;

    void kill()
    {
        if (process_ > 0) {
            ::kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
            process_ = -1;
        }
    }

private:
    pid_t process_;
};

std::ptrdiff_t files_in(fs::path const& folder)
{
    return std::distance(fs::directory_iterator(folder), {});
}

TEST(DesktopRecovery, FindsWhatAKilledProcessLeft)
{
    TemporaryFolder const folder;
    Child child([&] {
        auto* const copy = new RecoveryCopy(folder.path());
        copy->write(project_of(0.5f));
        copy->write(project_of(0.25f));
    });
    EXPECT_TRUE(left_documents(folder.path()).empty());
    child.kill();
    auto const left = left_documents(folder.path());
    ASSERT_EQ(left.size(), 1U);
    ASSERT_TRUE(left[0].project);
    EXPECT_EQ(left[0].project->state, project_of(0.25f).state);
    EXPECT_EQ(left[0].project->saved_as, "/brick.toml");
    remove_left(left[0].file);
    EXPECT_TRUE(left_documents(folder.path()).empty());
    EXPECT_EQ(files_in(folder.path()), 0);
}

TEST(DesktopRecovery, FindsNothingOfAProcessAtWork)
{
    TemporaryFolder const folder;
    RecoveryCopy copy(folder.path());
    copy.write(project_of(0.5f));
    Child const other([&] {
        auto* const its_own = new RecoveryCopy(folder.path());
        its_own->write(project_of(0.25f));
    });
    EXPECT_TRUE(left_documents(folder.path()).empty());
    EXPECT_TRUE(fs::exists(copy.file()));
}

TEST(DesktopRecovery, LeavesNothingAtACleanEnd)
{
    TemporaryFolder const folder;
    fs::path const inner = folder.path() / "a" / "b";
    {
        RecoveryCopy copy(inner);
        copy.write(project_of(0.5f));
        EXPECT_EQ(files_in(inner), 2);
    }
    EXPECT_EQ(files_in(inner), 0);
}

TEST(DesktopRecovery, LeavesNothingOfAProcessWithoutUnsavedWork)
{
    TemporaryFolder const folder;
    Child child([&] {
        auto* const copy = new RecoveryCopy(folder.path());
        copy->write(project_of(0.5f));
        copy->remove();
    });
    child.kill();
    EXPECT_TRUE(left_documents(folder.path()).empty());
    EXPECT_EQ(files_in(folder.path()), 0);
}

TEST(DesktopRecovery, TellsWhyACopyCannotBeRead)
{
    TemporaryFolder const folder;
    std::ofstream(folder / "unsaved-abcdef.toml") << "version = 1\nrelief = 2\n";
    auto const left = left_documents(folder.path());
    ASSERT_EQ(left.size(), 1U);
    EXPECT_FALSE(left[0].project);
    EXPECT_NE(left[0].failure.find("relief (line 2): there is no such key"), std::string::npos)
        << left[0].failure;
}

TEST(DesktopRecovery, FindsNothingWithoutItsFolder)
{
    EXPECT_TRUE(left_documents("/nonexistent/folder").empty());
    EXPECT_THROW(RecoveryCopy("/dev/null/folder"), toolkit::Failure);
}

} // namespace
} // namespace umbrix_desktop
