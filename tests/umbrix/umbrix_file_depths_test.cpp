// SPDX-License-Identifier: MIT
// UmbrixFile on images of every number of bytes a texel and of many sizes.
#include "umbrix_file_calls.h"

#include "picture_depths.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>

namespace {

using umbrixlib::test::CallLog;
using umbrixlib::test::DevilFake;
using umbrixlib::test::kDepths;
using umbrixlib::test::KernelsFake;
using umbrixlib::test::kPictureSizes;
using umbrixlib::test::neutral_options;
using umbrixlib::test::picture_byte;
using umbrixlib::test::PictureSize;
using umbrixlib::test::UmbrixFileCalls;
using Bytes = std::vector<unsigned char>;
using Calls = std::vector<std::string>;

TEST_F(UmbrixFileCalls, TheFormatFollowsFromTheBytesPerPixel)
{
    struct Case {
        int bits;
        char const* copy;
        char const* stored;
    };
    for (Case const& each :
         {Case{8, "0x1400", "3, 0x1907"}, Case{16, "0x1907", "3, 0x1907"}, Case{24, "0x1907", "3, 0x1907"},
          Case{32, "0x1908", "4, 0x1908"}, Case{48, "0x1908", "4, 0x1908"}, Case{64, "0x1908", "4, 0x1908"},
          Case{96, "0x1908", "4, 0x1908"}}) {
        DevilFake::instance().serve(5, 3, each.bits);
        umbrix_options options = neutral_options();
        options.height_map = true;
        EXPECT_TRUE(run(options));
        EXPECT_THAT(CallLog::instance().calls(),
                    testing::Contains(testing::StartsWith(std::string("ilCopyPixels(5x3, ") + each.copy)));
        EXPECT_THAT(CallLog::instance().calls(),
                    testing::Contains(testing::StartsWith(std::string("ilTexImage(5x3x0, ") + each.stored)));
    }
}

TEST_F(UmbrixFileCalls, AOneByteImageComesOutWhole)
{
    DevilFake::instance().serve(5, 3, 8);
    umbrix_options options = neutral_options();
    options.height_map = true;
    EXPECT_TRUE(run(options));
    EXPECT_EQ(DevilFake::instance().stored, std::vector<unsigned char>(45, 255))
        << "full light in all channels";
}

class UmbrixFileDepths : public UmbrixFileCalls, public testing::WithParamInterface<int> {
protected:
    /// A texel of a normal map with occlusion and its height kept, from its bytes: the stand-ins' marks.
    static std::array<unsigned char, 4> marked(unsigned char const* bytes)
    {
        auto const decoded = [](unsigned char byte) {
            return float(double(float(byte / 255.0)) * 2.0 - 1.0);
        };
        float const alpha = GetParam() == 4 ? float(bytes[3] / 255.0) : 1.0f;
        return {picture_byte((decoded(bytes[0]) + KernelsFake::kLight) * KernelsFake::kOpenX),
                picture_byte(decoded(bytes[1]) * KernelsFake::kOpenY),
                picture_byte(decoded(bytes[2]) * KernelsFake::kOpenZ), picture_byte(alpha * 0.5f)};
    }
};
INSTANTIATE_TEST_SUITE_P(BytesPerPixel, UmbrixFileDepths, testing::ValuesIn(kDepths));

TEST_P(UmbrixFileDepths, TexelsAreReadAndWrittenAtTheirDistance)
{
    for (PictureSize const size : kPictureSizes) {
        SCOPED_TRACE(testing::Message() << size.width << " x " << size.height);
        DevilFake& devil = DevilFake::instance();
        devil.serve(size.width, size.height, 8 * GetParam());
        umbrix_options options = neutral_options();
        options.calc_type = calc_type_light_occlusion;
        options.preserve = true;
        options.h_scale = 0.5f;
        EXPECT_TRUE(run(options));
        // Nothing is fetched from a picture of one byte a pixel, and the bytes of the map are new ones.
        int const depth = GetParam() == 1 ? 3 : GetParam();
        Bytes fetched = devil.served;
        fetched.resize(GetParam() == 1 ? 0 : size.texels() * umbrixlib::test::fetched_channels(depth));
        EXPECT_EQ(devil.stored, umbrixlib::test::through_texels(fetched, size, depth, &marked));
        EXPECT_EQ(options.image_width, size.width);
        EXPECT_EQ(options.image_height, size.height);
    }
}

TEST_P(UmbrixFileDepths, EveryStageStaysWithinTheBuffers)
{
    for (PictureSize const size : kPictureSizes) {
        for (char const* const output : {"out.tga", "out.vtf"}) {
            for (bool const height_map : {false, true}) {
                DevilFake& devil = DevilFake::instance();
                devil.serve(size.width, size.height, 8 * GetParam());
                umbrix_options options = neutral_options();
                options.calc_type = calc_type_light_occlusion;
                options.height_map = options.generate_normal = height_map;
                options.preserve = options.keep_buffers = true;
                options.b_radius = options.gaussian = 1.5f;
                options.smooth = options.h_smooth = 2.0f;
                options.contrast = options.h_contrast = options.h_brightness = 0.5f;
                EXPECT_TRUE(run(options, output));
                EXPECT_EQ(devil.stored.size(), size.texels() * umbrixlib::test::fetched_channels(GetParam()));
                release(options);
            }
        }
    }
}

} // namespace
