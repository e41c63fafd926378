// SPDX-License-Identifier: MIT
/// Heights of normal maps: the way back from normals of the examples, how samples are read, ranges.
#include "task_test.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/encoder.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class HeightTask : public TaskTest {
protected:
    NormalReport make_normals(std::string const& heights, std::string const& output, Saving const& saving,
                              Settings const& settings = kDefaults, NormalY green = NormalY::kUp)
    {
        NormalJob job;
        job.files = files(heights, output);
        job.files.output.saving = saving;
        job.settings = settings;
        job.normal_y = green;
        return toolkit::run(job, nobody_);
    }

    HeightReport make_heights(std::string const& normals, std::string const& output,
                              Settings const& settings = kDefaults, HeightRange const& range = {},
                              std::optional<SampleType> depth = std::nullopt)
    {
        HeightJob job;
        job.files = files(normals, output);
        job.files.output.saving.depth = depth;
        job.settings = settings;
        job.range = range;
        return toolkit::run(job, notes_);
    }

    std::vector<double> heights_in(std::string const& name) const
    {
        Picture const all = picture(name);
        std::vector<double> heights;
        with_samples(all, [&](auto samples) {
            for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(all.channels)) {
                heights.push_back(to_number(samples[i]) / full_scale(all.type));
            }
        });
        return heights;
    }

    Attributes told_by(std::string const& name) const
    {
        return DecodedImage(path(name), name, kMostTexels).picture().attributes;
    }

    bool is_noted(std::string const& text) const
    {
        return std::ranges::any_of(
            notes_.texts, [&](std::string const& each) { return each.find(text) != std::string::npos; });
    }

    /// Smooth hills of 0.1 to 0.9 that repeat.
    void put_hills(std::string const& name)
    {
        put_heights(name, 64, 16, [](int x, int y) {
            return 0.5 + 0.2 * std::sin(0.09817477 * 2 * x) + 0.2 * std::cos(0.09817477 * (y + x));
        });
    }

    Notes notes_;
};

/// What is left of the difference of two square pictures without that which the central difference does not
/// see: root of the mean square.
double rms_difference(std::vector<double> const& a, std::vector<double> const& b, bool tiles)
{
    auto const side = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(a.size()))));
    std::vector<double> difference(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        difference[i] = a[i] - b[i];
    }
    for (unsigned const stripes : {0U, 1U, 2U, 3U}) {
        if (stripes != 0 && (!tiles || side % 2 != 0)) {
            continue;
        }
        auto const sign = [&](std::size_t i) {
            std::size_t const steps =
                ((stripes & 1U) != 0 ? i % side : 0) + ((stripes & 2U) != 0 ? i / side : 0);
            return steps % 2 == 0 ? 1.0 : -1.0;
        };
        double sum = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            sum += sign(i) * difference[i];
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            difference[i] -= sign(i) * sum / static_cast<double>(a.size());
        }
    }
    double squares = 0.0;
    for (double const each : difference) {
        squares += each * each;
    }
    return std::sqrt(squares / static_cast<double>(a.size()));
}

struct SavedNormals {
    char const* extension;
    SampleType type;
};

struct Material {
    char const* name;
    double most_from_bytes; ///< Root of the mean square, of the relief: a step of 8 bits is more where it is
                            ///< steep.
};

TEST_F(HeightTask, BringsTheHeightsOfTheExamplesBack)
{
    constexpr SavedNormals kDepths[] = {
        {"png", SampleType::kUint8}, {"png", SampleType::kUint16}, {"pfm", SampleType::kFloat}};
    constexpr Material kMaterials[] = {
        {"bricks", 0.0014}, {"cloth", 0.0010}, {"cobbles", 0.0009}, {"dunes", 0.0004}};
    for (auto const& [material, most_from_bytes] : kMaterials) {
        std::string const source = fmt::format("{}/textures/{}_height.png", UMBRIX_EXAMPLES, material);
        std::filesystem::copy_file(source, path(fmt::format("{}.png", material)));
        std::vector<double> const heights = heights_in(fmt::format("{}.png", material));
        for (bool const tiles : {true, false}) {
            Settings settings = kDefaults;
            settings.tile = tiles;
            for (SavedNormals const& depth : kDepths) {
                if (!tiles && depth.type == SampleType::kFloat) {
                    continue; // 16 bits show the same
                }
                std::string const normals = fmt::format("normals.{}", depth.extension);
                make_normals(fmt::format("{}.png", material), normals, {.depth = depth.type}, settings);
                make_heights(normals, "made.pfm", settings, {}, SampleType::kFloat);
                EXPECT_LT(rms_difference(heights, heights_in("made.pfm"), tiles),
                          depth.type == SampleType::kUint8 ? most_from_bytes : 0.00001)
                    << material << ' ' << static_cast<int>(depth.type) << ' ' << tiles;
            }
        }
    }
}

TEST_F(HeightTask, MakesHeightsWhoseNormalsAreTheSame)
{
    put_hills("hills.png");
    for (NormalY const green : {NormalY::kUp, NormalY::kDown}) {
        make_normals("hills.png", "normals.png", {.depth = SampleType::kUint16}, kDefaults, green);
        EXPECT_EQ(make_heights("normals.png", "made.png").green, green); // the file tells it
        make_normals("made.png", "again.png", {.depth = SampleType::kUint16}, kDefaults, green);
        TexelBytes const first = picture("normals.png").bytes;
        TexelBytes const second = picture("again.png").bytes;
        ASSERT_EQ(first.size(), second.size());
        int most = 0;
        for (std::size_t i = 0; i + 1 < first.size(); i += 2) {
            int const one = first[i] + 256 * first[i + 1];
            int const other = second[i] + 256 * second[i + 1];
            most = std::max(most, std::abs(one - other));
        }
        EXPECT_LE(most, 4); // heights of 16 bits cost that
    }
}

TEST_F(HeightTask, ReadsBytesAsTheyWereMade)
{
    put_hills("hills.png");
    std::vector<double> const heights = heights_in("hills.png");
    struct Way {
        char const* file;
        Saving saving;
        char const* reading;
    };
    Saving const nearest{.depth = SampleType::kUint8, .rounding = Rounding::kNearest};
    Saving const dithered{.depth = SampleType::kUint8, .dither = true};
    // PNG tells how it was made, TGA does not.
    for (Way const& way : {Way{"n.png", {}, "cut off"},
                           {"n.tga", {}, "cut off"},
                           {"n.png", nearest, "rounded"},
                           {"n.tga", nearest, "rounded"},
                           {"n.png", dithered, "rounded"}}) {
        make_normals("hills.png", way.file, way.saving);
        HeightReport const report = make_heights(way.file, "made.exr", kDefaults, {}, SampleType::kFloat);
        EXPECT_NE(report.reading.find(way.reading), std::string::npos) << way.file << report.reading;
        EXPECT_LT(rms_difference(heights, heights_in("made.exr"), true), way.saving.dither ? 0.004 : 0.002);
    }
}

TEST_F(HeightTask, ReadsBytesWhoseFlatGroundIsAt128)
{
    put_hills("hills.png");
    Settings steep = kDefaults;
    steep.relief = 0.3f;
    make_normals("hills.png", "n.exr", {.depth = SampleType::kFloat}, steep);
    Picture const vectors = picture("n.exr");
    Picture bytes = make_picture(vectors.width, vectors.height, 3);
    std::ranges::transform(vectors.samples<float>(), bytes.samples<std::uint8_t>().begin(), [](float each) {
        return static_cast<std::uint8_t>(std::lround(static_cast<double>(each) * 127.0 + 128.0));
    });
    tga_encoder().encode(path("n.tga"), bytes);
    EXPECT_EQ(make_heights("n.tga", "made.exr").reading, "bytes with flat ground at 128");
}

TEST_F(HeightTask, CentresTheHeightsAndTellsWhatIsUnseen)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {.depth = SampleType::kUint16});
    HeightReport const report = make_heights("n.png", "made.png");
    EXPECT_NEAR((report.low + report.high) / 2.0, 0.5, 1e-6);
    EXPECT_NEAR(report.high - report.low, 0.8, 0.03);
    EXPECT_TRUE(report.stripes_x_unseen && report.stripes_y_unseen);
    Settings settings = kDefaults;
    settings.h_tile = false;
    HeightReport const other = make_heights("n.png", "made.png", settings, {HeightRange::How::kOwn});
    EXPECT_FALSE(other.stripes_x_unseen);
    EXPECT_TRUE(other.stripes_y_unseen);
}

TEST_F(HeightTask, WritesNoWholeNumbersBeyondTheirRange)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {.depth = SampleType::kUint16});
    Settings low = kDefaults;
    low.relief = 0.02f;
    try {
        make_heights("n.png", "made.png", low);
        FAIL() << "it was written";
    } catch (Failure const& failure) {
        EXPECT_EQ(failure.fault, Fault::kHeightsOutsideRange);
        auto const remedy = height_range_called(failure.remedy);
        ASSERT_TRUE(remedy.has_value()) << failure.remedy;
        EXPECT_NEAR(remedy->low, -0.5, 0.05);
        EXPECT_NEAR(remedy->high, 1.5, 0.05);
    }
    EXPECT_FALSE(std::filesystem::exists(path("made.png")));
}

/// Normals of heights that tell their range are those of the heights that they stand for.
TEST_F(HeightTask, TellsARangeThatNormalsObey)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.exr", {.depth = SampleType::kFloat});
    Settings low = kDefaults;
    low.relief = 0.02f;
    make_heights("n.exr", "floats.exr", low, {}, SampleType::kFloat);
    make_heights("n.exr", "own.png", low, {HeightRange::How::kOwn});
    make_heights("n.exr", "given.png", low, {HeightRange::How::kGiven, -1.0, 2.0});
    EXPECT_EQ(value_of(told_by("given.png"), "height-range"), "-1,2");
    EXPECT_NE(value_of(told_by("own.png"), "height-range"), "");
    EXPECT_NE(value_of(told_by("floats.exr"), "height-limits"), "");
    std::vector<double> const wanted = heights_in("n.exr"); // the red of the normals
    for (char const* const heights : {"floats.exr", "own.png", "given.png"}) {
        make_normals(heights, "again.exr", {.depth = SampleType::kFloat}, low);
        EXPECT_LT(rms_difference(wanted, heights_in("again.exr"), false), 2e-4) << heights;
    }
    Settings asked = low;
    asked.height_range = {HeightRange::How::kGiven, 0.0, 1.0};
    make_normals("given.png", "other.exr", {.depth = SampleType::kFloat}, asked);
    EXPECT_GT(rms_difference(wanted, heights_in("other.exr"), false), 0.01);
}

TEST_F(HeightTask, TellsARangeThatAFitObeys)
{
    put_hills("hills.png");
    Settings steep = kDefaults;
    steep.relief = 0.3f;
    make_normals("hills.png", "n.png", {.depth = SampleType::kUint16}, steep);
    make_heights("n.png", "made.png", steep, {HeightRange::How::kGiven, -1.0, 2.0});
    FitJob job;
    job.heights = path("made.png");
    job.normals = path("n.png");
    job.max_texels = kMostTexels;
    EXPECT_NEAR(toolkit::run(job, nobody_).relief, 0.3, 0.006); // and not three times as much
}

TEST_F(HeightTask, ReadsBytesThatAConversionMade)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {.depth = SampleType::kUint16});
    ConvertJob job;
    job.files = files("n.png", "cut.png");
    job.files.output.saving.depth = SampleType::kUint8;
    toolkit::run(job, nobody_);
    EXPECT_EQ(make_heights("cut.png", "made.exr").reading, "bytes that were cut off");
    job.files.output = {path("near.png"), "near.png"};
    job.files.output.saving = {.depth = SampleType::kUint8, .rounding = Rounding::kNearest};
    toolkit::run(job, nobody_);
    EXPECT_EQ(value_of(told_by("near.png"), "rounding"), "nearest");
    EXPECT_EQ(make_heights("near.png", "made.exr").reading, "bytes that were rounded");
}

TEST_F(HeightTask, CutsWhatLiesOutsideAGivenRange)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {.depth = SampleType::kUint16});
    make_heights("n.png", "made.png", kDefaults, {HeightRange::How::kGiven, 0.4, 0.6});
    EXPECT_TRUE(is_noted("lie outside 0.4 to 0.6 and are cut"));
}

TEST_F(HeightTask, TakesOddNormalsForFlatGround)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    Picture normals = make_picture(8, 8, 3, SampleType::kFloat);
    auto const samples = normals.samples<float>();
    for (std::size_t i = 0; i < normals.texels(); ++i) {
        samples[3 * i] = 0.6f;
        samples[3 * i + 2] = i == 9 ? -0.8f : 0.8f;
    }
    samples[0] = -1.0f; // so the samples are vectors
    exr_encoder().encode(path("n.exr"), normals);
    HeightReport const report = make_heights("n.exr", "made.exr");
    EXPECT_TRUE(is_noted("1 of its 64 normals are none of a surface and are taken for flat ground"));
    EXPECT_TRUE(std::isfinite(report.low) && std::isfinite(report.high));

    samples[4] = kNan;
    exr_encoder().encode(path("n.exr"), normals);
    EXPECT_THROW(make_heights("n.exr", "made.exr"), Failure);
    Settings settings = kDefaults;
    settings.replace_invalid.replacement = 0.0;
    EXPECT_NO_THROW(make_heights("n.exr", "made.exr", settings));
}

TEST_F(HeightTask, TellsALeanThatHeightsWhichRepeatDoNotHave)
{
    Settings open = kDefaults;
    open.tile = false;
    put_heights("ramp.png", 64, 16, [](int x, int) { return 0.1 + 0.8 * x / 63.0; });
    make_normals("ramp.png", "n.png", {.depth = SampleType::kUint16}, open);
    make_heights("n.png", "open.png", open);
    EXPECT_FALSE(is_noted("its normals lean"));
    make_heights("n.png", "made.png");
    EXPECT_TRUE(is_noted("its normals lean, as if the heights rose by 0.81 from left to right; heights that "
                         "repeat cannot, so this is left out"));
    Settings sideways = kDefaults; // what does not repeat keeps its lean
    sideways.h_tile = false;
    notes_.texts.clear();
    make_heights("n.png", "sideways.png", sideways);
    EXPECT_FALSE(is_noted("its normals lean"));
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {});
    make_heights("n.png", "hills_made.png");
    EXPECT_FALSE(is_noted("its normals lean"));
}

TEST_F(HeightTask, MakesNoHeightsOfNoRelief)
{
    put_hills("hills.png");
    make_normals("hills.png", "n.png", {});
    Settings settings = kDefaults;
    settings.relief = 0.0f;
    EXPECT_THROW(make_heights("n.png", "made.png", settings), Failure);
}

} // namespace
} // namespace umbrixlib::test
