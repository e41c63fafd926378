// SPDX-License-Identifier: MIT
// UmbrixFile_GPU on images of every number of bytes a texel and of many sizes.
#include "umbrix_file_gpu_calls.h"

#include "picture_depths.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>

namespace {

using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::GraphicsStages;
using umbrixlib::test::kDepths;
using umbrixlib::test::kPictureSizes;
using umbrixlib::test::neutral_options;
using umbrixlib::test::picture_byte;
using umbrixlib::test::PictureSize;
using umbrixlib::test::UmbrixFileGpuCalls;
using Bytes = std::vector<unsigned char>;
using Calls = std::vector<std::string>;

TEST_F(UmbrixFileGpuCalls, TheFormatFollowsFromTheBytesPerPixel)
{
    struct Case {
        int bits;
        char const* copy;
        char const* stored;
    };
    for (Case const& each :
         {Case{8, "0x1907", "3, 0x1907"}, Case{16, "0x1907", "3, 0x1907"}, Case{24, "0x1907", "3, 0x1907"},
          Case{32, "0x1908", "4, 0x1908"}, Case{48, "0x1908", "4, 0x1908"}, Case{64, "0x1908", "4, 0x1908"},
          Case{96, "0x1908", "4, 0x1908"}, Case{128, "0x1908", "4, 0x1908"}}) {
        DevilFake::instance().files.clear();
        serve(5, 3, each.bits);
        umbrix_options options = neutral_options();
        options.keep_buffers = options.preserve = true;
        EXPECT_TRUE(run(options));
        EXPECT_THAT(CallLog::instance().calls(),
                    testing::Contains(testing::StartsWith(std::string("ilCopyPixels(5x3, ") + each.copy)));
        EXPECT_THAT(CallLog::instance().calls(),
                    testing::Contains(testing::StartsWith(std::string("ilTexImage(5x3x0, ") + each.stored)));
        if (each.bits != 32) {
            EXPECT_EQ(options.height_copy[7], 1.0f) << "not inverted without an alpha";
        }
        release(options);
    }
}

/// What comes out of an image whose texels lie @p channels bytes apart, three of them read and written.
Bytes overlapping_texels(Bytes pixels, std::size_t texels, std::size_t channels)
{
    Bytes const source = pixels;
    for (std::size_t i = 0; i < texels; ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            auto light = float(double(float(source[i * channels + c] / 255.0)) * 2.0 - 1.0);
            light = c == 0 ? (light + GraphicsStages::kLight) * 0.5f : light;
            pixels[i * channels + c] = picture_byte(light);
        }
    }
    return pixels;
}

TEST_F(UmbrixFileGpuCalls, AOneByteImageIsThreeBytesAtADistanceOfOne)
{
    DevilFake::instance().files.clear();
    Bytes pixels = serve(5, 3, 8);
    pixels.resize(45); // three bytes a texel are fetched, and handed over
    umbrix_options options = neutral_options();
    EXPECT_TRUE(run(options));
    EXPECT_EQ(DevilFake::instance().stored, overlapping_texels(pixels, 15, 1));
    release(options);
}

TEST_F(UmbrixFileGpuCalls, ATwoByteImageIsThreeBytesAtADistanceOfTwo)
{
    DevilFake::instance().files.clear();
    Bytes pixels = serve(5, 3, 16);
    pixels.resize(45);
    umbrix_options options = neutral_options();
    EXPECT_TRUE(run(options));
    EXPECT_EQ(DevilFake::instance().stored, overlapping_texels(pixels, 15, 2));
    release(options);
}

class UmbrixFileGpuDepths : public UmbrixFileGpuCalls, public testing::WithParamInterface<int> {
protected:
    /// A texel of a normal map with occlusion and its height kept, from its bytes: the stand-ins' marks.
    static std::array<unsigned char, 4> marked(unsigned char const* bytes)
    {
        auto const decoded = [](unsigned char byte) {
            return float(double(float(byte / 255.0)) * 2.0 - 1.0);
        };
        float const height = GetParam() == 4 ? float(1.0 - bytes[3] / 255.0) : 1.0f;
        return {picture_byte((decoded(bytes[0]) + GraphicsStages::kLight) * GraphicsStages::kOpenX * 0.5f),
                picture_byte(decoded(bytes[1]) * GraphicsStages::kOpenY),
                picture_byte(decoded(bytes[2]) * GraphicsStages::kOpenZ),
                picture_byte(height + GraphicsStages::kPre)};
    }
};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, UmbrixFileGpuDepths, testing::ValuesIn(kDepths));

TEST_P(UmbrixFileGpuDepths, TexelsAreReadAndWrittenAtTheirDistance)
{
    for (PictureSize const size : kPictureSizes) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        DevilFake::instance().files.clear();
        Bytes fetched = serve(size.width, size.height, 8 * GetParam());
        fetched.resize(size.texels() * umbrixlib::test::fetched_channels(GetParam()));
        umbrix_options options = neutral_options();
        options.calc_type = calc_type_light_occlusion;
        options.preserve = true;
        EXPECT_TRUE(run(options));
        EXPECT_EQ(DevilFake::instance().stored,
                  umbrixlib::test::through_texels(fetched, size, GetParam(), &marked));
        EXPECT_EQ(options.image_width, size.width);
        EXPECT_EQ(options.image_height, size.height);
        release(options);
    }
}

TEST_P(UmbrixFileGpuDepths, EveryStageStaysWithinTheBuffers)
{
    for (PictureSize const size : kPictureSizes) {
        for (char const* const output : {"out.tga", "out.vtf"}) {
            for (bool const height_map : {false, true}) {
                DevilFake::instance().files.clear();
                serve(size.width, size.height, 8 * GetParam());
                umbrix_options options = neutral_options();
                options.calc_type = calc_type_light_occlusion;
                options.height_map = options.generate_normal = height_map;
                options.preserve = options.keep_buffers = true;
                options.b_radius = 1.5f;
                EXPECT_TRUE(run(options, output));
                EXPECT_EQ(DevilFake::instance().stored.size(),
                          size.texels() * umbrixlib::test::fetched_channels(GetParam()));
                release(options);
            }
        }
    }
}

} // namespace
