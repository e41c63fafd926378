// SPDX-License-Identifier: MIT
// What UmbrixFile and UmbrixFile_GPU have in common, with the real kernels and the real DevIL.
#include "file_run.h"
#include "files/umbrix_file.h"
#include "files/umbrix_file_gpu.h"
#include "forms.h"
#include "graphics_fake.h"
#include "normals/height_to_normal.h"

#include <IL/il.h>

namespace {

using umbrixlib::test::busy_options;
using umbrixlib::test::Form;
using umbrixlib::test::GraphicsFake;
using umbrixlib::test::kCpu;
using umbrixlib::test::kGpu;
using umbrixlib::test::name_of;
using umbrixlib::test::neutral_options;
using umbrixlib::test::noise_picture;

class UmbrixFileForms : public umbrixlib::test::FileRun, public testing::WithParamInterface<Form> {
protected:
    UmbrixFileForms() { GraphicsFake::instance().reset(&umbrixlib::test::computing_stages()); }
    ~UmbrixFileForms() override { EXPECT_EQ(GraphicsFake::instance().faults, std::vector<std::string>()); }

    /// Also releases the heights that a run on the GPU leaves.
    bool run(umbrix_options& options, char const* input, char const* output)
    {
        if (!GetParam().graphics) {
            return UmbrixFile(file(input), file(output), options, &layers_, nullptr, &status_, &progress_);
        }
        bool const done = UmbrixFile_GPU({false, 0, 0}, file(input), file(output), options, &layers_, nullptr,
                                         &status_, &progress_);
        delete[] options.height_copy;
        return done;
    }
};
INSTANTIATE_TEST_SUITE_P(Forms, UmbrixFileForms, testing::Values(kCpu, kGpu), name_of);

/// A picture of any depth, written by DevIL.
void save_with_devil(std::string const& name, ILubyte channels, ILenum format, ILenum type,
                     std::size_t bytes_each)
{
    ilInit();
    ilEnable(IL_FILE_OVERWRITE);
    std::vector<unsigned char> pixels(std::size_t{9} * 7 * channels * bytes_each);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        pixels[i] = static_cast<unsigned char>(i * 37);
    }
    ilTexImage(9, 7, 1, channels, format, type, pixels.data());
    ASSERT_TRUE(ilSaveImage(name.c_str()) == IL_TRUE) << name;
    ilShutDown();
}

TEST_P(UmbrixFileForms, EveryDepthOfInputStaysWithinItsBuffers)
{
    save_with_devil(file("grey.png"), 1, IL_LUMINANCE, IL_UNSIGNED_BYTE, 1);
    save_with_devil(file("grey_alpha.png"), 2, IL_LUMINANCE_ALPHA, IL_UNSIGNED_BYTE, 1);
    save_with_devil(file("grey16.png"), 1, IL_LUMINANCE, IL_UNSIGNED_SHORT, 2);
    save_with_devil(file("rgb16.png"), 3, IL_RGB, IL_UNSIGNED_SHORT, 2);
    save_with_devil(file("rgba16.png"), 4, IL_RGBA, IL_UNSIGNED_SHORT, 2);
    for (char const* input : {"grey.png", "grey_alpha.png", "grey16.png", "rgb16.png", "rgba16.png"}) {
        for (bool const height_map : {false, true}) {
            umbrix_options options = busy_options();
            options.gaussian = 0.5f;
            options.L_Detail = 1.5f;
            options.height_map = options.generate_normal = height_map;
            EXPECT_TRUE(run(options, input, "out.tga")) << input;
            EXPECT_EQ(load("out.tga").width, 9) << input;
        }
        EXPECT_TRUE(HeightToNormal(file(input).c_str(), file("normal.tga").c_str(), 1.0f, 1.0f, false, 0,
                                   2.0f, false, false, &status_, &progress_));
    }
}

TEST_P(UmbrixFileForms, OneTexelAndSingleLinesRun)
{
    struct Size {
        int width, height;
    };
    for (Size const size : {Size{1, 1}, Size{1, 9}, Size{9, 1}, Size{2, 2}}) {
        noise_picture(size.width, size.height, 3).save(folder_ / "in.tga");
        umbrix_options options = busy_options();
        options.height_map = options.generate_normal = true;
        options.b_radius = 3.0f;
        EXPECT_TRUE(run(options, "in.tga", "out.tga"));
        EXPECT_EQ(load("out.tga").height, size.height);
    }
}

TEST_P(UmbrixFileForms, AMissingInputAndAnUnwritableOutputStillReportSuccess)
{
    umbrix_options options = neutral_options();
    EXPECT_TRUE(run(options, "missing.tga", "out.tga"));
    EXPECT_EQ(options.image_width, 1) << "DevIL's default image";
    noise_picture(8, 8, 3).save(folder_ / "in.tga");
    options = neutral_options();
    EXPECT_TRUE(run(options, "in.tga", "no_such_folder/out.tga"));
}

} // namespace
