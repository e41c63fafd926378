// SPDX-License-Identifier: MIT
// The pictures in examples/textures were made by: make_textures examples/textures 512 256 cobbles bricks
// cloth dunes
#include "example_textures.h"
#include "png_file.h"
#include "texture_bytes.h"

#include <gtest/gtest.h>

namespace umbrixlib::examples {
namespace {

class CommittedPictures : public testing::TestWithParam<char const*> {
protected:
    static Pixels committed(char const* ending)
    {
        return read_png(std::filesystem::path(UMBRIX_EXAMPLE_PICTURES) / (std::string(GetParam()) + ending));
    }
};

TEST_P(CommittedPictures, HeightMapIsWhatTheGeneratorMakes)
{
    Pixels const picture = committed("_height.png");
    ASSERT_EQ(picture.channels, 1);
    ASSERT_EQ(picture.width, 512);
    ASSERT_EQ(picture.height, 512);
    EXPECT_TRUE(picture.bytes == height_bytes(heights(GetParam(), 512)));
}

TEST_P(CommittedPictures, NormalMapIsWhatTheGeneratorMakes)
{
    Pixels const picture = committed("_normal.png");
    ASSERT_EQ(picture.channels, 4);
    ASSERT_EQ(picture.width, 256);
    ASSERT_EQ(picture.height, 256);
    EXPECT_TRUE(picture.bytes == normal_bytes(heights(GetParam(), 256), 256, texture(GetParam()).relief));
}

INSTANTIATE_TEST_SUITE_P(Shipped, CommittedPictures, testing::Values("cobbles", "bricks", "cloth", "dunes"),
                         [](auto const& each) { return std::string(each.param); });

} // namespace
} // namespace umbrixlib::examples
