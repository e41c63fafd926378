// SPDX-License-Identifier: MIT
/// `umbrix devices`, and --gpu of the other commands, run as a user runs them. A stand-in for the graphics
/// library is loaded before the real one: it has the devices that a test asks for, and its stages compute
/// with the operators of the processor.
#include "tool.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

constexpr char const* kCards = "Card A=opencl;Card B=cuda;Some processor=host";
constexpr int kMapSide = 64;
constexpr int kRay = 2; // of 255, with 128 rays a direction

/// As in `hill`, upside down.
Bytes hollow(int side)
{
    Bytes bytes = hill(side);
    for (std::size_t at = 18; at < bytes.size(); ++at) {
        bytes[at] = static_cast<std::uint8_t>(255 - bytes[at]);
    }
    return bytes;
}

/// A 32-bit normal map of flat ground with a hill in its alpha.
Bytes hill_in_alpha(int side)
{
    Bytes const grey = hill(side);
    Bytes pixels;
    for (std::size_t at = 18; at < grey.size(); at += 3) {
        pixels.insert(pixels.end(), {255, 127, 127, grey[at]});
    }
    return tga_bytes(side, side, 4, pixels);
}

struct Distance {
    int channels[4] = {};
    int largest = 0;
    double share = 0; ///< Of the bytes that differ.
};

Distance distance(TgaPicture const& a, TgaPicture const& b)
{
    Distance result;
    EXPECT_EQ(a.pixels.size(), b.pixels.size());
    for (int y = 0; y < a.height; ++y) {
        for (int x = 0; x < a.width; ++x) {
            for (int c = 0; c < a.channels; ++c) {
                int const difference = std::abs(a.at(x, y, c) - b.at(x, y, c));
                result.channels[c] = std::max(result.channels[c], difference);
                result.largest = std::max(result.largest, difference);
                result.share += difference == 0 ? 0.0 : 1.0 / static_cast<double>(a.pixels.size());
            }
        }
    }
    return result;
}

class Graphics : public ToolTest {
protected:
    Graphics()
    {
        write("hill.tga", hill(kMapSide));
        write("hollow.tga", hollow(kMapSide));
        write("hill_n.tga", hill_in_alpha(kMapSide));
    }

    /// Runs the tool with a stand-in that has @p devices.
    Outcome run_with(std::string const& devices, Arguments const& arguments,
                     Environment environment = {}) const
    {
        char const* const sanitizer = std::getenv("ASAN_OPTIONS");
        std::string const options = sanitizer == nullptr ? "" : std::string(sanitizer) + ":";
        environment.emplace_back("ASAN_OPTIONS", options + "verify_asan_link_order=0");
        environment.emplace_back("LD_PRELOAD", UMBRIX_GRAPHICS_STAND_IN);
        environment.emplace_back("OCL_STAND_IN_DEVICES", devices);
        return run(arguments, environment);
    }

    /// A map by the given options.
    TgaPicture map_with(Arguments arguments, std::string const& devices = kCards) const
    {
        arguments.insert(arguments.begin(), "map");
        arguments.insert(arguments.end(), {"-o", "out.tga", "--overwrite"});
        Outcome const outcome = run_with(devices, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return tga("out.tga");
    }
};

TEST_F(Graphics, DevicesAreListedWithNumberNameAndBackend)
{
    Outcome const outcome = run_with(kCards, {"devices"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "  0  Card A (opencl), taken by --gpu without a number\n"
                           "  1  Card B (cuda)\n"
                           "  2  Some processor (host)\n");
}

TEST_F(Graphics, DevicesAreListedAsJson)
{
    Outcome const outcome =
        run_with(kCards, {"devices", "--json"}, {{"OCL_STAND_IN_SKIPPED", "out of luck"}});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    nlohmann::json const report = nlohmann::json::parse(outcome.out);
    ASSERT_EQ(report.at("devices").size(), 3U);
    EXPECT_EQ(report.at("devices")[1],
              (nlohmann::json{{"number", 1}, {"name", "Card B"}, {"backend", "cuda"}, {"default", false}}));
    EXPECT_EQ(report.at("devices")[0].at("default"), true);
    EXPECT_EQ(report.at("last_error"), "out of luck");
}

TEST_F(Graphics, ALibraryWithoutDevicesIsToldOf)
{
    Outcome outcome = run_with("", {"devices"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("has no device"), std::string::npos) << outcome.out;
    outcome = run_with("", {"devices", "--json"});
    EXPECT_EQ(nlohmann::json::parse(outcome.out).at("devices").size(), 0U);
    outcome = run_with("", {"map", "hill.tga", "--gpu"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_TRUE(complains_about(outcome, "umbrix map", "--gpu"));
}

TEST_F(Graphics, TheListOfThisMachineIsWhole)
{
    Outcome const outcome = run({"devices", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    nlohmann::json const report = nlohmann::json::parse(outcome.out);
    int number = 0;
    for (nlohmann::json const& device : report.at("devices")) {
        EXPECT_EQ(device.at("number"), number);
        EXPECT_FALSE(device.at("name").get<std::string>().empty());
        EXPECT_NE(device.at("backend"), "none");
        EXPECT_EQ(device.at("default"), number == 0);
        ++number;
    }
}

TEST_F(Graphics, TheNumberOfTheDeviceMayBeLeftOut)
{
    struct Case {
        Arguments arguments;
        char const* device;
    };
    for (Case const& each : {Case{{"map", "--gpu", "hill.tga"}, "Card A (opencl)"},
                             Case{{"map", "hill.tga", "--gpu"}, "Card A (opencl)"},
                             Case{{"map", "--gpu", "1", "hill.tga"}, "Card B (cuda)"},
                             Case{{"map", "hill.tga", "--gpu=1"}, "Card B (cuda)"},
                             Case{{"map", "--gpu", "--", "hill.tga"}, "Card A (opencl)"}}) {
        Arguments arguments = each.arguments;
        arguments.insert(arguments.begin() + 1, {"-o", "out.tga", "--overwrite"});
        Outcome const outcome = run_with(kCards, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_NE(outcome.out.find(std::string("heights inverted and at full scale, on ") + each.device),
                  std::string::npos)
            << outcome.out;
        EXPECT_NE(outcome.err.find("--match-cpu gives the relief"), std::string::npos) << outcome.err;
    }
}

TEST_F(Graphics, WrongUseIsRefused)
{
    write("s.toml", Bytes());
    std::vector<Arguments> const wrong{
        {"map", "hill.tga", "--gpu=x"},
        {"map", "hill.tga", "--gpu=-1"},
        {"map", "hill.tga", "--gpu=99999999999"},
        {"map", "hill.tga", "--gpu", "3"},
        {"map", "hill.tga", "--gpu", "--gpu"},
        {"map", "hill.tga", "--match-cpu"},
        {"map", "hill.tga", "--compare-cpu"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--h-min", "5"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--h-max", "250"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--h-contrast", "0.1"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--h-brightness", "0.1"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--h-scale", "0"},
        {"map", "hill.tga", "--gpu", "--match-cpu", "--relief", "1.01"},
        {"stack", "s.toml", "--gpu"},
        {"stack", "s.toml", "--map", "m.png", "--gpu", "--match-cpu", "--h-min", "5"},
    };
    std::set<std::string> const before = files();
    for (Arguments const& arguments : wrong) {
        Outcome const outcome = run_with(kCards, arguments);
        EXPECT_EQ(outcome.code, 2) << testing::PrintToString(arguments);
        EXPECT_NE(outcome.err.find("error: --"), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
    EXPECT_EQ(files(), before);
}

TEST_F(Graphics, HeightsCountInvertedAndAtFullScale)
{
    TgaPicture const on_card = map_with({"hill.tga", "--gpu", "--n-scale", "2"});
    TgaPicture const hill_on_processor = map_with({"hill.tga", "--n-scale", "2"});
    TgaPicture const hollow_on_processor = map_with({"hollow.tga", "--h-scale", "1", "--n-scale", "2"});
    EXPECT_GT(distance(on_card, hill_on_processor).largest, 20);
    EXPECT_LE(distance(on_card, hollow_on_processor).largest, kRay);
    EXPECT_LT(distance(on_card, hollow_on_processor).share, 0.001);
}

TEST_F(Graphics, MatchCpuGivesTheMapMadeWithoutGpu)
{
    std::vector<Arguments> const kinds{
        {"hill.tga"},
        {"hill.tga", "--relief", "1"},
        {"hill.tga", "--relief", "0.3", "--no-tile", "--b-radius", "2", "--h-smooth", "1.5"},
        {"hill.tga", "--h-scale", "0.2", "--n-scale", "3", "--no-v-tile", "--mode", "squared"},
        {"hill.tga", "--no-occlusion", "--gaussian", "1", "--contrast", "0.2"},
        {"hill.tga", "--no-light", "--height-in-alpha"},
        {"hill_n.tga", "--relief", "0.4"},
        {"hill_n.tga", "--relief", "0.4", "--generate-normal", "--height-in-alpha"},
    };
    for (Arguments const& arguments : kinds) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        Arguments matched = arguments;
        matched.insert(matched.end(), {"--gpu", "--match-cpu"});
        Distance const apart = distance(map_with(arguments), map_with(matched));
        EXPECT_LE(apart.largest, kRay);
        EXPECT_LT(apart.share, 0.001);
    }
}

TEST_F(Graphics, HeightsInTheAlphaAreThoseThatWereRead)
{
    for (char const* file : {"hill.tga", "hill_n.tga"}) {
        TgaPicture const processor = map_with({file, "--height-in-alpha"});
        for (Arguments const& more : {Arguments{"--gpu"}, Arguments{"--gpu", "--match-cpu"}}) {
            Arguments arguments{file, "--height-in-alpha"};
            arguments.insert(arguments.end(), more.begin(), more.end());
            EXPECT_EQ(distance(map_with(arguments), processor).channels[3], 0) << file;
        }
    }
}

TEST_F(Graphics, CompareCpuTellsTheLargestDifferenceOfEachChannel)
{
    for (std::string const file : {"hill.tga", "hill_n.tga"}) {
        Outcome const outcome =
            run_with(kCards, {"map", file, "--gpu", "--compare-cpu", "-o", "gpu.tga", "--overwrite"});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        Distance const apart = distance(tga("gpu.tga"), map_with({file}));
        std::string words = "without --gpu, of 255: red " + std::to_string(apart.channels[0]) + ", green " +
                            std::to_string(apart.channels[1]) + ", blue " + std::to_string(apart.channels[2]);
        words += file == "hill_n.tga" ? ", alpha " + std::to_string(apart.channels[3]) + "\n" : "\n";
        EXPECT_NE(outcome.out.find(words), std::string::npos) << outcome.out << words;
        EXPECT_GT(apart.largest, 20);
    }
}

TEST_F(Graphics, TheProcessorAsADeviceIsNotedOnce)
{
    Outcome const outcome = run_with("Some processor=host", {"map", "hill.tga", "--gpu", "--match-cpu"});
    EXPECT_EQ(outcome.code, 0);
    std::size_t const at = outcome.err.find("is the processor itself");
    ASSERT_NE(at, std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("is the processor itself", at + 1), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.out.find("relief 0.05, on Some processor (host)"), std::string::npos) << outcome.out;
}

TEST_F(Graphics, AFallbackIsNotedWithItsReason)
{
    Outcome const outcome =
        run_with(kCards, {"map", "hill.tga", "--gpu"}, {{"OCL_STAND_IN_ERROR", "the card was pulled out"}});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(
        outcome.err.find("the processor took over from the graphics processor: the card was pulled out"),
        std::string::npos)
        << outcome.err;
}

TEST_F(Graphics, WhatIsReportedOfOtherDevicesIsNoFallback)
{
    Outcome const outcome =
        run_with(kCards, {"map", "hill.tga", "--gpu"}, {{"OCL_STAND_IN_SKIPPED", "another card is too old"}});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err.find("took over"), std::string::npos) << outcome.err;
}

TEST_F(Graphics, ADriverThatBreaksDownEndsInOneSentence)
{
    for (Arguments const& arguments : {Arguments{"devices"}, Arguments{"map", "hill.tga", "--gpu"}}) {
        Outcome const outcome = run_with(kCards, arguments, {{"OCL_STAND_IN_CRASH", "1"}});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_TRUE(complains_about(outcome, "umbrix " + arguments[0], "graphics driver"));
    }
    EXPECT_EQ(files(), (std::set<std::string>{"hill.tga", "hollow.tga", "hill_n.tga"}));
}

TEST_F(Graphics, StacksTakeTheDeviceForTheirMap)
{
    std::string const text = "[[layer]]\nfile = 'hill.tga'\n[[layer]]\nfile = 'hollow.tga'\nblend = "
                             "'overlay'\nopacity = 40\n";
    write("s.toml", Bytes(text.begin(), text.end()));
    for (Arguments const& way : {Arguments{}, Arguments{"--map-from-layers"}}) {
        auto const map = [&](Arguments const& more) {
            Arguments arguments{"stack", "s.toml", "-o", "n.tga", "--map", "m.tga", "--overwrite"};
            arguments.insert(arguments.end(), way.begin(), way.end());
            arguments.insert(arguments.end(), more.begin(), more.end());
            Outcome const outcome = run_with(kCards, arguments);
            EXPECT_EQ(outcome.code, 0) << outcome.err;
            return tga("m.tga");
        };
        TgaPicture const processor = map({});
        Distance const apart = distance(map({"--gpu", "--match-cpu"}), processor);
        EXPECT_LE(apart.largest, kRay);
        EXPECT_LT(apart.share, 0.001);
        EXPECT_GT(distance(map({"--gpu"}), processor).largest, kRay);
    }
}

} // namespace
} // namespace umbrixlib::test
