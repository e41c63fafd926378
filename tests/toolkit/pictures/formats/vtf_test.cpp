// SPDX-License-Identifier: MIT
/// Valve's textures.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Vtf : public Decoding {
protected:
    static FileBuilder start(unsigned width, unsigned height, unsigned format, std::uint8_t levels = 1,
                             unsigned version = 2, unsigned frames = 1)
    {
        FileBuilder file;
        file.text("VTF").u8({0}).u32({7, version, 80}).u16({width, height}).u32({0}).u16({frames});
        return file.up_to(52).u32({format}).u8({levels}).u32({0xffffffff}).u8({0, 0}).u16({1}).up_to(80);
    }
};

TEST_F(Vtf, HasItsTopRowFirst)
{
    EXPECT_EQ(bytes_of(decoded(start(1, 2, 2).u8({1, 2, 3, 4, 5, 6}), "x.vtf").to_picture(false)),
              (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(bytes_of(decoded(start(1, 1, 0).u8({1, 2, 3, 4}), "x.vtf").to_picture(true)),
              (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(bytes_of(decoded(start(1, 1, 3).u8({1, 2, 3}), "x.vtf").to_picture(false)), (Numbers{3, 2, 1}));
    EXPECT_EQ(bytes_of(decoded(start(1, 1, 6).u8({1, 2}), "x.vtf").to_picture(true)), (Numbers{1, 1, 1, 2}));
    EXPECT_EQ(shorts_of(decoded(start(1, 1, 25).u16({1, 2, 3, 4}), "x.vtf").to_picture(true)),
              (Numbers{1, 2, 3, 4}));
}

TEST_F(Vtf, GivesItsLargestPicture)
{
    // Behind one of a texel, for each of two frames.
    Bytes const file = start(2, 1, 5, 2, 2, 2).u8({1, 2, 30, 40, 50, 60});
    EXPECT_EQ(bytes_of(decoded(file, "x.vtf").to_picture(false)), (Numbers{30, 30, 30, 40, 40, 40}));
    Bytes const newer =
        start(2, 1, 5, 1, 3).up_to(68).u32({2}).up_to(80).u32({1, 7, 0x30, 100}).up_to(100).u8({30, 40});
    EXPECT_EQ(bytes_of(decoded(newer, "x.vtf").to_picture(false)), (Numbers{30, 30, 30, 40, 40, 40}));
    expect_no_harm(toolkit::vtf_decoder(), file, folder_ / "x.vtf");
    expect_no_harm(toolkit::vtf_decoder(), newer, folder_ / "x.vtf");
}

TEST_F(Vtf, ThatIsNotTakenIsRefused)
{
    EXPECT_EQ(complaint(start(1, 1, 22).zeros(9), "x.vtf"), "it is a VTF file of the format 22");
    expect_no_piece_is_taken(start(1, 2, 2).u8({1, 2, 3, 4, 5, 6}), "x.vtf");
    EXPECT_NE(complaint(start(60000, 60000, 2), "x.vtf", 1e10).find("damaged"), std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
