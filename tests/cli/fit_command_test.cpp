// SPDX-License-Identifier: MIT
/// `umbrix fit`, run as a user runs it.
#include "tool.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

namespace umbrixlib::test {
namespace {

constexpr int kSide = 128;
constexpr double kTurn = 6.283185307179586;

/// A bumpy surface that repeats, and is the same neither mirrored nor upside down.
int bumps(int x, int y)
{
    double const u = kTurn * x / kSide;
    double const v = kTurn * y / kSide;
    double const height = std::sin(2 * u + v) + 0.7 * std::cos(3 * v - u) + 0.3 * std::sin(5 * u + 4 * v) +
                          0.3 * std::cos(v) * std::sin(u);
    return static_cast<int>(std::lround(127.5 + 50.0 * height));
}

/// A normal map of the bumps at an n-scale, by the definition of a normal, with flat ground at @p middle:
/// a file of another maker, who rounds to the nearest.
Bytes normals_of_bumps(double n_scale, double middle)
{
    Bytes pixels;
    auto const height = [](int x, int y) { return bumps((x + kSide) % kSide, (y + kSide) % kSide) / 255.0; };
    for (int row = 0; row < kSide; ++row) {
        for (int column = 0; column < kSide; ++column) {
            double const x = n_scale * (height(column - 1, row) - height(column + 1, row));
            double const y = n_scale * (height(column, row - 1) - height(column, row + 1));
            double const length = std::sqrt(x * x + y * y + 1.0);
            for (double const component : {1.0, y, x}) { // blue, green, red
                double const byte = std::floor(middle + 127.0 * component / length + 0.5);
                pixels.push_back(static_cast<std::uint8_t>(std::clamp(byte, 0.0, 255.0)));
            }
        }
    }
    return tga_bytes(kSide, kSide, 3, pixels);
}

class FitCommand : public ToolTest {
protected:
    FitCommand() { write("h.tga", height_map(kSide, kSide, bumps)); }

    nlohmann::json fit(Arguments const& more = {}) const
    {
        Arguments all{"fit", "h.tga", "n.tga", "--json"};
        all.insert(all.end(), more.begin(), more.end());
        Outcome const outcome = run(all);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return nlohmann::json::parse(outcome.out, nullptr, false);
    }

    void make_normals(Arguments const& options) const
    {
        Arguments all{"normal", "h.tga", "-o", "n.tga", "--overwrite"};
        all.insert(all.end(), options.begin(), options.end());
        ASSERT_EQ(run(all).code, 0);
    }
};

TEST_F(FitCommand, FindsTheReliefAndTheGreenOfTheToolsOwnMaps)
{
    for (char const* relief : {"0.004", "0.03", "0.2", "1.5"}) {
        for (char const* green : {"up", "down"}) {
            make_normals({"--relief", relief, "--normal-y", green});
            nlohmann::json const report = fit();
            double const expected = std::stod(relief);
            EXPECT_NEAR(report.at("relief").get<double>(), expected, 0.02 * expected) << green;
            EXPECT_NEAR(report.at("n_scale").get<double>(), expected * kSide / 2,
                        0.02 * expected * kSide / 2);
            EXPECT_EQ(report.at("green"), green) << relief;
            EXPECT_TRUE(report.at("beats_flat").get<bool>());
            EXPECT_LT(report.at("mean_angle_degrees").get<double>(), 0.3);
            EXPECT_GT(report.at("other_green_mean_angle_degrees").get<double>(),
                      2 * report.at("mean_angle_degrees").get<double>());
        }
    }
}

TEST_F(FitCommand, FindsTheReliefOfOtherMakersMaps)
{
    for (double const middle : {127.0, 127.5, 128.0}) {
        for (double const relief : {0.005, 0.05, 0.5}) {
            write("n.tga", normals_of_bumps(relief * kSide / 2, middle));
            nlohmann::json const report = fit();
            EXPECT_NEAR(report.at("relief").get<double>(), relief, 0.02 * relief) << middle;
            EXPECT_EQ(report.at("green"), "up");
        }
    }
}

TEST_F(FitCommand, TellsTheAngleOfFlatGround)
{
    // All normals lean to the right by atan(3 / 4).
    Bytes pixels;
    for (int i = 0; i < kSide * kSide; ++i) {
        pixels.insert(pixels.end(), {static_cast<std::uint8_t>(127 + 102), 127, 127 + 76});
    }
    write("n.tga", tga_bytes(kSide, kSide, 3, pixels));
    Outcome const outcome = run({"fit", "h.tga", "n.tga", "--json"});
    EXPECT_EQ(outcome.code, 1); // bumps do not fit a slope
    EXPECT_NEAR(nlohmann::json::parse(outcome.out).at("flat_mean_angle_degrees").get<double>(), 36.87, 0.5);
}

TEST_F(FitCommand, TakesTheBlurAsGivenOrFindsIt)
{
    make_normals({"--relief", "0.1", "--gaussian", "2.5"});
    nlohmann::json const without = fit();
    nlohmann::json const given = fit({"--gaussian", "2.5"});
    nlohmann::json const found = fit({"--fit-gaussian"});
    EXPECT_EQ(without.at("gaussian"), 0.0);
    EXPECT_EQ(given.at("gaussian"), 2.5);
    EXPECT_NEAR(given.at("relief").get<double>(), 0.1, 0.002);
    EXPECT_LT(given.at("mean_angle_degrees").get<double>(), without.at("mean_angle_degrees").get<double>());
    EXPECT_NEAR(found.at("gaussian").get<double>(), 2.5, 0.1);
    EXPECT_NEAR(found.at("relief").get<double>(), 0.1, 0.003);
    EXPECT_EQ(run({"fit", "h.tga", "n.tga", "--fit-gaussian", "--gaussian", "1"}).code, 2);
}

TEST_F(FitCommand, FindsWhetherTheHeightsAreInverted)
{
    // The normals of bumps, and the bumps as a depth map has them: dark is high.
    for (char const* green : {"up", "down"}) {
        make_normals({"--relief", "0.1", "--normal-y", green});
        EXPECT_FALSE(fit().at("inverted").get<bool>()) << green;
        write("depth.tga", height_map(kSide, kSide, [](int x, int y) { return 255 - bumps(x, y); }));
        Outcome const outcome = run({"fit", "depth.tga", "n.tga", "--json"});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        auto const report = nlohmann::json::parse(outcome.out);
        EXPECT_TRUE(report.at("inverted").get<bool>()) << green;
        EXPECT_EQ(report.at("green"), green);
        EXPECT_NEAR(report.at("relief").get<double>(), 0.1, 0.002);
        EXPECT_LT(report.at("mean_angle_degrees").get<double>(), 0.3);
        EXPECT_GT(report.at("other_heights_mean_angle_degrees").get<double>(), 5.0);
        EXPECT_GT(report.at("other_green_mean_angle_degrees").get<double>(), 5.0);
    }
    std::string const text = run({"fit", "depth.tga", "n.tga"}).out;
    EXPECT_NE(text.find("\n  heights    inverted (as they are "), std::string::npos) << text;
    ASSERT_EQ(run({"fit", "depth.tga", "n.tga", "--save-preset", "p.toml"}).code, 0);
    std::string const preset = run({"preset", "show", "p.toml"}).out;
    EXPECT_NE(preset.find("* invert            true"), std::string::npos) << preset;
    auto const inverted = nlohmann::json::parse(run({"fit", "depth.tga", "n.tga", "--invert", "--json"}).out);
    EXPECT_FALSE(inverted.at("inverted").get<bool>()) << "they are the right way up then";
}

/// Leans by atan(3 / 4) to the right in the first rows, and up in the others.
Bytes leans_to_the_right(int rows)
{
    Bytes pixels;
    for (int i = 0; i < kSide * kSide; ++i) {
        bool const right = i < rows * kSide;
        pixels.insert(pixels.end(), {229, static_cast<std::uint8_t>(right ? 127 : 203),
                                     static_cast<std::uint8_t>(right ? 203 : 127)});
    }
    return tga_bytes(kSide, kSide, 3, pixels);
}

TEST_F(FitCommand, CallsAGainBelowATenthNoFit)
{
    Bytes flat;
    for (int i = 0; i < kSide * kSide; ++i) {
        flat.insert(flat.end(), {255, 128, 128});
    }
    write("n.tga", tga_bytes(kSide, kSide, 3, flat));
    auto const expect_no_fit = [&](char const* what) {
        Outcome const told = run({"fit", "h.tga", "n.tga", "--json"});
        EXPECT_EQ(told.code, 1) << what;
        EXPECT_FALSE(nlohmann::json::parse(told.out).at("beats_flat").get<bool>()) << what;
        Outcome const outcome =
            run({"fit", "h.tga", "n.tga", "--save-preset", "p.toml", "--progress", "none"});
        EXPECT_EQ(outcome.code, 1) << what;
        EXPECT_EQ(outcome.out, "") << what;
        EXPECT_TRUE(complains_about(outcome, "umbrix fit", "n.tga"));
        EXPECT_NE(outcome.err.find("no relief fits it: "), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(" degrees remain at best, and "), std::string::npos) << outcome.err;
        EXPECT_EQ(files(), (std::set<std::string>{"h.tga", "n.tga"})) << what;
    };
    expect_no_fit("flat ground");

    // A ramp that leans so in a sixteenth of the picture gains that much; one in a quarter is enough.
    auto const ramp = [](int rows) {
        return height_map(kSide, kSide, [rows](int x, int y) { return y < rows ? kSide - x : 0; });
    };
    write("h.tga", ramp(8));
    write("n.tga", leans_to_the_right(8));
    expect_no_fit("a sixteenth");
    write("h.tga", ramp(32));
    write("n.tga", leans_to_the_right(32));
    EXPECT_TRUE(fit().at("beats_flat").get<bool>());

    write("h.tga", height_map(kSide, kSide, [](int, int) { return 99; }));
    write("n.tga", normals_of_bumps(5, 127.5));
    expect_no_fit("heights without relief");
}

TEST_F(FitCommand, SavesAPresetThatMakesTheseNormals)
{
    make_normals({"--relief", "0.1", "--normal-y", "down"});
    std::string const base = "rays = 16\nh_scale = 1\nn_scale = 2\n";
    write("base.toml", Bytes(base.begin(), base.end()));
    Outcome const outcome =
        run({"fit", "h.tga", "n.tga", "--preset", "base.toml", "--save-preset", "p.toml"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("wrote p.toml: preset, relief 0."), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find(" degrees remain\n"), std::string::npos) << outcome.out;
    auto const preset = nlohmann::json::parse(run({"preset", "show", "p.toml", "--json"}).out);
    EXPECT_EQ(preset.at("different_from_default"), (nlohmann::json{"normal_y", "relief", "rays"}));
    EXPECT_EQ(preset.at("options").at("rays"), 16);

    ASSERT_EQ(run({"normal", "h.tga", "-o", "again.tga", "--preset", "p.toml"}).code, 0);
    TgaPicture const wanted = tga("n.tga");
    TgaPicture const made = tga("again.tga");
    int largest = 0;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            for (int c = 0; c < 3; ++c) {
                largest = std::max(largest, std::abs(wanted.at(x, y, c) - made.at(x, y, c)));
            }
        }
    }
    EXPECT_LE(largest, 2);

    EXPECT_EQ(run({"fit", "h.tga", "n.tga", "--save-preset", "p.toml"}).code, 1);
    EXPECT_EQ(run({"fit", "h.tga", "n.tga", "--save-preset", "p.toml", "--overwrite"}).code, 0);
    EXPECT_EQ(run({"fit", "h.tga", "n.tga", "--save-preset", "p.png"}).code, 2);
}

TEST_F(FitCommand, RefusesWhatItCannotCompare)
{
    write("n.tga", hill(64));
    Outcome const other_size = run({"fit", "h.tga", "n.tga", "--progress", "none"});
    EXPECT_EQ(other_size.code, 1);
    EXPECT_TRUE(complains_about(other_size, "umbrix fit", "n.tga"));
    EXPECT_NE(other_size.err.find("its size is 64 x 64 and that of the height map 128 x 128"),
              std::string::npos)
        << other_size.err;
    Outcome const missing = run({"fit", "h.tga", "none.tga"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(complains_about(missing, "umbrix fit", "none.tga"));
    write("broken.png", {1, 2, 3, 4, 5});
    Outcome const broken = run({"fit", "h.tga", "broken.png"});
    EXPECT_EQ(broken.code, 1);
    EXPECT_TRUE(complains_about(broken, "umbrix fit", "broken.png"));
    EXPECT_EQ(run({"fit", "h.tga"}).code, 2);
}

TEST_F(FitCommand, WondersAboutPicturesInTheWrongOrder)
{
    make_normals({"--relief", "0.1"});
    Outcome const outcome = run({"fit", "n.tga", "h.tga", "--progress", "none"});
    EXPECT_NE(outcome.err.find("n.tga: this looks like a normal map"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("h.tga: this does not look like a normal map"), std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
