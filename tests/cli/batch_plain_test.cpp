// SPDX-License-Identifier: MIT
/// The library's own walk of a folder, and folders on a graphics processor.
#include "tool.h"

namespace umbrixlib::test {
namespace {

class BatchPlain : public ToolTest {
protected:
    BatchPlain()
    {
        std::filesystem::create_directories(folder() / "rocks/deep");
        write("rocks/x_H.tga", hill(32));
        write("rocks/deep/y.tga", hill(24));
        write("rocks/no.tga", {'n', 'o'});
    }

    Arguments plain(Arguments const& more = {}, char const* pattern = "*.tga") const
    {
        Arguments arguments{"batch", "--plain", "rocks", "--height-map", "--n-scale",
                            "2",     "--rays",  "8",     "--pattern",    pattern};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }
};

TEST_F(BatchPlain, IsTheLibrarysOwnWalk)
{
    Outcome const outcome = run(plain({"--recurse"}));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    Arguments const options{"--height-map", "--n-scale", "2", "--rays", "8", "-o"};
    for (auto const& [source, made] : {std::pair("rocks/x_H.tga", "rocks/x_Umbrix.tga"),
                                       std::pair("rocks/deep/y.tga", "rocks/deep/y_Umbrix.tga")}) {
        Arguments map{"map", source};
        map.insert(map.end(), options.begin(), options.end());
        map.insert(map.end(), {"expected.tga", "--overwrite"});
        ASSERT_EQ(run(map).code, 0);
        EXPECT_EQ(tga(made).pixels, tga("expected.tga").pixels) << made;
    }
    EXPECT_TRUE(std::filesystem::exists(folder() / "rocks/no_Umbrix.tga"))
        << "made of the image bound before";
    run(plain());
    EXPECT_TRUE(std::filesystem::exists(folder() / "rocks/x_Umbrix_Umbrix.tga")) << "results are inputs, too";
}

/// Of these the library makes maps of one value, or of bytes that are no texels.
TEST_F(BatchPlain, RefusesWhatIsNot8BitColourBeforeAnythingIsWritten)
{
    std::string const rocks = (std::filesystem::canonical(folder()) / "rocks").string();
    std::filesystem::remove(folder() / "rocks/no.tga");
    auto const refusal = [&](std::string const& name, std::string const& what) {
        return "umbrix batch: error: " + rocks + "/" + name + ": it is " + what +
               ", and the library's own walk makes maps of 8-bit colour only; leave --plain out, or the file "
               "with --include\n";
    };
    auto const png = [&](std::string const& name, PngColour colour, int depth, std::size_t row) {
        write("rocks/" + name, png_bytes(2, colour, depth, {Bytes(row, 90), Bytes(row, 91)}));
    };
    png("deep/grey.png", PngColour::kGrey, 8, 2);
    png("other.png", PngColour::kRgb, 16, 12);
    png("grey.txt", PngColour::kGrey, 8, 2);
    for (auto const& [pattern, error] : {std::pair("*.PNG", refusal("deep/grey.png", "8-bit grey")),
                                         {"o*.png", refusal("other.png", "16-bit colour")},
                                         {"?rey.*", refusal("deep/grey.png", "8-bit grey")},
                                         {"*.*", refusal("deep/grey.png", "8-bit grey")}}) {
        Outcome const outcome = run(plain({"--recurse"}, pattern));
        EXPECT_EQ(outcome.code, 1) << pattern;
        EXPECT_EQ(outcome.err, error) << pattern;
    }
    EXPECT_EQ(run(plain({}, "[o]*.png")).code, 0) << "no wildcard of the walk's";
    Outcome const on_device = run(plain({"--gpu", "--recurse"}, "*"), {{"CORALITH_BACKEND", "host"}});
    EXPECT_EQ(on_device.code, 1);
    EXPECT_NE(on_device.err.find(refusal("deep/grey.png", "8-bit grey")), std::string::npos) << on_device.err;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder())) {
        EXPECT_EQ(entry.path().string().find("_Umbrix"), std::string::npos) << entry.path();
    }
}

TEST_F(BatchPlain, GuessesNothingAndTakesNoOtherRules)
{
    EXPECT_EQ(run({"batch", "--plain", "rocks"}).code, 2);
    EXPECT_EQ(run({"batch", "--plain", "rocks", "--height-map"}).code, 2);
    EXPECT_EQ(run({"batch", "--plain", "rocks", "rocks/deep", "--height-map", "--n-scale", "1"}).code, 2);
    EXPECT_EQ(run({"batch", "--plain", "nowhere", "--height-map", "--n-scale", "1"}).code, 2);
    for (char const* option : {"--include=*.tga", "--exclude=a*", "--normal", "--overwrite", "--update",
                               "--dry-run", "--json", "--height-in-alpha"}) {
        EXPECT_EQ(run(plain({option})).code, 2) << option;
    }
}

TEST_F(BatchPlain, StopsAfterTheFileAtWork)
{
    for (int i = 0; i < 12; ++i) {
        write("rocks/big" + std::to_string(10 + i) + ".tga", hill(256));
    }
    RunningTool tool(folder(),
                     {"batch", "--plain", "rocks", "--height-map", "--n-scale", "2", "--rays", "600",
                      "--radius", "1", "--relief", "1", "--pattern", "big*.tga"},
                     with_scratch());
    for (int i = 0; i < 10000 && !std::filesystem::exists(folder() / "rocks/big10_Umbrix.tga"); ++i) {
        usleep(2000);
    }
    tool.send(SIGINT);
    Outcome const outcome = tool.finish();
    EXPECT_EQ(outcome.code, 130) << outcome.err;
    int made = 0;
    for (int i = 0; i < 12; ++i) {
        std::string const name = "rocks/big" + std::to_string(10 + i) + "_Umbrix.tga";
        if (std::filesystem::exists(folder() / name)) {
            EXPECT_EQ(tga(name).width, 256) << "whole";
            ++made;
        }
    }
    EXPECT_GE(made, 1);
    EXPECT_LT(made, 12);
}

TEST_F(BatchPlain, AFolderOnAGraphicsDeviceIsWhatMapMakesThere)
{
    Arguments const options{"--gpu", "--match-cpu", "--rays", "8", "--height-map"};
    Arguments batch{"batch", "rocks", "--pattern", "x*"};
    batch.insert(batch.end(), options.begin(), options.end());
    Outcome const outcome = run(batch, {{"CORALITH_BACKEND", "host"}});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    Arguments map{"map", "rocks/x_H.tga", "-o", "expected.tga"};
    map.insert(map.end(), options.begin(), options.end());
    ASSERT_EQ(run(map, {{"CORALITH_BACKEND", "host"}}).code, 0);
    EXPECT_EQ(read("rocks/x_Umbrix.tga"), read("expected.tga"));
    EXPECT_EQ(run({"batch", "rocks", "--normal", "--gpu"}).code, 2);
}

} // namespace
} // namespace umbrixlib::test
