// SPDX-License-Identifier: MIT
/// Curvature maps of heights and of normals: the same of both, what is shown of it, ranges, and samples.
#include "task_test.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encoder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class CurvatureTask : public TaskTest {
protected:
    CurvatureReport make(std::string const& input, std::string const& output,
                         Settings const& settings = kDefaults,
                         std::optional<SampleType> depth = SampleType::kFloat)
    {
        CurvatureJob job;
        job.files = files(input, output);
        job.files.output.saving.depth = depth;
        job.settings = settings;
        return toolkit::run(job, notes_);
    }

    void make_normals(std::string const& heights, std::string const& output, SampleType depth,
                      NormalY green = NormalY::kUp, Settings const& settings = kDefaults)
    {
        NormalJob job;
        job.files = files(heights, output);
        job.files.output.saving.depth = depth;
        job.settings = settings;
        job.normal_y = green;
        toolkit::run(job, nobody_);
    }

    /// The first channel.
    std::vector<double> values_in(std::string const& name) const
    {
        Picture const all = picture(name);
        std::vector<double> values;
        with_samples(all, [&](auto samples) {
            for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(all.channels)) {
                values.push_back(to_number(samples[i]));
            }
        });
        return values;
    }

    void expect_near(std::string const& one, std::string const& other, double most) const
    {
        std::vector<double> const a = values_in(one);
        std::vector<double> const b = values_in(other);
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i) {
            ASSERT_NEAR(a[i], b[i], most) << one << ' ' << i;
        }
    }

    /// Hills that repeat.
    void put_hills(std::string const& name)
    {
        double const turn = 2.0 * std::numbers::pi / kSide;
        put_heights(name, kSide, 16, [&](int x, int y) {
            return 0.5 + 0.2 * std::sin(turn * 2 * x) + 0.2 * std::cos(turn * (y + x));
        });
    }

    static constexpr int kSide = 64;
    Notes notes_;
};

Settings of_radius(float radius, CurvaturePart part = CurvaturePart::kAll)
{
    Settings settings = kDefaults;
    settings.curvature_radius = radius;
    settings.curvature_part = part;
    return settings;
}

/// A cap of a ball, as a relief of the width of the picture has it.
TEST_F(CurvatureTask, ShowsABallOfItsRadiusWhite)
{
    constexpr double kRadius = 2.0; // image widths
    put_heights("cap.png", kSide, 16, [](int x, int y) {
        double const from_x = (x - 32.0) / kSide;
        double const from_y = (y - 32.0) / kSide;
        return std::sqrt(kRadius * kRadius - from_x * from_x - from_y * from_y) - 1.5;
    });
    Settings settings = of_radius(kRadius);
    settings.relief = 1.0f;
    settings.tile = false;
    CurvatureReport const report = make("cap.png", "made.exr", settings);
    EXPECT_EQ(report.kind, Kind::kHeightMap);
    EXPECT_DOUBLE_EQ(report.radius, kRadius);
    std::vector<double> const made = values_in("made.exr");
    double sum = 0.0;
    for (double const each : made) {
        sum += each;
    }
    EXPECT_NEAR(sum / static_cast<double>(made.size()), 1.0, 0.03);
    settings.invert = true; // a bowl
    make("cap.png", "bowl.exr", settings);
    EXPECT_NEAR(values_in("bowl.exr")[kSide * 32 + 32], -made[kSide * 32 + 32], 1e-3);
}

TEST_F(CurvatureTask, IsThatOfTheNormalsOfTheHeights)
{
    put_hills("hills.png");
    for (float const sigma : {0.0f, 1.5f}) {
        for (bool const tiles : {true, false}) {
            Settings settings = of_radius(0.1f);
            settings.tile = tiles;
            for (NormalY const green : {NormalY::kUp, NormalY::kDown}) {
                make_normals("hills.png", "n.exr", SampleType::kFloat, green, settings);
                settings.gaussian = sigma;
                make("hills.png", "of_heights.exr", settings);
                CurvatureReport const report = make("n.exr", "of_normals.exr", settings);
                EXPECT_EQ(report.kind, Kind::kNormalMap);
                EXPECT_EQ(report.green, green); // the file tells it
                // The normals of a border that does not repeat are those half a texel inside.
                expect_near("of_normals.exr", "of_heights.exr", sigma > 0.0f && !tiles ? 4e-3 : 1e-5);
                settings.gaussian = 0.0f;
            }
        }
    }
}

TEST_F(CurvatureTask, ShowsParts)
{
    put_hills("hills.png");
    make("hills.png", "all.exr", of_radius(0.05f));
    make("hills.png", "cavity.exr", of_radius(0.05f, CurvaturePart::kCavity));
    make("hills.png", "ridges.exr", of_radius(0.05f, CurvaturePart::kRidges));
    std::vector<double> const all = values_in("all.exr");
    std::vector<double> const cavity = values_in("cavity.exr");
    std::vector<double> const ridges = values_in("ridges.exr");
    EXPECT_LT(*std::ranges::min_element(all), -0.01);
    EXPECT_GT(*std::ranges::max_element(all), 0.01);
    for (std::size_t i = 0; i < all.size(); ++i) {
        ASSERT_NEAR(cavity[i], 1.0 + std::min(all[i], 0.0), 1e-6);
        ASSERT_NEAR(ridges[i], std::max(all[i], 0.0), 1e-6);
    }
}

TEST_F(CurvatureTask, HasFlatGroundInTheMiddleOfWholeNumbers)
{
    put_hills("hills.png");
    make("hills.png", "floats.exr", of_radius(0.02f));
    std::vector<double> const wanted = values_in("floats.exr");
    for (SampleType const depth : {SampleType::kUint8, SampleType::kUint16, SampleType::kHalf}) {
        bool const half = depth == SampleType::kHalf;
        std::string const name = half ? "made.exr" : "made.png";
        make("hills.png", name, of_radius(0.02f), depth);
        EXPECT_EQ(picture(name).type, depth);
        EXPECT_EQ(DecodedImage(path(name), name, kMostTexels).picture().channels, 1);
        double const full = full_scale(depth);
        std::vector<double> const made = values_in(name);
        for (std::size_t i = 0; i < made.size(); ++i) {
            double const share = half ? made[i] : made[i] / full * 2.0 - 1.0;
            ASSERT_NEAR(share, std::clamp(wanted[i], -1.0, 1.0), half ? 1e-3 : 2.0 / full);
        }
    }
    put_heights("flat.png", kSide, 8, [](int, int) { return 0.3; });
    make("flat.png", "flat_made.png", kDefaults, SampleType::kUint8);
    for (double const each : values_in("flat_made.png")) {
        ASSERT_EQ(each, 127.0); // the middle, cut as bytes are
    }
}

TEST_F(CurvatureTask, FindsTheRadiusThatSuitsThePicture)
{
    put_hills("hills.png");
    CurvatureReport const report = make("hills.png", "made.exr");
    std::vector<double> made = values_in("made.exr");
    auto const beyond = std::ranges::count_if(made, [](double each) { return std::abs(each) > 1.0; });
    EXPECT_LE(beyond, kSide * kSide / 100 + 1);
    EXPECT_GT(beyond, kSide * kSide / 200);
    make("hills.png", "again.exr", of_radius(static_cast<float>(report.radius)));
    expect_near("again.exr", "made.exr", 1e-5);
    Attributes const told = DecodedImage(path("made.exr"), "", kMostTexels).picture().attributes;
    EXPECT_EQ(value_of(told, "kind"), "curvature");
    EXPECT_EQ(value_of(told, "coding"), "-1..1");
    EXPECT_NEAR(std::stod(value_of(told, "curvature-radius")), report.radius, 1e-5 * report.radius);
}

TEST_F(CurvatureTask, RefusesNormalsThatAreNoNumbers)
{
    Picture normals = make_picture(8, 8, 3, SampleType::kFloat);
    auto const samples = normals.samples<float>();
    for (std::size_t i = 0; i < normals.texels(); ++i) {
        samples[3 * i] = -0.6f;
        samples[3 * i + 2] = 0.8f;
    }
    samples[4] = std::numeric_limits<float>::quiet_NaN();
    exr_encoder().encode(path("n_normal.exr"), normals);
    EXPECT_THROW(make("n_normal.exr", "made.exr"), Failure);
    Settings settings = kDefaults;
    settings.replace_invalid.replacement = 0.0;
    CurvatureReport const report = make("n_normal.exr", "made.exr", settings);
    EXPECT_EQ(report.kind, Kind::kNormalMap);
    for (double const each : values_in("made.exr")) {
        ASSERT_TRUE(std::isfinite(each));
    }
}

} // namespace
} // namespace umbrixlib::test
