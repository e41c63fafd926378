// SPDX-License-Identifier: MIT
#include "toolkit/files/temporary.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::Failure;
using toolkit::Fault;
using toolkit::OutputFile;

class Temporary : public testing::Test {
protected:
    static std::string content_of(fs::path const& file)
    {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    std::size_t entries() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
    }

    /// The fault that @p body fails with; kUnexpected if it does not fail.
    template <typename Body>
    static Fault fault_of(Body&& body)
    {
        try {
            body();
        } catch (Failure const& failure) {
            return failure.fault;
        }
        return Fault::kUnexpected;
    }

    TemporaryFolder folder_;
};

TEST_F(Temporary, OutputTakesItsNameInTheEnd)
{
    fs::path const target = folder_ / "a.png";
    OutputFile output(target, ".png");
    EXPECT_EQ(output.temporary().parent_path(), folder_.path());
    EXPECT_EQ(output.temporary().extension(), ".png");
    EXPECT_TRUE(toolkit::is_temporary_name(output.temporary()));
    EXPECT_FALSE(toolkit::is_temporary_name(target));
    std::ofstream(output.temporary()) << "new";
    EXPECT_FALSE(fs::exists(target));
    output.move_into_place(false);
    EXPECT_EQ(content_of(target), "new");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(Temporary, OutputThatIsNotFinishedLeavesNothing)
{
    {
        OutputFile const output(folder_ / "a.png", ".png");
        EXPECT_EQ(entries(), 1U);
    }
    EXPECT_EQ(entries(), 0U);
}

TEST_F(Temporary, OutputReplacesAFileOnlyIfToldTo)
{
    fs::path const target = folder_ / "a.png";
    OutputFile output(target, ".png");
    std::ofstream(output.temporary()) << "new";
    std::ofstream(target) << "came meanwhile";
    EXPECT_EQ(fault_of([&] { output.move_into_place(false); }), Fault::kOutputAppeared);
    EXPECT_EQ(content_of(target), "came meanwhile");
    output.move_into_place(true);
    EXPECT_EQ(content_of(target), "new");
}

TEST_F(Temporary, OutputCannotReplaceAFolder)
{
    fs::path const target = folder_ / "a.png";
    OutputFile output(target, ".png");
    fs::create_directory(target);
    EXPECT_EQ(fault_of([&] { output.move_into_place(true); }), Fault::kNameNotTaken);
}

TEST_F(Temporary, OutputHasTheAccessRightsOfTheFileItReplaces)
{
    fs::path const target = folder_ / "a.png";
    std::ofstream(target) << "old";
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    OutputFile output(target, ".png");
    output.move_into_place(true);
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Temporary, OutputIsNotWhatSomebodyPutsInItsPlace)
{
    fs::path const target = folder_ / "a.png";
    std::ofstream(target) << "old";
    std::ofstream(folder_ / "private") << "private";
    {
        OutputFile output(target, ".png");
        fs::remove(output.temporary());
        fs::create_symlink("private", output.temporary());
        EXPECT_EQ(fault_of([&] { output.move_into_place(true); }), Fault::kNameNotTaken);
    }
    EXPECT_EQ(content_of(target), "old");
    EXPECT_EQ(content_of(folder_ / "private"), "private");
    EXPECT_EQ(entries(), 3U) << "the link is not ours";
    OutputFile output(target, ".png");
    fs::remove(output.temporary());
    EXPECT_EQ(fault_of([&] { output.move_into_place(true); }), Fault::kNameNotTaken);
}

TEST_F(Temporary, OutputWantsAFolder)
{
    EXPECT_EQ(fault_of([&] { OutputFile(folder_ / "nowhere" / "a.png", ".png"); }),
              Fault::kFolderTakesNoFile);
}

TEST_F(Temporary, LinksAreSeenThroughForTheFolder)
{
    fs::create_directory(folder_ / "below");
    std::ofstream(folder_ / "below" / "a.png");
    fs::create_symlink("below/a.png", folder_ / "link.png");
    fs::path const real = fs::canonical(folder_.path());
    EXPECT_EQ(toolkit::output_folder(folder_ / "link.png"), real / "below");
    EXPECT_EQ(toolkit::output_folder(folder_ / "new.png"), real);
}

} // namespace
} // namespace umbrixlib::test
