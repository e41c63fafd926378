// SPDX-License-Identifier: MIT
/// Heights without a header.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

using Raw = Decoding;

TEST_F(Raw, OfSixteenBitsIsASquareWithItsTopRowFirst)
{
    DecodedImage const image = decoded(FileBuilder().u16({1, 2, 300, 65535}), "x.R16");
    EXPECT_EQ(image.description(), "16-bit grey");
    EXPECT_EQ(shorts_of(image.to_picture(false)),
              (Numbers{300, 300, 300, 65535, 65535, 65535, 1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(decoded(FileBuilder().text("BM"), "x.r16").width(), 1) << "what it begins with has no meaning";
}

TEST_F(Raw, OfFloatsKeepsThem)
{
    Picture const picture = decoded(FileBuilder().f32({-1.5f, 2, 3, 4000}), "x.r32").to_picture(false);
    EXPECT_EQ(picture.samples<float>()[0], 3.0f);
    EXPECT_EQ(picture.samples<float>()[6], -1.5f);
}

TEST_F(Raw, ThatIsNoSquareIsRefused)
{
    EXPECT_EQ(complaint(FileBuilder().zeros(4), "x.r16"), "its 4 bytes are no square of numbers of 16 bits");
    EXPECT_EQ(complaint(FileBuilder().zeros(17), "x.r32"), "its 17 bytes are no square of floats");
    EXPECT_EQ(complaint({}, "x.r32"), "its 0 bytes are no square of floats");
    EXPECT_EQ(complaint(Bytes(2048 * 2048 * 2), "x.r16"),
              "its size of 2048 x 2048 is more than 1048576 texels");
}

} // namespace
} // namespace umbrixlib::test
