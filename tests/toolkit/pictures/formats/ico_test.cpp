// SPDX-License-Identifier: MIT
/// Icons and pointers.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Ico : public Decoding {
protected:
    /// The start of a file and of the entries of its pictures: side, bits, place.
    static FileBuilder start(unsigned type, std::vector<std::array<unsigned, 3>> const& entries)
    {
        FileBuilder file;
        file.u16({0, type, static_cast<unsigned>(entries.size())});
        for (auto const& [side, bits, at] : entries) {
            auto const byte = static_cast<std::uint8_t>(side);
            file.u8({byte, byte, 0, 0}).u16({1, bits}).u32({100, at});
        }
        return file;
    }

    static void add_header(FileBuilder& file, int side, unsigned bits, unsigned colours = 0)
    {
        file.u32({40}).i32(side).i32(2 * side).u16({1, bits}).u32({0, 0, 0, 0, colours, 0});
    }
};

TEST_F(Ico, GivesItsLargestPicture)
{
    FileBuilder file = start(1, {{1, 24, 38}, {2, 24, 90}});
    add_header(file, 1, 24);
    file.u8({3, 2, 1, 0, 0, 0, 0, 0}).up_to(90);
    add_header(file, 2, 24);
    file.u8({3, 2, 1, 6, 5, 4, 0, 0, 9, 8, 7, 12, 11, 10, 0, 0}).u8({0x40, 0, 0, 0, 0x80, 0, 0, 0});
    DecodedImage const image = decoded(file, "x.ico");
    EXPECT_EQ(bytes_of(image.to_picture(true)),
              (Numbers{1, 2, 3, 255, 4, 5, 6, 0, 7, 8, 9, 0, 10, 11, 12, 255}));
    EXPECT_EQ(outcome(toolkit::ico_decoder(), folder_ / "x.ico").size(), 16U);
    expect_no_harm(toolkit::ico_decoder(), file, folder_ / "x.ico");
}

TEST_F(Ico, MayHaveAPaletteOrAnAlpha)
{
    FileBuilder indexed = start(1, {{1, 4, 22}});
    add_header(indexed, 1, 4, 2);
    indexed.u8({3, 2, 1, 0, 6, 5, 4, 0}).u8({0x10, 0, 0, 0}).u8({0, 0, 0, 0});
    EXPECT_EQ(bytes_of(decoded(indexed, "x.ico").to_picture(true)), (Numbers{4, 5, 6, 255}));
    expect_no_piece_is_taken(indexed, "x.ico");
    FileBuilder deep = start(2, {{1, 32, 22}});
    add_header(deep, 1, 32);
    deep.u8({3, 2, 1, 77}).u8({0, 0, 0, 0});
    EXPECT_EQ(bytes_of(decoded(deep, "x.cur").to_picture(true)), (Numbers{1, 2, 3, 77}));
}

TEST_F(Ico, ThatHoldsAPngIsRefusedByItsName)
{
    FileBuilder file = start(1, {{0, 32, 22}});
    file.u8({0x89}).text("PNG\r\n\x1a\n");
    EXPECT_EQ(complaint(file, "x.ico"), "it is an icon that holds a PNG picture");
}

} // namespace
} // namespace umbrixlib::test
