// SPDX-License-Identifier: MIT
/// Every fault of the corpus is found in every shipped map, at every strength.
#include "corpus.h"
#include "temporary_folder.h"
#include "test_share.h"
#include "toolkit/pictures/encode.h"
#include "toolkit/settings/defaults.h"
#include "toolkit/tasks/tasks.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

/// What nobody could find. Crops that leave no seam, as the map goes on there as it would anyway: the middle
/// of a brick behind the middle of a brick, a dune behind a dune. JPEG of a map in which nearly every block
/// has black texels, which were cut off behind JPEG.
bool leaves_no_trace(std::string const& fault, double strength, std::string const& file)
{
    auto const is_crop = [&](char const* name, double crop, char const* map) {
        return fault == name && strength == crop && file.find(map) != std::string::npos;
    };
    return is_crop("crop, columns", 0.2, "bricks_normal") ||
           is_crop("crop, columns", 0.45, "bricks_normal") || is_crop("crop, rows", 0.45, "bricks_normal") ||
           is_crop("crop, columns", 0.06, "dunes_normal") ||
           (fault == "JPEG" && file.find("cloth_height_Umbrix") != std::string::npos);
}

class FoundFaults : public testing::Test {
protected:
    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    bool is_found(MapFault const& fault, Picture const& map, double strength) const
    {
        write_png(fault.spoil(map, strength), path("spoilt.png"));
        CheckReport const report = check_of(path("spoilt.png"), fault.kind, [](CheckJob& job) {
            job.mode = job.kind == PictureKind::kLight ? std::optional(Modes_Projection) : std::nullopt;
        });
        return std::ranges::find(report.findings, fault.finding, &Finding::name) != report.findings.end();
    }

    /// Prints a row for each fault: what was found of its strengths in each of @p files.
    void look_into(PictureKind kind, std::vector<std::string> const& files) const
    {
        std::size_t cases = 0;
        for (MapFault const& fault : map_faults()) {
            if (fault.kind != kind) {
                continue;
            }
            std::string row = fmt::format("{:16} {:16}", fault.name, fault.finding);
            for (std::string const& file : files) {
                Picture const map = corpus_picture(file);
                row += fmt::format(" {}:", std::filesystem::path(file).stem().string());
                for (double const strength : fault.strengths) {
                    if (cases++ % test_share() != 0) {
                        continue;
                    }
                    bool const found = is_found(fault, map, strength);
                    row += found ? " found" : " missed";
                    EXPECT_TRUE(found || leaves_no_trace(fault.name, strength, file))
                        << fault.name << ' ' << strength << " in " << file;
                }
            }
            std::printf("%s\n", row.c_str());
        }
    }

    /// Umbrix maps of the shipped height maps, in bytes.
    std::vector<std::string> made_maps() const
    {
        std::vector<std::string> made;
        for (std::string const& heights : shipped_maps("height")) {
            MapJob job;
            job.files.input = heights;
            job.files.output = {path(std::filesystem::path(heights).stem().string() + "_Umbrix.png"), "map"};
            job.files.max_texels = 1 << 24;
            job.settings.rays = 16;
            Observer nobody;
            toolkit::run(job, nobody);
            made.push_back(job.files.output.file);
        }
        return made;
    }

    TemporaryFolder folder_;
};

TEST_F(FoundFaults, InNormalMaps)
{
    look_into(PictureKind::kNormals, shipped_maps("normal"));
}

TEST_F(FoundFaults, InHeightMaps)
{
    look_into(PictureKind::kHeights, shipped_maps("height"));
}

TEST_F(FoundFaults, InUmbrixMaps)
{
    look_into(PictureKind::kLight, made_maps());
}

TEST_F(FoundFaults, HaveNamesThatAreListed)
{
    std::ifstream stream(UMBRIX_CHECK_PAGE);
    std::string const page{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    for (char const* const name : kFindingNames) {
        EXPECT_NE(page.find(fmt::format("`{}`", name)), std::string::npos) << name;
    }
    for (MapFault const& fault : map_faults()) {
        EXPECT_NE(std::ranges::find(kFindingNames, fault.finding), std::end(kFindingNames)) << fault.finding;
    }
}

TEST_F(FoundFaults, HaveTheFirstTexelAsAUserCounts)
{
    Picture normals = corpus_picture(shipped_maps("normal")[0]);
    std::size_t const rows_below =
        static_cast<std::size_t>(normals.height - 1 - 3); // the fourth row from the top
    for (std::size_t x = 200; x < 256; ++x) {
        std::uint8_t* const texel = normals.texel(rows_below * static_cast<std::size_t>(normals.width) + x);
        texel[2] = 20;
    }
    write_png(normals, path("spoilt.png"));
    Findings const found = check_of(path("spoilt.png"), PictureKind::kNormals).findings;
    auto const inwards = std::ranges::find(found, "blue-below-half", &Finding::name);
    ASSERT_NE(inwards, found.end()) << names_of(found);
    EXPECT_EQ(inwards->texels, 56U);
    EXPECT_EQ(inwards->first, (TexelPlace{200, 3}));
    EXPECT_NEAR(inwards->strength, 20.5 / 127.5 - 1.0, 0.01);
    EXPECT_NE(inwards->text.find("56 of 65536 texels (0.0854 %), the first at 200, 3"), std::string::npos)
        << inwards->text;
}

TEST_F(FoundFaults, AreNaNs)
{
    Picture heights = make_picture(32, 32, 1, SampleType::kFloat);
    heights.samples<float>()[5] = std::numeric_limits<float>::quiet_NaN();
    Observer nobody;
    write_picture(path("h.pfm"), *output_format("h.pfm"), "h.pfm", heights, Compression::kFast, nobody);
    Findings const found = check_of(path("h.pfm"), PictureKind::kHeights).findings;
    ASSERT_EQ(names_of(found), "invalid-texels");
    EXPECT_EQ(found[0].first, (TexelPlace{5, 31}));
}

} // namespace
} // namespace umbrixlib::test
