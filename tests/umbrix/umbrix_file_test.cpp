// SPDX-License-Identifier: MIT
// UmbrixFile with the real kernels and the real DevIL, compared with its steps called one by one.
#include "files/umbrix_file.h"

#include "boundary/texture_kernels.h"
#include "file_run.h"
#include "normals/height_to_normal.h"
#include "same_bits.h"
#include "texels/texel_umbrix.h"
#include "umbrix/grading.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sched.h>

namespace {

using umbrixlib::test::busy_options;
using umbrixlib::test::neutral_options;
using umbrixlib::test::noise_picture;
using umbrixlib::test::Picture;
using umbrixlib::test::picture_byte;
using umbrixlib::test::release_kept;

class UmbrixFileRun : public umbrixlib::test::FileRun {
protected:
    bool run(umbrix_options& options, char const* input, char const* output)
    {
        return UmbrixFile(file(input), file(output), options, &layers_, nullptr, &status_, &progress_);
    }
};

/// The map before its grading: each step called by itself, on the bytes of @p input.
std::vector<float4> chained(Picture const& input, umbrix_options& options)
{
    int const width = input.width;
    int const height = input.height;
    std::size_t const texels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<float> heights(texels);
    for (std::size_t i = 0; i < texels; ++i) {
        auto const colour = [&](std::size_t c) { return double(float(input.bytes[3 * i + c] / 255.0)); };
        heights[i] = float((colour(0) + colour(1) + colour(2)) / 3.0);
    }
    std::vector<float> filtered(texels);
    float spatial[3];
    float range[256] = {};
    GenerateExp(1.5f, spatial);
    GenerateExp(128.0f, range);
    BilateralFilter(heights.data(), filtered.data(), height, width, 1.5f, spatial, range);
    PreProcess(filtered.data(), height, width, options);
    std::vector<float3> light(texels);
    std::string text;
    int progress = 0;
    HeightToNormal(filtered.data(), light.data(), height, width, options.n_scale, 0.0f, 0.0f, false, 0, 0.0f,
                   false, 0.0f, 0.0f, false, &text, &progress);
    Normal2Umbrix(light.data(), height, width, options.UmbrixMode, 0, 1);
    for (float& each : filtered) {
        each *= options.h_scale;
    }
    std::vector<ray> a(18);
    std::vector<ray> b(18);
    std::vector<ray> c(18);
    ray* pa = a.data();
    ray* pb = b.data();
    ray* pc = c.data();
    GenerateRays(height, width, pa, pb, pc, 9, options.theta_limit, options.alpha_limit);
    std::vector<float3> open(texels);
    Height2DirectionalAO(open.data(), filtered.data(), height, width, pa, pb, pc, 9, options.h_scale,
                         options.radius, true, true, true, &progress);
    std::vector<float4> map(texels);
    for (std::size_t i = 0; i < texels; ++i) {
        map[i] = {light[i].x * open[i].x, light[i].y * open[i].y, light[i].z * open[i].z, 1.0f};
    }
    return map;
}

void expect_bytes_of(std::vector<float4> const& map, Picture const& output)
{
    ASSERT_EQ(output.channels, 3);
    ASSERT_EQ(output.bytes.size(), 3 * map.size());
    for (std::size_t i = 0; i < map.size(); ++i) {
        ASSERT_EQ(output.bytes[3 * i], picture_byte(map[i].x)) << i;
        ASSERT_EQ(output.bytes[3 * i + 1], picture_byte(map[i].y)) << i;
        ASSERT_EQ(output.bytes[3 * i + 2], picture_byte(map[i].z)) << i;
    }
}

TEST_F(UmbrixFileRun, IsTheChainOfItsSteps)
{
    Picture const input = noise_picture(37, 23, 3);
    input.save(folder_ / "in.tga");
    umbrix_options options = busy_options();
    options.height_map = options.generate_normal = true;
    options.b_radius = 1.5f;
    ASSERT_TRUE(run(options, "in.tga", "out.tga"));

    std::vector<float4> map = chained(input, options);
    PostProcess(map.data(), 23, 37, options);
    expect_bytes_of(map, load("out.tga"));
    EXPECT_EQ(status_, "Storing Results");
}

/// The map goes from its factors to its bytes without being stored. Large enough for large arrays.
TEST_F(UmbrixFileRun, IsTheChainOfItsStepsWithoutGradingToo)
{
    Picture const input = noise_picture(1030, 1021, 3);
    input.save(folder_ / "in.tga");
    umbrix_options options = busy_options();
    options.height_map = options.generate_normal = true;
    options.b_radius = 1.5f;
    options.radius = 0.02f;
    options.contrast = options.brightness = options.smooth = 0.0f;
    ASSERT_TRUE(run(options, "in.tga", "out.tga"));
    expect_bytes_of(chained(input, options), load("out.tga"));
}

TEST_F(UmbrixFileRun, LightOfANormalMapIsThatOfNormal2umbrix)
{
    Picture const input = noise_picture(16, 8, 4);
    input.save(folder_ / "in.tga");
    umbrix_options options = neutral_options();
    ASSERT_TRUE(run(options, "in.tga", "out.tga"));
    Picture const output = load("out.tga");
    for (std::size_t i = 0; i < input.bytes.size(); i += 4) {
        auto const component = [&](std::size_t c) {
            return float(double(float(input.bytes[i + c] / 255.0)) * 2.0 - 1.0);
        };
        float3 light = {};
        normal2umbrix({component(0), component(1), component(2)}, light, options);
        ASSERT_EQ(output.bytes[i], picture_byte(light.x));
        ASSERT_EQ(output.bytes[i + 1], picture_byte(light.y));
        ASSERT_EQ(output.bytes[i + 2], picture_byte(light.z));
        ASSERT_EQ(output.bytes[i + 3],
                  static_cast<unsigned char>(double(float(input.bytes[i + 3] / 255.0)) * 255.0));
    }
}

TEST_F(UmbrixFileRun, GivesTheSamePictureAgainAndAgain)
{
    noise_picture(64, 48, 3).save(folder_ / "in.tga");
    umbrix_options options = busy_options();
    options.height_map = options.generate_normal = true;
    options.b_radius = 2.0f;
    ASSERT_TRUE(run(options, "in.tga", "first.tga"));
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(run(options, "in.tga", "again.tga"));
        EXPECT_EQ(load("first.tga").bytes, load("again.tga").bytes);
    }
}

TEST_F(UmbrixFileRun, PreserveKeepsTheScaledHeightInAlpha)
{
    Picture const input = noise_picture(12, 12, 4);
    input.save(folder_ / "in.tga");
    umbrix_options options = neutral_options();
    options.calc_type = calc_type_light_occlusion;
    options.h_scale = 0.5f;
    options.preserve = options.keep_buffers = true;
    ASSERT_TRUE(run(options, "in.tga", "out.tga"));
    Picture const output = load("out.tga");
    for (std::size_t i = 3; i < input.bytes.size(); i += 4) {
        float const height = float(input.bytes[i] / 255.0);
        EXPECT_EQ(options.height_copy[i / 4], height);
        EXPECT_EQ(output.bytes[i], picture_byte(height * 0.5f));
    }
    release_kept(options);
}

TEST_F(UmbrixFileRun, ASmallerTeamLeavesItsTexelsOut)
{
    if (omp_get_num_procs() < 2) {
        // On a single processor every team is large enough.
        EXPECT_EQ(omp_get_num_procs(), 1);
        return;
    }
    Picture const input = noise_picture(8, 8, 3);
    input.save(folder_ / "in.tga");
    omp_set_num_threads(1);
    umbrix_options options = neutral_options();
    options.height_map = true;
    ASSERT_TRUE(run(options, "in.tga", "out.tga"));
    Picture const output = load("out.tga");
    EXPECT_EQ(output.bytes[0], 255);
    EXPECT_EQ(output.bytes[3], input.bytes[3]) << "texel 1 belongs to a thread that does not exist";
}

TEST_F(UmbrixFileRun, ASmallerTeamSeesNothingOfTheRunBefore)
{
    Picture(8, 8, 3, 255).save(folder_ / "bright.tga");
    Picture(8, 8, 3, 0).save(folder_ / "dark.tga");
    noise_picture(8, 8, 3).save(folder_ / "in.tga");
    std::vector<float3> normals[2];
    for (int i = 0; i < 2; ++i) {
        omp_set_num_threads(omp_get_num_procs());
        umbrix_options before = neutral_options();
        before.height_map = true;
        ASSERT_TRUE(run(before, i == 0 ? "bright.tga" : "dark.tga", "out.tga"));
        omp_set_num_threads(1);
        umbrix_options options = neutral_options();
        options.height_map = options.generate_normal = options.keep_buffers = true;
        options.b_radius = 1.0f;
        ASSERT_TRUE(run(options, "in.tga", "out.tga"));
        normals[i].assign(options.normal_map, options.normal_map + 64);
        release_kept(options);
    }
    EXPECT_SAME_BITS(normals[0], normals[1]);
}

/// The team of a run, and how many processors its thread may use.
struct Team {
    int threads;
    bool on_one_processor;
};

class UmbrixFileTeams : public UmbrixFileRun, public testing::WithParamInterface<Team> {
protected:
    /// Leaves the calling thread one processor, or gives it back what it had.
    void narrow(bool narrowed)
    {
        if (!narrowed) {
            sched_setaffinity(0, sizeof before_, &before_);
            return;
        }
        ASSERT_EQ(sched_getaffinity(0, sizeof before_, &before_), 0);
        cpu_set_t one;
        CPU_ZERO(&one);
        for (int processor = 0; processor < CPU_SETSIZE; ++processor) {
            if (CPU_ISSET(processor, &before_)) {
                CPU_SET(processor, &one);
                break;
            }
        }
        ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    }

private:
    cpu_set_t before_;
};
INSTANTIATE_TEST_SUITE_P(Sizes, UmbrixFileTeams,
                         testing::Values(Team{0, false}, Team{1, false}, Team{3, false}, Team{16, false},
                                         Team{64, false}, Team{2, true}, Team{4, true}));

TEST_P(UmbrixFileTeams, OfAtLeastTheNumberOfProcessorsGiveTheSamePicture)
{
    for (int const channels : {3, 4}) {
        noise_picture(37, 23, channels).save(folder_ / "in.tga");
        umbrix_options options = busy_options();
        options.height_map = options.generate_normal = channels == 3;
        options.b_radius = 2.0f;
        ASSERT_TRUE(run(options, "in.tga", "as many.tga"));
        omp_set_num_threads(GetParam().on_one_processor ? GetParam().threads
                                                        : omp_get_num_procs() + GetParam().threads);
        narrow(GetParam().on_one_processor);
        bool const done = run(options, "in.tga", "more.tga");
        narrow(false);
        ASSERT_TRUE(done);
        EXPECT_EQ(load("as many.tga").bytes, load("more.tga").bytes);
        omp_set_num_threads(omp_get_num_procs());
    }
}

} // namespace
