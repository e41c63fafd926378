// SPDX-License-Identifier: MIT
/// Where results go, and outputs that cannot be written.
#include "tool.h"

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace umbrixlib::test {
namespace {

class ToolOutput : public ToolTest {
protected:
    ToolOutput() { write("hill.tga", hill(64)); }
};

TEST_F(ToolOutput, IsNamedAfterTheInput)
{
    for (auto const& [input, output] :
         {std::pair("rock_h.tga", "rock_Umbrix.tga"), std::pair("rock_HEIGHT.tga", "rock_Umbrix.tga"),
          std::pair("wall.tga", "wall_Umbrix.tga"), std::pair("a.b_n.TGA", "a.b_Umbrix.TGA")}) {
        write(input, hill(8));
        EXPECT_EQ(run({"map", input}).code, 0);
        EXPECT_TRUE(files().contains(output)) << output;
        std::filesystem::remove(folder() / output);
    }
}

TEST_F(ToolOutput, IsKeptUnlessToldToReplaceIt)
{
    write("old.tga", {1, 2, 3});
    Outcome const outcome = run({"map", "hill.tga", "-o", "old.tga"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix map", "old.tga"));
    EXPECT_EQ(read("old.tga"), (Bytes{1, 2, 3}));
    EXPECT_EQ(run({"map", "hill.tga", "-o", "old.tga", "--overwrite"}).code, 0);
    EXPECT_EQ(tga("old.tga").width, 64);
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "old.tga"}));
}

TEST_F(ToolOutput, KeepsTheAccessRightsOfTheFileItReplaces)
{
    write("old.tga", {1});
    ASSERT_EQ(chmod((folder() / "old.tga").c_str(), 0640), 0);
    ASSERT_EQ(run({"map", "hill.tga", "-o", "old.tga", "--overwrite"}).code, 0);
    struct stat status = {};
    ASSERT_EQ(stat((folder() / "old.tga").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
}

TEST_F(ToolOutput, IsTheFileBehindALink)
{
    write("real.tga", {1});
    std::filesystem::create_symlink("real.tga", folder() / "link.tga");
    ASSERT_EQ(run({"map", "hill.tga", "-o", "link.tga", "--overwrite"}).code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder() / "link.tga"));
    EXPECT_EQ(tga("real.tga").width, 64);
}

TEST_F(ToolOutput, IsNeverTheInput)
{
    Bytes const before = read("hill.tga");
    for (char const* name : {"hill.tga", "./hill.tga"}) {
        Outcome const outcome = run({"map", "hill.tga", "-o", name, "--overwrite"});
        EXPECT_EQ(outcome.code, 2);
        EXPECT_TRUE(complains_about(outcome, "umbrix map", name));
    }
    EXPECT_EQ(read("hill.tga"), before);
}

TEST_F(ToolOutput, WantsAFolderThatTakesFiles)
{
    write("file", {1});
    for (char const* name : {"no/such/folder/x.tga", "file/x.tga", "/proc/x.tga"}) {
        Outcome const outcome = run({"map", "hill.tga", "-o", name});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix map", name));
    }
    EXPECT_EQ(files(), (std::set<std::string>{"file", "hill.tga"}));
}

TEST_F(ToolOutput, RefusesFormatsThatCannotBeWritten)
{
    for (char const* name : {"x.gif", "x.mng", "x.webp", "x.raw", "x"}) {
        Outcome const outcome = run({"map", "hill.tga", "-o", name});
        EXPECT_EQ(outcome.code, 2);
        EXPECT_TRUE(complains_about(outcome, "umbrix map", name));
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga"}));
}

constexpr char const* kExtensions[] = {"png", "tga",  "tif", "tiff", "bmp", "psd", "sgi",
                                       "rgb", "rgba", "bw",  "pcx",  "ppm", "pgm", "pbm",
                                       "vtf", "jpg",  "jpe", "jpeg", "dds", "hdr"};

TEST_F(ToolOutput, ReadsBackInEveryFormat)
{
    for (char const* extension : kExtensions) {
        std::string const name = std::string("x.") + extension;
        Outcome const outcome = run({"normal", "hill.tga", "-o", name});
        EXPECT_EQ(outcome.code, 0) << name << outcome.err;
        bool const warns = outcome.err.find("umbrix normal: note: " + name) != std::string::npos;
        EXPECT_EQ(warns, std::set<std::string>({"jpg", "jpe", "jpeg", "dds", "hdr"}).contains(extension))
            << name;
        EXPECT_EQ(run({"relight", name, "--force", "-o", "again.tga", "--overwrite"}).code, 0) << name;
    }
}

TEST_F(ToolOutput, IsTheSameBytesAtAnotherTime)
{
    auto const write_all = [&](std::string const& stem) {
        for (char const* extension : kExtensions) {
            EXPECT_EQ(run({"normal", "hill.tga", "-o", stem + "." + extension}).code, 0) << extension;
        }
    };
    write_all("first");
    sleep(1); // the dates of files count seconds
    write_all("second");
    for (char const* extension : kExtensions) {
        EXPECT_EQ(read(std::string("first.") + extension), read(std::string("second.") + extension))
            << extension;
    }
}

TEST_F(ToolOutput, StandsUprightWhateverTheName)
{
    // The library turns the rows over for a name with ".vtf" anywhere in it.
    ASSERT_EQ(run({"map", "hill.tga", "-o", "plain.tga"}).code, 0);
    write("ramp.tga", height_map(16, 8, [](int x, int y) { return 100 + y * 10 + x; }));
    ASSERT_EQ(run({"map", "ramp.tga", "-o", "expected.tga"}).code, 0);
    ASSERT_EQ(run({"map", "ramp.tga", "-o", "x.vtf.tga"}).code, 0);
    EXPECT_EQ(read("x.vtf.tga"), read("expected.tga"));
    for (char const* name : {"x.vtf", "y.VTF"}) {
        ASSERT_EQ(run({"map", "ramp.tga", "-o", name}).code, 0);
        ASSERT_EQ(run({"relight", name, "-o", "1.tga", "--overwrite"}).code, 0);
        ASSERT_EQ(run({"relight", "expected.tga", "-o", "2.tga", "--overwrite"}).code, 0);
        EXPECT_EQ(read("1.tga"), read("2.tga"));
    }
}

TEST_F(ToolOutput, WantsSidesThatTheFormatCanHold)
{
    write("odd.tga", height_map(20, 16, [](int x, int) { return x; }));
    Outcome const vtf = run({"map", "odd.tga", "-o", "x.vtf"});
    EXPECT_EQ(vtf.code, 1);
    EXPECT_TRUE(complains_about(vtf, "umbrix map", "x.vtf"));

    write("wide.tga", height_map(65501, 1, [](int x, int) { return x & 255; }));
    Outcome const jpeg = run({"relight", "wide.tga", "-o", "x.jpg"}); // its encoder takes no more
    EXPECT_EQ(jpeg.code, 1);
    EXPECT_TRUE(complains_about(jpeg, "umbrix relight", "x.jpg"));
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "odd.tga", "wide.tga"}));
}

/// Room for a part of the output only, on a file system of its own where the test may mount one, and else by
/// a limit on the size of files. Both make the encoder's writes fail half way.
void leave_little_room(std::filesystem::path const& place)
{
    if (unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        mount("none", place.c_str(), "tmpfs", 0, "size=64k") == 0) {
        return;
    }
    rlimit const limit{65536, 65536};
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(ToolOutput, IsNotWrittenToAFullDisk)
{
    std::filesystem::path const place = folder() / "small";
    std::filesystem::create_directory(place);
    write("large.tga", height_map(512, 512, [](int x, int y) { return x * y * 7919 >> 3; }));
    for (char const* extension :
         {"tga", "png", "bmp", "tif", "sgi", "psd", "pcx", "ppm", "vtf", "hdr", "dds"}) {
        std::string const name = std::string("small/x.") + extension;
        Outcome const outcome =
            run({"relight", "large.tga", "-o", name}, {}, [&] { leave_little_room(place); });
        EXPECT_EQ(outcome.code, 1) << name;
        EXPECT_TRUE(complains_about(outcome, "umbrix relight", name));
    }
}

TEST_F(ToolOutput, IsNotWrittenBeyondALimitOnFileSizes)
{
    write("large.tga", hill(256));
    write("old.bmp", {1, 2, 3});
    auto const limit_files = [] {
        rlimit const limit{65536, 65536};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    Outcome const outcome = run({"relight", "large.tga", "-o", "old.bmp", "--overwrite"}, {}, limit_files);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(complains_about(outcome, "umbrix relight", "old.bmp"));
    EXPECT_EQ(read("old.bmp"), (Bytes{1, 2, 3}));

    Outcome const map = run({"map", "large.tga", "-o", "new.tga", "--rays", "1"}, {}, limit_files);
    EXPECT_EQ(map.code, 1);
    EXPECT_TRUE(complains_about(map, "umbrix map", "new.tga"));
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "large.tga", "old.bmp"}));
}

} // namespace
} // namespace umbrixlib::test
