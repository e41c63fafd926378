// SPDX-License-Identifier: MIT
/// What is saved in more than 8 bits is as near to the truth as its samples allow.
#include "task_test.h"
#include "toolkit/pictures/analysis/channel_ranges.h"

#include <cmath>
#include <numbers>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr int kSide = 128;
constexpr float kStrength = 40.0f;

/// A relief that tiles, in steps of 16 bits.
double height_at(int x, int y)
{
    double const turn = 2.0 * std::numbers::pi / kSide;
    double const height =
        0.5 + 0.3 * std::sin(turn * x) * std::cos(2 * turn * y) + 0.1 * std::sin(5 * turn * (x + y));
    return std::round(height * 65535.0) / 65535.0;
}

struct Angles {
    double mean = 0;
    double largest = 0;
};

class SavedDepth : public TaskTest {
protected:
    SavedDepth() { put_heights("heights.png", kSide, 16, height_at); }

    /// Of the normals of the picture, encoded as 0 to 1, from those of the heights in double.
    Angles angles_of(std::string const& name) const
    {
        Picture const normals = in_floats(picture(name));
        auto const samples = normals.samples<float>();
        Angles angles;
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                auto const height = [&](int dx, int dy) {
                    return height_at((x + dx + kSide) % kSide, (y + dy + kSide) % kSide);
                };
                double const expected[] = {(height(-1, 0) - height(1, 0)) * static_cast<double>(kStrength),
                                           (height(0, 1) - height(0, -1)) * static_cast<double>(kStrength),
                                           1.0};
                double const length = std::hypot(expected[0], expected[1], expected[2]);
                // The first row in memory is the bottom one, and y of a file counts from the top.
                auto const at = static_cast<std::size_t>((kSide - 1 - y) * kSide + x) * 3;
                double cross[3];
                double dot = 0;
                double made[3];
                for (std::size_t i = 0; i < 3; ++i) {
                    made[i] = 2.0 * static_cast<double>(samples[at + i]) - 1.0;
                    dot += made[i] * expected[i] / length;
                }
                for (std::size_t i = 0; i < 3; ++i) {
                    cross[i] = (made[(i + 1) % 3] * expected[(i + 2) % 3] -
                                made[(i + 2) % 3] * expected[(i + 1) % 3]) /
                               length;
                }
                double const angle =
                    std::atan2(std::hypot(cross[0], cross[1], cross[2]), dot) * 180.0 / std::numbers::pi;
                angles.mean += angle / (kSide * kSide);
                angles.largest = std::max(angles.largest, angle);
            }
        }
        return angles;
    }

    Angles normals_with(Saving const& saving) const
    {
        NormalJob job;
        job.settings.n_scale = kStrength;
        job.settings.gaussian = 0;
        job.files = files("heights.png", "normals.png");
        job.files.output.saving = saving;
        Observer nobody;
        run(job, nobody);
        return angles_of("normals.png");
    }
};

TEST_F(SavedDepth, NormalsOfSixteenBitsAreWithinTheirSteps)
{
    Angles const deep = normals_with({SampleType::kUint16});
    EXPECT_LT(deep.mean, 0.002);
    EXPECT_LT(deep.largest, 0.01);
}

TEST_F(SavedDepth, RoundingToTheNearestByteHalvesTheError)
{
    Angles const cut = normals_with({});
    Angles const nearest = normals_with({SampleType::kUint8, Rounding::kNearest});
    EXPECT_GT(cut.mean, 0.25);
    EXPECT_LT(nearest.mean, 0.2);
}

TEST_F(SavedDepth, GreenThatPointsDownIsTheOppositeToTheLastBit)
{
    NormalJob job;
    job.settings.n_scale = kStrength;
    job.files = files("heights.png", "up.png");
    job.files.output.saving.depth = SampleType::kUint16;
    run(job, nobody_);
    job.files = files("heights.png", "down.png");
    job.files.output.saving.depth = SampleType::kUint16;
    job.normal_y = NormalY::kDown;
    run(job, nobody_);
    Picture const up = picture("up.png");
    Picture const down = picture("down.png");
    for (std::size_t i = 1; i < up.texels() * 3; i += 3) {
        int const sum = up.samples<std::uint16_t>()[i] + down.samples<std::uint16_t>()[i];
        ASSERT_NEAR(sum, 65535, 1) << i; // what lies in the middle of two steps is rounded up twice
    }
}

TEST_F(SavedDepth, AMapOfSixteenBitsNarrowsToTheMapOfEight)
{
    MapJob job;
    job.kind = Kind::kHeightMap;
    job.settings.rays = 8;
    job.files = files("heights.png", "bytes.png");
    run(job, nobody_);
    job.files = files("heights.png", "deep.png");
    job.files.output.saving.depth = SampleType::kUint16;
    run(job, nobody_);
    Picture const bytes = picture("bytes.png");
    Picture const deep = picture("deep.png");
    ASSERT_EQ(deep.type, SampleType::kUint16);
    ASSERT_EQ(bytes.channels, deep.channels);
    for (std::size_t i = 0; i < bytes.bytes.size(); ++i) {
        double const byte = deep.samples<std::uint16_t>()[i] / 65535.0 * 255.0;
        ASSERT_NEAR(byte - 0.5, bytes.bytes[i], 0.503) << "cut, not rounded";
    }
}

TEST_F(SavedDepth, NormalsInFloatsAreReadAsTheVectorsThatTheyAre)
{
    Notes told;
    NormalJob normals;
    normals.settings.n_scale = kStrength;
    MapJob map;
    map.settings.occlusion = false;
    for (std::string const name : {"whole.png", "vectors.exr"}) {
        normals.files = files("heights.png", name);
        normals.files.output.saving.depth = name == "whole.png" ? SampleType::kUint16 : SampleType::kFloat;
        run(normals, nobody_);
        map.files = files(name, name + "_map.png");
        map.files.output.saving.depth = SampleType::kUint16;
        EXPECT_EQ(run(map, told).kind, Kind::kNormalMap) << name;
    }
    EXPECT_NE(std::ranges::find(told.texts, "its normals are -1 to 1, as it tells itself"), told.texts.end());
    Picture const whole = picture("whole.png_map.png");
    Picture const vectors = picture("vectors.exr_map.png");
    ASSERT_EQ(whole.bytes.size(), vectors.bytes.size());
    for (std::size_t i = 0; i < whole.texels() * 3; ++i) {
        ASSERT_NEAR(whole.samples<std::uint16_t>()[i], vectors.samples<std::uint16_t>()[i], 4);
    }
}

TEST_F(SavedDepth, HeightsOfAStackStayGreyAndStretched)
{
    StackLayer layer;
    layer.label = "lowest";
    layer.file = path("heights.png");
    StackJob job;
    job.file = "stack.toml";
    job.description.layers = {layer};
    job.normals = {path("n.png"), "n.png"};
    job.heights = {path("h.png"), "h.png", {SampleType::kUint16}};
    job.max_texels = kMostTexels;
    run(job, nobody_);
    DecodedImage const heights(path("h.png"), "h.png", kMostTexels);
    EXPECT_EQ(heights.description(), "16-bit grey");
    EXPECT_EQ(toolkit::channel_ranges(heights.picture()).front().minimum, 0.0);
    EXPECT_EQ(toolkit::channel_ranges(heights.picture()).front().maximum, 65535.0);
}

std::string const kNarrowed = "its heights are read in 16 bits and written in 8 bits";

TEST_F(SavedDepth, HeightsThatAMapNarrowsAreToldOnce)
{
    MapJob job;
    job.kind = Kind::kHeightMap;
    job.settings.rays = 8;
    auto const times = [&](char const* input, bool in_alpha, std::optional<SampleType> depth) {
        job.files = files(input, "map.png");
        job.files.output.saving.depth = depth;
        job.settings.height_in_alpha = in_alpha;
        Notes told;
        run(job, told);
        return std::ranges::count(told.texts, kNarrowed);
    };
    EXPECT_EQ(times("heights.png", true, {}), 1);
    EXPECT_EQ(times("heights.png", true, SampleType::kUint16), 0);
    EXPECT_EQ(times("heights.png", false, {}), 0);
    put_heights("bytes.png", kSide, 8, height_at);
    EXPECT_EQ(times("bytes.png", true, {}), 0);
}

TEST_F(SavedDepth, HeightsThatAStackNarrowsAreToldOnce)
{
    put_heights("bytes.png", kSide, 8, height_at);
    StackLayer lower;
    lower.file = path("bytes.png");
    StackLayer upper;
    upper.file = path("heights.png");
    StackJob job;
    job.file = "stack.toml";
    job.max_texels = kMostTexels;
    auto const times = [&](std::vector<StackLayer> const& layers, bool heights,
                           std::optional<SampleType> depth) {
        job.description.layers = layers;
        job.normals = {path("n.png"), "n.png"};
        job.heights = {heights ? path("h.png") : "", "h.png", {depth}};
        Notes told;
        run(job, told);
        return std::ranges::count(told.texts, kNarrowed);
    };
    EXPECT_EQ(times({lower, upper}, true, {}), 1);
    EXPECT_EQ(times({upper, upper}, true, {}), 1);
    EXPECT_EQ(times({lower, upper}, true, SampleType::kUint16), 0);
    EXPECT_EQ(times({lower, upper}, false, {}), 0);
    EXPECT_EQ(times({lower, lower}, true, {}), 0);
}

} // namespace
} // namespace umbrixlib::test
