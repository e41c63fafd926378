// SPDX-License-Identifier: MIT
// UmbrixFile_GPU with the real kernels and the real DevIL, and with a graphics library whose stages call the
// operators of the processor: compared with its steps called one by one, and with UmbrixFile.
#include "files/umbrix_file_gpu.h"

#include "boundary/texture_kernels.h"
#include "file_run.h"
#include "files/umbrix_file.h"
#include "graphics_fake.h"
#include "layers/nlayers.h"
#include "normals/height_to_normal.h"
#include "same_bits.h"
#include "umbrix/grading.h"

#include <cmath>

namespace {

using umbrixlib::test::computing_stages;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::neutral_options;
using umbrixlib::test::noise_picture;
using umbrixlib::test::Picture;
using umbrixlib::test::picture_byte;
using umbrixlib::test::release_kept;

constexpr int kWidth = 37;
constexpr int kHeight = 23;
constexpr std::size_t kTexels = std::size_t{kWidth} * kHeight;

/// Smooth grey hills, in the colours and the alpha.
Picture hills_picture(int side, int channels)
{
    Picture picture(side, side, channels, 0);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            double const height =
                0.5 + 0.3 * std::sin(x * 6.2831853 / side * 2) * std::cos(y * 6.2831853 / side * 3) +
                0.2 * std::sin((x + 2 * y) * 6.2831853 / side * 5);
            std::fill_n(picture.at(x, y), channels, static_cast<unsigned char>(height * 255.0));
        }
    }
    return picture;
}

/// Busy ones, with the filters of normals.
umbrix_options filtering_options()
{
    umbrix_options options = umbrixlib::test::busy_options();
    options.gaussian = 0.5f;
    options.L_Detail = 1.5f;
    return options;
}

class UmbrixFileGpuRun : public umbrixlib::test::FileRun {
protected:
    UmbrixFileGpuRun() { GraphicsFake::instance().reset(&computing_stages()); }
    ~UmbrixFileGpuRun() override { EXPECT_EQ(GraphicsFake::instance().faults, std::vector<std::string>()); }

    bool run(umbrix_options& options, char const* input, char const* output)
    {
        return UmbrixFile_GPU({false, 0, 0}, file(input), file(output), options, &layers_, nullptr, &status_,
                              &progress_);
    }

    /// A run whose kept heights are of no interest.
    bool run_and_release(umbrix_options options, char const* input, char const* output)
    {
        bool const result = run(options, input, output);
        delete[] options.height_copy;
        return result;
    }

    bool run_on_processor(umbrix_options options, char const* input, char const* output)
    {
        return UmbrixFile(file(input), file(output), options, &layers_, nullptr, &status_, &progress_);
    }
};

float colour_of(unsigned char byte)
{
    return float(byte / 255.0);
}

std::vector<float3> occlusion_of(std::vector<float>& heights, umbrix_options const& options, bool tile)
{
    auto const room = 2 * static_cast<std::size_t>(options.rays);
    std::vector<ray> a(room);
    std::vector<ray> b(room);
    std::vector<ray> c(room);
    ray* pa = a.data();
    ray* pb = b.data();
    ray* pc = c.data();
    GenerateRays(kHeight, kWidth, pa, pb, pc, options.rays, options.theta_limit, options.alpha_limit);
    std::vector<float3> open(kTexels);
    int progress = 0;
    Height2DirectionalAO(open.data(), heights.data(), kHeight, kWidth, pa, pb, pc, options.rays, 1.0f,
                         options.radius, tile, options.h_tile, options.v_tile, &progress);
    return open;
}

TEST_F(UmbrixFileGpuRun, IsTheChainOfItsSteps)
{
    Picture const input = noise_picture(kWidth, kHeight, 4);
    input.save(folder_ / "in.tga");
    for (bool const height_map : {false, true}) {
        for (bool const keep : {false, true}) {
            umbrix_options options = filtering_options();
            options.height_map = height_map;
            options.generate_normal = options.preserve = true;
            options.b_radius = 1.5f;
            options.keep_buffers = keep;
            ASSERT_TRUE(run(options, "in.tga", "out.tga"));

            std::vector<float> unfiltered(kTexels);
            for (std::size_t i = 0; i < kTexels; ++i) {
                auto const colour = [&](std::size_t c) { return double(colour_of(input.bytes[4 * i + c])); };
                unfiltered[i] = height_map ? float(1.0 - (colour(0) + colour(1) + colour(2)) / 3.0)
                                           : float(1.0 - input.bytes[4 * i + 3] / 255.0);
            }
            std::vector<float> heights(kTexels);
            float spatial[3];
            float range[256] = {};
            GenerateExp(1.5f, spatial);
            GenerateExp(128.0f, range);
            BilateralFilter(unfiltered.data(), heights.data(), kHeight, kWidth, 1.5f, spatial, range);
            EXPECT_TRUE(umbrixlib::test::same_bits(heights.data(), options.height_copy, kTexels));
            PreProcess(heights.data(), kHeight, kWidth, options);
            std::vector<float3> normals(kTexels);
            std::string text;
            int progress = 0;
            HeightToNormal(heights.data(), normals.data(), kHeight, kWidth, options.n_scale, options.gaussian,
                           0.0f, false, 0, options.L_Detail, false, 0.0f, 0.0f, false, &text, &progress);
            std::vector<float3> light = normals;
            Normal2Umbrix(light.data(), kHeight, kWidth, options.UmbrixMode, 0, 1);
            std::vector<float3> const open = occlusion_of(heights, options, true);
            std::vector<float4> map(kTexels);
            for (std::size_t i = 0; i < kTexels; ++i) {
                map[i] = {light[i].x * open[i].x, light[i].y * open[i].y, light[i].z * open[i].z, heights[i]};
            }
            PostProcess(map.data(), kHeight, kWidth, options);
            Picture const output = load("out.tga");
            ASSERT_EQ(output.channels, 4);
            for (std::size_t i = 0; i < kTexels; ++i) {
                ASSERT_EQ(output.bytes[4 * i], picture_byte(map[i].x)) << i;
                ASSERT_EQ(output.bytes[4 * i + 1], picture_byte(map[i].y)) << i;
                ASSERT_EQ(output.bytes[4 * i + 2], picture_byte(map[i].z)) << i;
                ASSERT_EQ(output.bytes[4 * i + 3], picture_byte(map[i].w)) << i;
            }
            if (keep) {
                EXPECT_SAME_BITS(normals,
                                 std::vector<float3>(options.normal_map, options.normal_map + kTexels));
                EXPECT_SAME_BITS(open, std::vector<float3>(options.ao_map, options.ao_map + kTexels));
                release_kept(options);
            } else {
                delete[] options.height_copy;
            }
        }
    }
}

TEST_F(UmbrixFileGpuRun, HeightsAreInverted)
{
    Picture const input = noise_picture(8, 6, 4);
    input.save(folder_ / "in.tga");
    for (bool const height_map : {false, true}) {
        umbrix_options options = neutral_options();
        options.height_map = height_map;
        options.preserve = true;
        ASSERT_TRUE(run(options, "in.tga", "out.tga"));
        for (std::size_t i = 0; i < 8 * 6; ++i) {
            unsigned char const* const b = &input.bytes[4 * i];
            double const mean =
                (double(colour_of(b[0])) + double(colour_of(b[1])) + double(colour_of(b[2]))) / 3.0;
            EXPECT_EQ(options.height_copy[i], height_map ? float(1.0 - mean) : float(1.0 - b[3] / 255.0));
        }
        delete[] options.height_copy;
    }
}

TEST_F(UmbrixFileGpuRun, HeightsAreTakenAtFaceValue)
{
    Picture const input = hills_picture(32, 3);
    input.save(folder_ / "in.tga");
    std::vector<std::vector<unsigned char>> results;
    for (float const h_scale : {0.0f, 0.05f, 1.0f, 7.0f}) {
        umbrix_options options = filtering_options();
        options.height_map = options.preserve = true;
        options.h_scale = h_scale;
        ASSERT_TRUE(run_and_release(options, "in.tga", "out.tga"));
        results.push_back(load("out.tga").bytes);
    }
    EXPECT_EQ(results, decltype(results)(4, results[0]));
    EXPECT_NE(results[0], std::vector<unsigned char>(results[0].size(), 255)) << "there is occlusion";
}

TEST_F(UmbrixFileGpuRun, TheMasterSwitchOfWrappingDoesNotCount)
{
    hills_picture(32, 3).save(folder_ / "in.tga");
    std::vector<std::vector<unsigned char>> results;
    for (bool const tile : {false, true}) {
        for (bool const sides : {false, true}) {
            umbrix_options options = filtering_options();
            options.height_map = true;
            options.tile = tile;
            options.h_tile = options.v_tile = sides;
            ASSERT_TRUE(run_and_release(options, "in.tga", "out.tga"));
            results.push_back(load("out.tga").bytes);
        }
    }
    EXPECT_EQ(results[0], results[2]);
    EXPECT_EQ(results[1], results[3]);
    EXPECT_NE(results[0], results[1]);
}

TEST_F(UmbrixFileGpuRun, LightOfANormalMapIsThatOfUmbrixFile)
{
    noise_picture(kWidth, kHeight, 4).save(folder_ / "in.tga");
    umbrix_options options = neutral_options();
    options.contrast = 0.25f;
    ASSERT_TRUE(run_and_release(options, "in.tga", "gpu.tga"));
    ASSERT_TRUE(run_on_processor(options, "in.tga", "cpu.tga"));
    EXPECT_EQ(load("gpu.tga").bytes, load("cpu.tga").bytes);
}

TEST_F(UmbrixFileGpuRun, GivesTheSamePictureAgainAndAgainWithTeamsOfAnySize)
{
    noise_picture(64, 48, 4).save(folder_ / "in.tga");
    umbrix_options options = neutral_options(); // a stand-in's grading would leave texels of a small team out
    options.calc_type = calc_type_light_occlusion;
    options.generate_normal = true;
    options.b_radius = 2.0f;
    ASSERT_TRUE(run_and_release(options, "in.tga", "first.tga"));
    for (int threads = 1; threads < 6; ++threads) {
        omp_set_num_threads(threads);
        ASSERT_TRUE(run_and_release(options, "in.tga", "again.tga"));
        EXPECT_EQ(load("first.tga").bytes, load("again.tga").bytes) << threads;
    }
}

TEST_F(UmbrixFileGpuRun, LeavesToTheCallerWhatItSays)
{
    noise_picture(16, 16, 4).save(folder_ / "in.tga");
    for (unsigned bits = 0; bits < 64; ++bits) {
        auto const bit = [&](unsigned number) { return (bits >> number & 1) != 0; };
        umbrix_options options = neutral_options();
        options.calc_type = bit(0) ? calc_type_occlusion : calc_type_light;
        options.keep_buffers = bit(1);
        options.no_normal = bit(2);
        options.generate_normal = bit(3);
        options.height_map = bit(4);
        options.b_radius = bit(5) ? 1.0f : 0.0f;
        float3 untouched = {};
        options.normal_map = &untouched;
        ASSERT_TRUE(run(options, "in.tga", "out.tga"));
        if (options.keep_buffers) {
            release_kept(options); // each of the three was the caller's
        } else {
            EXPECT_EQ(options.normal_map, &untouched);
            delete[] options.height_copy;
        }
    }
}

TEST_F(UmbrixFileGpuRun, LayersAreTheChainOfTheirSteps)
{
    noise_picture(16, 16, 3, 1).save(folder_ / "in.tga");
    noise_picture(kWidth, kHeight, 3, 2).save(folder_ / "a.tga");
    noise_picture(20, 10, 3, 3).save(folder_ / "b.tga");
    int mode = 0;
    for (char const* name : {"a.tga", "b.tga", "a.tga"}) {
        n_layer record;
        record.filename = file(name);
        record.blend_mode = ++mode;
        record.opacity = 60.0f;
        record.n_scale = 1.5f;
        record.gaussian = 0.75f;
        record.normal_scale = 2.0f;
        layers_.Add(record);
    }
    umbrix_options options = filtering_options();
    options.contrast = options.brightness = options.smooth = 0.0f;
    options.generate_normal = true;
    NLayers stack(&layers_);
    ASSERT_TRUE(UmbrixFile_GPU({false, 0, 0}, file("in.tga"), file("out.tga"), options, &layers_, &stack,
                               &status_, &progress_));
    delete[] options.height_copy;

    NLayers steps(&layers_);
    for (int i = 0; i < 3; ++i) {
        steps.AddLayer(layers_.GetRef(i)->filename.c_str());
    }
    float* blended = new float[kTexels];
    steps.BlendHeightMap(blended);
    std::vector<float> heights(blended, blended + kTexels);
    delete[] blended;
    auto const [low, high] = std::minmax_element(heights.begin(), heights.end());
    double const lowest = double(*low);
    double const range = double(float(double(*high) - lowest));
    for (float& height : heights) {
        height = float((double(height) - lowest) / range);
    }
    PreProcess(heights.data(), kHeight, kWidth, options);
    std::vector<float3> light(kTexels);
    steps.BlendLayers(light.data());
    Normal2Umbrix(light.data(), kHeight, kWidth, options.UmbrixMode, 0, 1);
    std::vector<float3> const open = occlusion_of(heights, options, true);
    Picture const output = load("out.tga");
    ASSERT_EQ(output.width, kWidth);
    for (std::size_t i = 0; i < kTexels; ++i) {
        ASSERT_EQ(output.bytes[3 * i], picture_byte(light[i].x * open[i].x)) << i;
        ASSERT_EQ(output.bytes[3 * i + 1], picture_byte(light[i].y * open[i].y)) << i;
        ASSERT_EQ(output.bytes[3 * i + 2], picture_byte(light[i].z * open[i].z)) << i;
    }
}

struct Distance {
    int largest = 0;
    double mean = 0.0;
    std::size_t differing = 0;
};

Distance distance(std::vector<unsigned char> const& a, std::vector<unsigned char> const& b)
{
    Distance result;
    for (std::size_t i = 0; i < a.size(); ++i) {
        int const difference = std::abs(int(a[i]) - int(b[i]));
        result.largest = std::max(result.largest, difference);
        result.mean += difference / double(a.size());
        result.differing += difference != 0 ? 1 : 0;
    }
    return result;
}

/// The options that make UmbrixFile_GPU take a relief as UmbrixFile does with @p options: limits from high to
/// low turn and scale the heights.
umbrix_options matching(umbrix_options options)
{
    auto const high = static_cast<unsigned char>(std::ceil(double(options.h_scale) * 255.0));
    options.h_min = high;
    options.h_max = 0;
    options.h_contrast = float(double(options.h_scale) * 255.0 / high - 1.0);
    options.n_scale = float(double(options.n_scale) / double(options.h_scale));
    options.h_tile = options.h_tile && options.tile;
    options.v_tile = options.v_tile && options.tile;
    return options;
}

TEST_F(UmbrixFileGpuRun, LimitsFromHighToLowGiveTheReliefOfUmbrixFile)
{
    constexpr int kSide = 96;
    for (int const channels : {3, 4}) {
        hills_picture(kSide, channels).save(folder_ / "in.tga");
        for (float const h_scale : {0.05f, 0.2f, 1.0f}) {
            umbrix_options options = neutral_options();
            options.calc_type = calc_type_light_occlusion;
            options.rays = 32;
            options.height_map = channels == 3;
            options.generate_normal = true;
            options.tile = options.h_tile = options.v_tile = true;
            options.h_scale = h_scale;
            options.n_scale = h_scale * kSide / 2;
            options.h_smooth = 0.5f;
            ASSERT_TRUE(run_on_processor(options, "in.tga", "cpu.tga"));
            ASSERT_TRUE(run_and_release(matching(options), "in.tga", "matched.tga"));
            ASSERT_TRUE(run_and_release(options, "in.tga", "plain.tga"));
            Distance const matched = distance(load("cpu.tga").bytes, load("matched.tga").bytes);
            Distance const plain = distance(load("cpu.tga").bytes, load("plain.tga").bytes);
            // A ray that just passes may be stopped by the last bit of a height.
            EXPECT_LE(matched.largest, 255 / options.rays + 1) << h_scale;
            EXPECT_LT(1000 * matched.differing, load("cpu.tga").bytes.size()) << h_scale;
            EXPECT_GT(plain.mean, 20.0) << h_scale;
        }
    }
}

TEST_F(UmbrixFileGpuRun, EveryTeamGivesTheSamePicture)
{
    noise_picture(kWidth, kHeight, 3).save(folder_ / "in.tga");
    umbrix_options options = filtering_options();
    options.height_map = options.generate_normal = true;
    options.b_radius = 2.0f;
    ASSERT_TRUE(run(options, "in.tga", "as many.tga"));
    delete[] options.height_copy;
    for (int const team : {1, omp_get_num_procs() + 1, 16, 64}) {
        omp_set_num_threads(team);
        ASSERT_TRUE(run(options, "in.tga", "other.tga"));
        delete[] options.height_copy;
        // The operators of the grading share texels out by the number of processors, whatever the team.
        if (team >= omp_get_num_procs()) {
            EXPECT_EQ(load("as many.tga").bytes, load("other.tga").bytes) << team;
        }
    }
}

} // namespace
