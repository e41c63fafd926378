// SPDX-License-Identifier: MIT
/// Bent normals and occlusion maps of height maps: what is written, samples, green, borders, ranges.
#include "task_test.h"
#include "toolkit/base/failure.h"
#include "toolkit/relief/sky.h"

#include <cmath>
#include <cstdint>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class BentTask : public TaskTest {
protected:
    BentTask()
    {
        put_heights("wall.png", kSide, 16, [](int x, int y) { return height_at(x, y); });
        settings_.directions = 8;
        settings_.relief = 0.25f;
    }

    static double height_at(int x, int y) { return x >= 20 && x < 30 ? 0.75 : (y % 7) * 0.01; }

    BentReport make(std::string const& bent, std::string const& occlusion = "",
                    std::optional<SampleType> depth = SampleType::kFloat, NormalY green = NormalY::kUp)
    {
        BentJob job;
        job.files = files("wall.png", bent);
        job.files.output.saving.depth = depth;
        if (!occlusion.empty()) {
            job.occlusion = {path(occlusion), occlusion, job.files.output.saving};
        }
        job.settings = settings_;
        job.normal_y = green;
        return toolkit::run(job, nobody_);
    }

    std::vector<double> values_in(std::string const& name) const
    {
        std::vector<double> values;
        Picture const all = DecodedImage(path(name), name, kMostTexels).picture();
        with_samples(all, [&](auto samples) {
            for (auto const each : samples) {
                values.push_back(to_number(each));
            }
        });
        return values;
    }

    Attributes told_by(std::string const& name) const
    {
        return DecodedImage(path(name), name, kMostTexels).picture().attributes;
    }

    static constexpr int kSide = 40;
    Settings settings_ = kDefaults;
};

/// The first row of a picture in memory is the bottom one, and that of the file the top one.
TEST_F(BentTask, WritesWhatTheEngineMakes)
{
    std::vector<float> heights;
    for (int y = kSide - 1; y >= 0; --y) {
        for (int x = 0; x < kSide; ++x) {
            auto const sample = static_cast<float>(std::floor(height_at(x, y) * 65535.0 + 0.5) / 65535.0);
            heights.push_back(sample * 0.25f * kSide);
        }
    }
    for (bool const tiles : {true, false}) {
        settings_.tile = tiles;
        settings_.radius = 0.4f;
        BentReport const report = make("bent.exr", "open.exr");
        Borders const borders{tiles, tiles};
        SkyMap const wanted =
            *sky_over({heights.data(), kSide, kSide, borders}, static_cast<double>(0.4f) * kSide, 8);
        std::vector<double> const bent = values_in("bent.exr");
        std::vector<double> const open = values_in("open.exr");
        ASSERT_EQ(open.size(), wanted.open.size());
        ASSERT_EQ(bent.size(), 3 * wanted.bent.size());
        double sum = 0.0;
        for (std::size_t i = 0; i < open.size(); ++i) {
            ASSERT_NEAR(open[i], wanted.open[i], 1e-6);
            ASSERT_NEAR(bent[3 * i], wanted.bent[i].x, 1e-6);
            ASSERT_NEAR(bent[3 * i + 1], wanted.bent[i].y, 1e-6);
            ASSERT_NEAR(bent[3 * i + 2], wanted.bent[i].z, 1e-6);
            sum += open[i];
        }
        EXPECT_NEAR(report.open, sum / static_cast<double>(open.size()), 1e-6);
        EXPECT_EQ(report.h_scale, 0.25f);
    }
}

TEST_F(BentTask, TurnsGreenOver)
{
    make("up.exr");
    make("down.exr", "", SampleType::kFloat, NormalY::kDown);
    std::vector<double> const up = values_in("up.exr");
    std::vector<double> const down = values_in("down.exr");
    for (std::size_t i = 0; i < up.size(); ++i) {
        ASSERT_EQ(down[i], i % 3 == 1 ? -up[i] : up[i]);
    }
    EXPECT_EQ(value_of(told_by("down.exr"), "green"), "down");
    EXPECT_EQ(value_of(told_by("down.exr"), "kind"), "bent normals");
}

TEST_F(BentTask, WritesSamplesOfEveryDepth)
{
    make("bent.exr", "open.exr");
    std::vector<double> const bent = values_in("bent.exr");
    std::vector<double> const open = values_in("open.exr");
    for (SampleType const depth : {SampleType::kUint8, SampleType::kUint16, SampleType::kHalf}) {
        bool const half = depth == SampleType::kHalf;
        std::string const ending = half ? ".exr" : ".png";
        make("b" + ending, "o" + ending, depth);
        EXPECT_EQ(picture("b" + ending).type, depth);
        std::vector<double> const made_bent = values_in("b" + ending);
        std::vector<double> const made_open = values_in("o" + ending);
        ASSERT_EQ(made_open.size(), open.size()); // one channel
        double const full = full_scale(depth);
        for (std::size_t i = 0; i < open.size(); ++i) {
            ASSERT_NEAR(made_open[i] / full, open[i], half ? 1e-3 : 1.0 / full);
        }
        for (std::size_t i = 0; i < bent.size(); ++i) {
            ASSERT_NEAR(half ? made_bent[i] : made_bent[i] / full * 2.0 - 1.0, bent[i],
                        half ? 1e-3 : 2.0 / full);
        }
    }
}

TEST_F(BentTask, WritesTheOcclusionAlone)
{
    make("bent.exr", "open.exr");
    BentJob job;
    job.files = files("wall.png", "alone.exr");
    job.files.output.saving.depth = SampleType::kFloat;
    job.settings = settings_;
    job.occlusion_alone = true;
    toolkit::run(job, nobody_);
    EXPECT_EQ(values_in("alone.exr"), values_in("open.exr"));
    EXPECT_EQ(value_of(told_by("alone.exr"), "kind"), "occlusion");
}

TEST_F(BentTask, ReadsHeightsAsItIsAsked)
{
    make("bent.exr", "open.exr");
    settings_.height_range = {HeightRange::How::kGiven, 0.0, 2.0};
    settings_.relief = 0.5f;
    BentReport const report = make("b.exr", "half.exr");
    ASSERT_TRUE(report.heights.has_value());
    std::vector<double> const half = values_in("half.exr");
    std::vector<double> const open = values_in("open.exr");
    for (std::size_t i = 0; i < open.size(); ++i) {
        ASSERT_NEAR(half[i], open[i], 1e-4);
    }
}

TEST_F(BentTask, RefusesFormatsWithoutSuchSamples)
{
    EXPECT_THROW(make("bent.jpg", "", SampleType::kUint16), Failure);
    EXPECT_THROW(make("bent.png", "open.r16", std::nullopt), Failure);
}

} // namespace
} // namespace umbrixlib::test
