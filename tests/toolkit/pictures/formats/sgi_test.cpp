// SPDX-License-Identifier: MIT
/// SGI pictures.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Sgi : public Decoding {
protected:
    static FileBuilder start(unsigned width, unsigned height, unsigned channels, std::uint8_t storage = 0,
                             std::uint8_t sample = 1, unsigned map = 0, unsigned sides = 3)
    {
        FileBuilder file(ByteOrder::kBig);
        file.u16({474}).u8({storage, sample}).u16({sides, width, height, channels}).u32({0, 255});
        return file.up_to(104).u32({map}).up_to(512);
    }
};

TEST_F(Sgi, HasChannelsOneBehindTheOtherAndItsBottomRowFirst)
{
    Bytes const file = start(1, 2, 3).u8({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(bytes_of(decoded(file, "x.sgi").to_picture(false)), (Numbers{1, 3, 5, 2, 4, 6}));
    EXPECT_EQ(bytes_of(decoded(start(1, 1, 4).u8({1, 2, 3, 4}), "x.rgba").to_picture(true)),
              (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(bytes_of(decoded(start(1, 1, 2).u8({1, 2}), "x.bw").to_picture(true)), (Numbers{1, 1, 1, 2}));
    EXPECT_EQ(decoded(start(2, 7, 9, 0, 1, 0, 1).u8({1, 2}), "x.bw").height(), 1) << "one side";
    expect_no_piece_is_taken(file, "x.sgi");
}

TEST_F(Sgi, OfSixteenBitsHasTheHighByteFirst)
{
    Bytes const file = start(1, 1, 3, 0, 2).u8({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(shorts_of(decoded(file, "x.sgi").to_picture(false)), (Numbers{0x102, 0x304, 0x506}));
}

TEST_F(Sgi, MayHaveRunLengths)
{
    // The rows are in any order in the file; both channels of row 0 share one.
    Bytes const file = start(4, 2, 1, 1).u32({528, 531}).u32({3, 6}).u8({4, 9, 0}).u8({0x82, 1, 2, 2, 3, 0});
    EXPECT_EQ(bytes_of(decoded(file, "x.sgi").to_picture(false)),
              (Numbers{9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3, 3, 3, 3}));
    expect_no_piece_is_taken(file, "x.sgi", 1); // the last mark of an end is not looked at
    Bytes const deep = start(3, 1, 1, 1, 2).u32({520, 10}).u16({0x81, 256, 2, 770, 0});
    EXPECT_EQ(shorts_of(decoded(deep, "x.sgi").to_picture(false)),
              (Numbers{256, 256, 256, 770, 770, 770, 770, 770, 770}));
    expect_no_harm(toolkit::sgi_decoder(), file, folder_ / "x.sgi");
    expect_no_harm(toolkit::sgi_decoder(), deep, folder_ / "x.sgi");
}

TEST_F(Sgi, ThatIsNotTakenIsRefused)
{
    EXPECT_EQ(complaint(start(1, 1, 3, 0, 1, 2).zeros(9), "x.sgi"),
              "it is an SGI picture of an old kind, with a map of colours");
    EXPECT_EQ(complaint(start(1, 1, 5).zeros(9), "x.sgi"), "it is an SGI picture of 5 channels");
    EXPECT_EQ(complaint(start(65535, 65535, 3), "x.sgi"),
              "its size of 65535 x 65535 is more than 1048576 texels");
    for (std::uint8_t const storage : {std::uint8_t{0}, std::uint8_t{1}}) {
        EXPECT_NE(complaint(start(65535, 65535, 3, storage), "x.sgi", 1e10).find("damaged"),
                  std::string::npos);
    }
    EXPECT_NE(complaint(start(4, 1, 1, 1).u32({520, 2}).u8({5, 9}), "x.sgi").find("damaged"),
              std::string::npos)
        << "a run behind the end of its row";
}

} // namespace
} // namespace umbrixlib::test
