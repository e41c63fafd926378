// SPDX-License-Identifier: MIT
#include "toolkit/files/preflight.h"

#include "temporary_folder.h"
#include "toolkit/base/failure.h"

#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace umbrixlib::test {
namespace {

namespace fs = std::filesystem;

using toolkit::check_input;
using toolkit::check_output_file;
using toolkit::Failure;
using toolkit::Fault;

class Preflight : public testing::Test {
protected:
    Preflight()
    {
        std::ofstream(folder_ / "a.png") << "picture";
        std::ofstream(folder_ / "empty.png").flush();
        fs::create_directory(folder_ / "below");
        fs::create_symlink("a.png", folder_ / "link.png");
        fs::create_symlink("nowhere.png", folder_ / "dangling.png");
    }

    /// "what; remedy" of the failure of @p body, or "fine".
    template <typename Body>
    static std::string told(Fault expected, Body&& body)
    {
        try {
            body();
        } catch (Failure const& failure) {
            EXPECT_EQ(static_cast<int>(failure.fault), static_cast<int>(expected)) << failure.what();
            return failure.what() + (failure.remedy.empty() ? "" : "; " + failure.remedy);
        }
        return "fine";
    }

    std::string input(Fault expected, char const* name) const
    {
        return told(expected, [&] { check_input(folder_ / name); });
    }

    std::string output(Fault expected, char const* name, bool overwrite) const
    {
        return told(expected, [&] { check_output_file(folder_ / name, overwrite); });
    }

    fs::path real() const { return fs::canonical(folder_.path()); }

    TemporaryFolder folder_;
};

TEST_F(Preflight, InputsAreFilesWithSomethingInThem)
{
    EXPECT_EQ(input(Fault::kUnexpected, "a.png"), "fine");
    EXPECT_EQ(input(Fault::kUnexpected, "link.png"), "fine");
    EXPECT_EQ(input(Fault::kMissingFile, "b.png"), "there is no such file");
    EXPECT_EQ(input(Fault::kMissingFile, "dangling.png"), "there is no such file");
    EXPECT_EQ(input(Fault::kNotPlainFile, "below"), "it is a folder; name an image file");
    EXPECT_EQ(input(Fault::kEmptyFile, "empty.png"), "it is empty");
    EXPECT_EQ(told(Fault::kNotPlainFile, [] { check_input("/dev/null", "a work list"); }),
              "it is not a plain file; name a work list");
}

TEST_F(Preflight, InputsMayBeRead)
{
    if (getuid() == 0) {
        GTEST_SKIP() << "root may read everything";
    }
    fs::permissions(folder_ / "a.png", fs::perms::none);
    EXPECT_EQ(input(Fault::kUnreadable, "a.png"), "it cannot be read: Permission denied");
}

TEST_F(Preflight, OutputsHaveAFolder)
{
    EXPECT_EQ(output(Fault::kUnexpected, "new.png", false), "fine");
    EXPECT_EQ(output(Fault::kMissingFolder, "nowhere/new.png", true), "its folder does not exist");
    EXPECT_EQ(output(Fault::kMissingFolder, "a.png/new.png", true), "its folder does not exist");
    EXPECT_EQ(check_output_file("new.png", false), "./new.png");
}

TEST_F(Preflight, OutputsReplacePlainFilesAndOnlyIfToldTo)
{
    EXPECT_EQ(output(Fault::kOutputExists, "a.png", false), "it exists");
    EXPECT_EQ(output(Fault::kUnexpected, "a.png", true), "fine");
    EXPECT_EQ(output(Fault::kNotPlainFile, "below", true), "it is a folder; give a file name");
    for (bool const overwrite : {false, true}) {
        EXPECT_EQ(output(Fault::kNotPlainFile, "dangling.png", overwrite),
                  "it is a link to a file that is not there; remove the link, or name the file itself");
    }
}

TEST_F(Preflight, OutputsHaveNamesThatTheFolderTakes)
{
    auto const longest = static_cast<std::size_t>(pathconf(folder_.path().c_str(), _PC_NAME_MAX));
    std::string const fits(longest, 'n');
    EXPECT_EQ(output(Fault::kUnexpected, fits.c_str(), false), "fine");
    std::string const too_long = fits + "n";
    for (bool const overwrite : {false, true}) {
        EXPECT_EQ(output(Fault::kNameTooLong, too_long.c_str(), overwrite),
                  fmt::format("its name has {} bytes, and its folder takes {}", longest + 1, longest));
    }
}

TEST_F(Preflight, OutputsAreTheFilesBehindLinks)
{
    EXPECT_EQ(check_output_file(folder_ / "link.png", true), real() / "a.png");
    EXPECT_EQ(check_output_file(folder_ / "new.png", false), folder_ / "new.png");
}

} // namespace
} // namespace umbrixlib::test
