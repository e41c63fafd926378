// SPDX-License-Identifier: MIT
/// Sun raster files.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Sun : public Decoding {
protected:
    static Bytes file(unsigned width, unsigned height, unsigned bits, unsigned kind, Bytes const& map,
                      Bytes const& data)
    {
        FileBuilder file(ByteOrder::kBig);
        file.u32({0x59a66a95, width, height, bits, static_cast<unsigned>(data.size()), kind,
                  map.empty() ? 0U : 1U, static_cast<unsigned>(map.size())});
        return file.u8(map).u8(data);
    }
    Numbers colours(Bytes const& bytes) const
    {
        DecodedImage const read = decoded(bytes, "x.ras");
        return bytes_of(read.to_picture(read.has_alpha()));
    }
};

TEST_F(Sun, OfColoursHasBlueFirstUnlessItSaysOtherwise)
{
    EXPECT_EQ(colours(file(1, 2, 24, 1, {}, {3, 2, 1, 0, 6, 5, 4, 0})), (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(file(1, 1, 24, 3, {}, {1, 2, 3, 0})), (Numbers{1, 2, 3}));
    EXPECT_EQ(colours(file(2, 1, 32, 1, {}, {0, 3, 2, 1, 0, 6, 5, 4})), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(colours(file(2, 1, 32, 3, {}, {9, 1, 2, 3, 8, 4, 5, 6})), (Numbers{1, 2, 3, 9, 4, 5, 6, 8}));
}

TEST_F(Sun, MayHaveAMapOrGreysOrBits)
{
    EXPECT_EQ(colours(file(2, 1, 8, 1, {1, 4, 2, 5, 3, 6}, {1, 0})), (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(file(2, 1, 8, 0, {}, {7, 9})), (Numbers{7, 7, 7, 9, 9, 9}));
    EXPECT_EQ(colours(file(2, 1, 1, 1, {}, {0x40, 0})), (Numbers{255, 255, 255, 0, 0, 0}));
    EXPECT_EQ(colours(file(2, 1, 1, 1, {1, 4, 2, 5, 3, 6}, {0x40, 0})), (Numbers{1, 2, 3, 4, 5, 6}));
}

TEST_F(Sun, MayHaveRunLengths)
{
    Bytes const runs = file(6, 1, 8, 2, {}, {5, 128, 0, 128, 3, 9});
    EXPECT_EQ(colours(runs), (Numbers{5, 5, 5, 128, 128, 128, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}));
    expect_no_piece_is_taken(runs, "x.ras");
    expect_no_harm(toolkit::sun_decoder(), runs, folder_ / "x.ras");
}

TEST_F(Sun, ThatIsDamagedIsRefused)
{
    expect_no_piece_is_taken(file(2, 1, 8, 1, {1, 4, 2, 5, 3, 6}, {1, 0}), "x.ras");
    EXPECT_NE(complaint(file(1, 1, 16, 1, {}, Bytes(64)), "x.ras").find("damaged"), std::string::npos);
    EXPECT_NE(complaint(file(1, 1, 24, 4, {}, Bytes(64)), "x.ras").find("damaged"), std::string::npos);
    EXPECT_NE(complaint(file(60000, 60000, 24, 2, {}, Bytes(64)), "x.ras", 1e10).find("damaged"),
              std::string::npos);
    EXPECT_EQ(complaint(file(0xffffffff, 0xffffffff, 24, 2, {}, Bytes(64)), "x.ras"),
              "its size of 4294967295 x 4294967295 is more than 1048576 texels");
}

} // namespace
} // namespace umbrixlib::test
