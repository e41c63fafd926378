// SPDX-License-Identifier: MIT
/// Pictures of Alias and Softimage.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Alias : public Decoding {
protected:
    static Bytes file(unsigned width, unsigned height, unsigned bits, Bytes const& runs)
    {
        return FileBuilder(ByteOrder::kBig).u16({width, height, 0, 0, bits}).u8(runs);
    }
};

TEST_F(Alias, HasRunsOfColoursAndOfGreys)
{
    Bytes const colours = file(2, 2, 24, {2, 3, 2, 1, 1, 6, 5, 4, 1, 9, 8, 7});
    EXPECT_EQ(bytes_of(decoded(colours, "x.pix").to_picture(false)),
              (Numbers{4, 5, 6, 7, 8, 9, 1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(bytes_of(decoded(file(2, 1, 8, {1, 7, 1, 9}), "x.PIX").to_picture(false)),
              (Numbers{7, 7, 7, 9, 9, 9}));
    expect_no_piece_is_taken(colours, "x.pix");
    expect_no_harm(toolkit::alias_decoder(), colours, folder_ / "x.pix");
}

TEST_F(Alias, ThatIsDamagedIsRefused)
{
    for (Bytes const& wrong : {file(2, 1, 8, {3, 7}), file(2, 1, 8, {0, 7, 2, 7}), file(2, 1, 16, {2, 7, 7}),
                               file(1000, 1000, 24, {255, 1, 1, 1})}) {
        EXPECT_NE(complaint(wrong, "x.pix").find("damaged"), std::string::npos);
    }
}

class Softimage : public Decoding {
protected:
    static FileBuilder start(unsigned width, unsigned height)
    {
        FileBuilder file(ByteOrder::kBig);
        file.u32({0x5380f634}).up_to(88).text("PICT").u16({width, height});
        return file.up_to(104);
    }
};

TEST_F(Softimage, HasPacketsOfChannels)
{
    Bytes const plain = start(1, 2).u8({0, 8, 0, 0xe0}).u8({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(bytes_of(decoded(plain, "x.pic").to_picture(false)), (Numbers{4, 5, 6, 1, 2, 3}));
    // Colours in mixed runs, an alpha in plain ones.
    Bytes const mixed = start(4, 1)
                            .u8({1, 8, 2, 0xe0, 0, 8, 1, 0x10})
                            .u8({0x81, 1, 2, 3, 0x01, 4, 5, 6, 7, 8, 9})
                            .u8({3, 77, 1, 88});
    EXPECT_EQ(bytes_of(decoded(mixed, "x.pic").to_picture(true)),
              (Numbers{1, 2, 3, 77, 1, 2, 3, 77, 4, 5, 6, 77, 7, 8, 9, 88}));
    Bytes const longer = start(3, 1).u8({0, 8, 2, 0xe0}).u8({0x80, 0, 3, 1, 2, 3});
    EXPECT_EQ(bytes_of(decoded(longer, "x.pic").to_picture(false)), (Numbers{1, 2, 3, 1, 2, 3, 1, 2, 3}));
    for (Bytes const& file : {plain, mixed, longer}) {
        expect_no_piece_is_taken(file, "x.pic");
        expect_no_harm(toolkit::softimage_decoder(), file, folder_ / "x.pic");
    }
}

TEST_F(Softimage, ThatIsDamagedIsRefused)
{
    for (Bytes const& wrong :
         {Bytes(start(2, 1).u8({0, 8, 2, 0xe0, 0x82, 1, 2, 3})),
          Bytes(start(2, 1).u8({0, 8, 1, 0xe0, 0, 1, 2, 3})), Bytes(start(1, 1).u8({0, 4, 0, 0xe0, 1, 2, 3})),
          Bytes(start(1, 1).u8({0, 8, 0, 0, 1, 2, 3})), Bytes(start(1, 1).u8({0, 8, 3, 0xe0, 1, 2, 3}))}) {
        EXPECT_NE(complaint(wrong, "x.pic").find("damaged"), std::string::npos);
    }
}

} // namespace
} // namespace umbrixlib::test
