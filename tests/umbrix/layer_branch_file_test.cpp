// SPDX-License-Identifier: MIT
// UmbrixFile with layers, the real kernels and the real DevIL, compared with its steps called one by one.
#include "files/umbrix_file.h"

#include "boundary/texture_kernels.h"
#include "layers/nlayers.h"
#include "random_image.h"
#include "temporary_folder.h"
#include "test_picture.h"
#include "umbrix/grading.h"
#include "umbrix_test_options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <omp.h>

namespace {

using umbrixlib::test::neutral_options;
using umbrixlib::test::Picture;
using umbrixlib::test::TemporaryFolder;

Picture noise_picture(int width, int height, std::uint32_t seed)
{
    Picture picture(width, height, 3, 0);
    auto const noise = umbrixlib::test::random_image<float>(picture.bytes.size(), seed);
    std::transform(noise.begin(), noise.end(), picture.bytes.begin(),
                   [](float v) { return static_cast<unsigned char>(v * 255.0f); });
    return picture;
}

class UmbrixFileLayersRun : public testing::Test {
protected:
    static constexpr int kWidth = 37;
    static constexpr int kHeight = 23;

    UmbrixFileLayersRun()
    {
        omp_set_dynamic(0);
        omp_set_num_threads(omp_get_num_procs());
        noise_picture(16, 16, 1).save(folder_ / "in.tga");
        noise_picture(kWidth, kHeight, 2).save(folder_ / "a.tga");
        noise_picture(20, 10, 3).save(folder_ / "b.tga");
        int mode = 0;
        for (char const* name : {"a.tga", "b.tga", "a.tga"}) {
            n_layer record;
            record.filename = file(name);
            record.blend_mode = ++mode;
            record.opacity = 60.0f;
            record.n_scale = 1.5f;
            record.L_Detail = 1.5f;
            record.gaussian = 0.75f;
            record.normal_scale = 2.0f;
            layers_.Add(record);
        }
        options_ = neutral_options();
        options_.generate_normal = true;
        options_.calc_type = calc_type_light_occlusion;
        options_.rays = 5;
        options_.h_scale = 0.2f;
        options_.h_smooth = 0.5f;
    }

    std::string file(char const* name) const { return (folder_ / name).string(); }

    bool run(NLayers& stack, char const* output)
    {
        return UmbrixFile(file("in.tga"), file(output), options_, &layers_, &stack, &status_, &progress_);
    }

    TemporaryFolder folder_;
    LinkedList<n_layer> layers_;
    umbrix_options options_;
    std::string status_;
    int progress_ = 0;
};

TEST_F(UmbrixFileLayersRun, IsTheChainOfItsSteps)
{
    constexpr std::size_t kMapTexels = std::size_t{kWidth} * kHeight;
    NLayers stack(&layers_);
    ASSERT_TRUE(run(stack, "out.tga"));

    NLayers steps(&layers_);
    for (int i = 0; i < 3; ++i) {
        steps.AddLayer(layers_.GetRef(i)->filename.c_str());
    }
    float* heights = new float[kMapTexels];
    steps.BlendHeightMap(heights);
    auto const [low, high] = std::minmax_element(heights, heights + kMapTexels);
    double const lowest = double(*low);
    float const range = *high - *low;
    for (std::size_t i = 0; i < kMapTexels; ++i) {
        heights[i] = static_cast<float>((double(heights[i]) - lowest) / double(range));
    }
    PreProcess(heights, kHeight, kWidth, options_);
    std::vector<float3> light(kMapTexels);
    steps.BlendLayers(light.data());
    Normal2Umbrix(light.data(), kHeight, kWidth, options_.UmbrixMode, 0, 1);
    for (std::size_t i = 0; i < kMapTexels; ++i) {
        heights[i] *= options_.h_scale;
    }
    std::vector<ray> a(10);
    std::vector<ray> b(10);
    std::vector<ray> c(10);
    ray* pa = a.data();
    ray* pb = b.data();
    ray* pc = c.data();
    GenerateRays(kHeight, kWidth, pa, pb, pc, 5, options_.theta_limit, options_.alpha_limit);
    std::vector<float3> open(kMapTexels);
    int progress = 0;
    Height2DirectionalAO(open.data(), heights, kHeight, kWidth, pa, pb, pc, 5, options_.h_scale,
                         options_.radius, false, false, false, &progress);
    delete[] heights;

    Picture const output = Picture::load(folder_ / "out.tga");
    ASSERT_EQ(output.width, kWidth);
    ASSERT_EQ(output.height, kHeight);
    auto const byte_of = [](float v) {
        return static_cast<unsigned char>(double(std::clamp(v, 0.0f, 1.0f)) * 255.0);
    };
    for (std::size_t i = 0; i < kMapTexels; ++i) {
        ASSERT_EQ(output.bytes[3 * i], byte_of(light[i].x * open[i].x)) << i;
        ASSERT_EQ(output.bytes[3 * i + 1], byte_of(light[i].y * open[i].y)) << i;
        ASSERT_EQ(output.bytes[3 * i + 2], byte_of(light[i].z * open[i].z)) << i;
    }
}

TEST_F(UmbrixFileLayersRun, GivesTheSamePictureAgainAndAgain)
{
    NLayers first(&layers_);
    ASSERT_TRUE(run(first, "first.tga"));
    for (int i = 0; i < 10; ++i) {
        NLayers stack(&layers_);
        options_.blend_height = false;
        ASSERT_TRUE(run(stack, "again.tga"));
        EXPECT_EQ(Picture::load(folder_ / "first.tga").bytes, Picture::load(folder_ / "again.tga").bytes);
    }
}

TEST_F(UmbrixFileLayersRun, ABlankFirstLayerEndsInAPictureOfOneTexel)
{
    layers_.GetRef(0)->filename.clear();
    NLayers stack(&layers_);
    ASSERT_TRUE(run(stack, "out.tga"));
    EXPECT_EQ(Picture::load(folder_ / "out.tga").width, 1) << "DevIL makes one of none";
}

TEST_F(UmbrixFileLayersRun, ALargerTeamGivesTheSamePicture)
{
    options_.b_radius = 1.5f;
    for (bool const heights_of_layers : {false, true}) {
        options_.blend_height = heights_of_layers;
        umbrix_options const asked = options_;
        NLayers stack(&layers_);
        ASSERT_TRUE(run(stack, "as many.tga"));
        for (int const team : {omp_get_num_procs() + 1, 16, 64}) {
            options_ = asked;
            omp_set_num_threads(team);
            NLayers other_stack(&layers_);
            ASSERT_TRUE(run(other_stack, "more.tga"));
            EXPECT_EQ(Picture::load(folder_ / "as many.tga").bytes, Picture::load(folder_ / "more.tga").bytes)
                << team;
        }
        omp_set_num_threads(omp_get_num_procs());
    }
}

} // namespace
