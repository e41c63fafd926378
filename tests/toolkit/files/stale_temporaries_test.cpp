// SPDX-License-Identifier: MIT
#include "toolkit/files/stale_temporaries.h"

#include "temporary_folder.h"
#include "toolkit/files/temporary.h"

#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

class StaleTemporaries : public testing::Test {
protected:
    fs::path const& folder() const { return folder_.path(); }

    std::set<std::string> names() const
    {
        std::set<std::string> all;
        for (auto const& entry : fs::directory_iterator(folder())) {
            all.insert(entry.path().filename().string());
        }
        return all;
    }

    /// Does @p body in a process that is killed then.
    template <typename Body>
    static void in_killed_process(Body&& body)
    {
        pid_t const process = fork();
        if (process == 0) {
            body();
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        waitpid(process, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
    }

private:
    TemporaryFolder folder_;
};

TEST_F(StaleTemporaries, AreThoseOfKilledProcesses)
{
    in_killed_process([&] {
        auto* const output = new umbrixlib::toolkit::OutputFile(folder() / "a.tga", ".tga");
        std::ofstream(output->temporary()) << "half";
    });
    EXPECT_EQ(names().size(), 1U);
    umbrixlib::toolkit::remove_stale_outputs(folder());
    EXPECT_EQ(names(), std::set<std::string>{});
}

TEST_F(StaleTemporaries, AreNotThoseInUse)
{
    auto output = std::make_unique<umbrixlib::toolkit::OutputFile>(folder() / "a.tga", ".tga");
    std::set<std::string> const before = names();
    EXPECT_EQ(before.size(), 1U);
    umbrixlib::toolkit::remove_stale_outputs(folder());
    EXPECT_EQ(names(), before);
    output->move_into_place(false);
    umbrixlib::toolkit::remove_stale_outputs(folder());
    EXPECT_EQ(names(), std::set<std::string>{"a.tga"});
}

TEST_F(StaleTemporaries, AreNothingElse)
{
    std::string const output = umbrixlib::toolkit::output_prefix();
    std::ofstream(folder() / ".umbrix-00000000-abcdef.tga") << "of another machine";
    std::ofstream(folder() / ".umbrix-notes") << "of somebody";
    std::ofstream(folder() / "precious.tga") << "precious";
    fs::create_symlink("precious.tga", folder() / (output + "abcdef.tga"));
    fs::create_directory(folder() / (output + "bcdefg.tga"));
    fs::create_directory(folder() / "target");
    fs::create_directory_symlink("target", folder() / (output + "cdefgh.tga"));
    std::set<std::string> const before = names();
    EXPECT_EQ(before.size(), 7U);
    umbrixlib::toolkit::remove_stale_outputs(folder());
    EXPECT_EQ(names(), before);
}

TEST_F(StaleTemporaries, MayBeLookedForWhereNothingIs)
{
    umbrixlib::toolkit::remove_stale_outputs(folder() / "nowhere");
}

} // namespace
} // namespace umbrixlib::test
