// SPDX-License-Identifier: MIT
/// The shipped maps, and all that our own commands make of them, are sound.
#include "corpus.h"
#include "temporary_folder.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/tasks.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

class SoundMaps : public testing::Test {
protected:
    /// Files of a job that makes @p name of @p input.
    JobFiles files(std::string const& input, std::string const& name, Saving const& saving = {}) const
    {
        JobFiles files;
        files.input = input;
        files.output = {(folder_.path() / name).string(), name, saving};
        files.max_texels = 1 << 24;
        return files;
    }

    template <typename MakingJob>
    std::string made(MakingJob const& job)
    {
        Observer nobody;
        toolkit::run(job, nobody);
        return job.files.output.file;
    }

    /// Without a kind, as the file tells it.
    void expect_sound(std::string const& file, PictureKind kind, std::string const& how, bool tiles = true)
    {
        CheckReport const report = check_of(file, kind, [tiles](CheckJob& job) {
            job.kind.reset();
            job.normal_y.reset();
            job.h_tile = job.v_tile = tiles;
        });
        EXPECT_EQ(report.taken_for, kind) << how;
        for (Finding const& each : report.findings) {
            ADD_FAILURE() << how << ": " << each.name << ": " << each.text;
        }
    }

    std::string normals_of(std::string const& heights, std::string const& name, Saving const& saving,
                           float relief = kDefaults.relief)
    {
        NormalJob job;
        job.files = files(heights, name, saving);
        job.settings.relief = relief;
        return made(job);
    }

    TemporaryFolder folder_;
};

constexpr SampleType kDepths[] = {SampleType::kUint8, SampleType::kUint16};

TEST_F(SoundMaps, AreTheShippedOnes)
{
    for (std::string const& file : shipped_maps("normal")) {
        expect_sound(file, PictureKind::kNormals, file);
        CheckReport const report = check_of(file, PictureKind::kNormals);
        EXPECT_EQ(report.green, NormalY::kUp) << file;
        EXPECT_GT(report.green_times, 10.0) << file;
    }
    for (std::string const& file : shipped_maps("height")) {
        expect_sound(file, PictureKind::kHeights, file);
    }
}

TEST_F(SoundMaps, AreNormalMapsOfOurs)
{
    for (std::string const& heights : shipped_maps("height")) {
        for (float const relief : {0.005f, 0.05f, 0.4f}) {
            for (SampleType const depth : kDepths) {
                std::string const file = normals_of(heights, "n.png", {depth}, relief);
                expect_sound(file, PictureKind::kNormals, fmt::format("{} relief {}", heights, relief));
            }
        }
        for (Saving const& saving : {Saving{{}, Rounding::kNearest}, Saving{{}, Rounding::kCut, true}}) {
            expect_sound(normals_of(heights, "n.png", saving), PictureKind::kNormals,
                         heights + " rounded or dithered");
        }
        expect_sound(normals_of(heights, "n.exr", {SampleType::kHalf}), PictureKind::kNormals,
                     heights + " in halves");
    }
}

TEST_F(SoundMaps, TellWhichWayTheirGreenPoints)
{
    for (std::string const& heights : shipped_maps("height")) {
        for (NormalY const green : {NormalY::kUp, NormalY::kDown}) {
            NormalJob job;
            job.files = files(heights, "n.tga");
            job.normal_y = green;
            EXPECT_EQ(check_of(made(job), PictureKind::kNormals).green, green) << heights;
        }
    }
}

TEST_F(SoundMaps, AreHeightMapsOfOurs)
{
    for (std::string const& heights : shipped_maps("height")) {
        for (SampleType const depth : kDepths) {
            HeightJob job;
            job.files = files(normals_of(heights, "n.png", {}), "h.png", {depth});
            job.range.how = HeightRange::How::kOwn;
            expect_sound(made(job), PictureKind::kHeights, heights + " there and back");
        }
    }
}

TEST_F(SoundMaps, AreUmbrixMapsOfOurs)
{
    for (std::string const& heights : shipped_maps("height")) {
        for (Modes const mode : {Modes_Projection, Modes_UnitBasis, Modes_FlatIsFull, Modes_Squared}) {
            for (bool const occlusion : {false, true}) {
                MapJob job;
                job.files = files(heights, "m.png", {occlusion ? SampleType::kUint8 : SampleType::kUint16});
                job.settings.mode = mode;
                job.settings.occlusion = occlusion;
                job.settings.rays = 12;
                expect_sound(made(job), PictureKind::kLight,
                             fmt::format("{} mode {}", heights, static_cast<int>(mode)));
            }
        }
        MapJob occlusion; // which is off by a texel across the borders, as without light can be seen
        occlusion.files = files(heights, "m.png", {SampleType::kUint16});
        occlusion.settings.light = false;
        occlusion.settings.rays = 85; // of which each share is a multiple of 257
        expect_sound(made(occlusion), PictureKind::kLight, heights + " without light", false);
        MapJob graded;
        graded.files = files(heights, "m.png");
        graded.settings.rays = 12;
        graded.settings.brightness = 0.3f;
        expect_sound(made(graded), PictureKind::kLight, heights + " graded");
    }
    for (std::string const& normals : shipped_maps("normal")) {
        MapJob job;
        job.files = files(normals, "m.png");
        job.settings.rays = 12;
        expect_sound(made(job), PictureKind::kLight, normals);
    }
}

TEST_F(SoundMaps, AreTheLayersOfAStack)
{
    StackJob job;
    for (std::size_t const material : {0U, 2U, 3U}) {
        StackLayer layer;
        layer.label = fmt::format("layer {}", material);
        layer.file = shipped_maps("height")[material];
        layer.opacity = 40;
        job.description.layers.push_back(layer);
    }
    job.normals = files("", "n.png").output;
    job.heights = files("", "h.png").output;
    job.map = files("", "m.png").output;
    job.max_texels = 1 << 24;
    job.settings.rays = 12;
    Observer nobody;
    toolkit::run(job, nobody);
    expect_sound(job.normals.file, PictureKind::kNormals, "normals of a stack");
    expect_sound(job.heights.file, PictureKind::kHeights, "heights of a stack");
    expect_sound(job.map.file, PictureKind::kLight, "map of a stack");
}

TEST_F(SoundMaps, AreNoPicturesInALight)
{
    MapJob map;
    map.files = files(shipped_maps("height")[0], "m.png");
    map.settings.rays = 4;
    RelightJob job;
    job.files = files(made(map), "lit.png");
    CheckReport const report =
        check_of(made(job), PictureKind::kHeights, [](CheckJob& check) { check.kind.reset(); });
    EXPECT_EQ(names_of(report.findings), "lit-picture");
}

} // namespace
} // namespace umbrixlib::test
