// SPDX-License-Identifier: MIT
/// BMP files of each kind.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

struct BmpForm {
    unsigned header = 40;
    unsigned bits = 24;
    unsigned compression = 0;
    std::vector<unsigned> masks{};
    Bytes palette{};
    unsigned colours = 0;
};

Bytes bmp_file(int width, int height, BmpForm const& form, Bytes const& texels)
{
    bool const masks_inside = form.header >= 52;
    std::size_t const texels_at =
        14 + form.header + (masks_inside ? 0 : 4 * form.masks.size()) + form.palette.size();
    FileBuilder file;
    file.text("BM").u32({static_cast<unsigned>(texels_at + texels.size()), 0});
    file.u32({static_cast<unsigned>(texels_at), form.header});
    if (form.header == 12) {
        file.u16({static_cast<unsigned>(width), static_cast<unsigned>(height), 1, form.bits});
    } else {
        file.i32(width).i32(height).u16({1, form.bits});
    }
    if (form.header >= 40) {
        file.u32({form.compression, 0, 2835, 2835, form.colours, 0});
    }
    file.u32(form.masks);
    if (masks_inside || form.header < 40) {
        file.up_to(14 + form.header);
    }
    return file.u8(form.palette).u8(texels);
}

class Bmp : public Decoding {
protected:
    DecodedImage image(int width, int height, BmpForm const& form, Bytes const& texels) const
    {
        return decoded(bmp_file(width, height, form, texels), "x.bmp");
    }
    Numbers colours(int width, int height, BmpForm const& form, Bytes const& texels) const
    {
        DecodedImage const read = image(width, height, form, texels);
        return bytes_of(read.to_picture(read.has_alpha()));
    }
};

TEST_F(Bmp, OfColoursHasBlueFirstAndPaddedRows)
{
    Bytes const texels{3, 2, 1, 0, 6, 5, 4, 0};
    for (unsigned const header : {12U, 16U, 40U, 52U, 56U, 64U, 108U, 124U}) {
        EXPECT_EQ(colours(1, 2, {.header = header}, texels), (Numbers{1, 2, 3, 4, 5, 6})) << header;
    }
    EXPECT_EQ(colours(1, -2, {}, texels), (Numbers{4, 5, 6, 1, 2, 3})) << "the top row first";
}

TEST_F(Bmp, OfThirtyTwoBitsHasAnAlphaIfTheFourthBytesTellTexelsApart)
{
    EXPECT_EQ(colours(2, 1, {.bits = 32}, {3, 2, 1, 0, 6, 5, 4, 0}), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(colours(2, 1, {.bits = 32}, {3, 2, 1, 255, 6, 5, 4, 255}), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(colours(2, 1, {.bits = 32}, {3, 2, 1, 9, 6, 5, 4, 0}), (Numbers{1, 2, 3, 9, 4, 5, 6, 0}));
}

TEST_F(Bmp, MayHaveMasks)
{
    for (unsigned const header : {40U, 52U, 56U, 108U, 124U}) {
        EXPECT_EQ(colours(1, 1,
                          {.header = header, .bits = 32, .compression = 3, .masks = {0xff, 0xff00, 0xff0000}},
                          {1, 2, 3, 4}),
                  (Numbers{1, 2, 3}))
            << header;
    }
    BmpForm const with_alpha{
        .header = 124, .bits = 32, .compression = 3, .masks = {0xff0000, 0xff00, 0xff, 0xff000000}};
    EXPECT_EQ(colours(1, 1, with_alpha, {3, 2, 1, 0}), (Numbers{1, 2, 3, 0}));
    EXPECT_EQ(colours(1, 1, {.bits = 32, .compression = 6, .masks = with_alpha.masks}, {3, 2, 1, 8}),
              (Numbers{1, 2, 3, 8}));
    // Ten bits a channel: all of red, none of green, half of blue.
    DecodedImage const deep = image(
        1, 1, {.bits = 32, .compression = 3, .masks = {0x3ff00000, 0xffc00, 0x3ff}}, {0, 2, 0xf0, 0x3f});
    EXPECT_EQ(shorts_of(deep.to_picture(false)), (Numbers{65535, 0, 32800}));
}

TEST_F(Bmp, OfFiveAndSixBitsAChannelHasAWhiteThatIsWhite)
{
    EXPECT_EQ(colours(2, 1, {.bits = 16}, {0xff, 0x7f, 0b00110000, 0b01111100}),
              (Numbers{255, 255, 255, 255, 8, 132}));
    EXPECT_EQ(colours(2, 1, {.bits = 16, .compression = 3, .masks = {0xf800, 0x7e0, 0x1f}},
                      {0xff, 0xff, 0x20, 0x00}),
              (Numbers{255, 255, 255, 0, 4, 0}));
    EXPECT_EQ(colours(2, 1, {.bits = 16, .compression = 6, .masks = {0x7c00, 0x3e0, 0x1f, 0x8000}},
                      {0xff, 0xff, 0x00, 0x00}),
              (Numbers{255, 255, 255, 255, 0, 0, 0, 0}));
}

TEST_F(Bmp, WithAPaletteGivesItsColours)
{
    Bytes const palette{3, 2, 1, 0, 6, 5, 4, 0};
    Numbers const wanted{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(colours(2, 1, {.bits = 1, .palette = palette}, {0x40, 0, 0, 0}), wanted);
    for (unsigned const number : {0U, 2U}) {
        BmpForm form{.bits = 2, .palette = palette, .colours = number};
        EXPECT_EQ(colours(2, 1, form, {0x10, 0, 0, 0}), wanted);
        form.bits = 4;
        EXPECT_EQ(colours(2, 1, form, {0x01, 0, 0, 0}), wanted);
        form.bits = 8;
        EXPECT_EQ(colours(2, 1, form, {0, 1, 0, 0}), wanted);
    }
    EXPECT_EQ(colours(2, 1, {.header = 12, .bits = 8, .palette = {3, 2, 1, 6, 5, 4}}, {0, 1, 0, 0}), wanted);
    EXPECT_EQ(colours(2, 1, {.bits = 8, .palette = palette}, {7, 1, 0, 0}), (Numbers{0, 0, 0, 4, 5, 6}))
        << "7 is not in the palette";
    EXPECT_EQ(image(1, 1, {.bits = 8, .palette = palette}, {0, 0, 0, 0}).description(), "palette");
}

TEST_F(Bmp, MayHaveRunLengths)
{
    auto const reds = [&](unsigned bits, Bytes const& runs) {
        Bytes palette;
        for (unsigned i = 0; i < 16; ++i) {
            palette.insert(palette.end(), {0, 0, static_cast<std::uint8_t>(i), 0});
        }
        BmpForm const form{
            .bits = bits, .compression = bits == 8 ? 1U : 2U, .palette = palette, .colours = 16};
        Picture const picture = image(4, 2, form, runs).to_picture(false);
        Numbers result;
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            result.push_back(picture.texel(i)[0]);
        }
        return result;
    };
    // A run, three as they are with a byte to fill up, then a step to the last texel.
    EXPECT_EQ(reds(8, {1, 7, 0, 3, 1, 2, 3, 0, 0, 0, 0, 2, 3, 0, 1, 9, 0, 1}),
              (Numbers{7, 1, 2, 3, 0, 0, 0, 9}));
    EXPECT_EQ(reds(4, {1, 0x70, 0, 3, 0x12, 0x30, 0, 0, 4, 0x98, 0, 1}), (Numbers{7, 1, 2, 3, 9, 8, 9, 8}));
    EXPECT_EQ(reds(8, {4, 7, 0, 0, 4, 9}), (Numbers{7, 7, 7, 7, 9, 9, 9, 9})) << "no mark of the end";
    EXPECT_EQ(reds(8, {9, 7, 0, 0, 4, 9, 0, 1}), (Numbers{7, 7, 7, 7, 9, 9, 9, 9})) << "too long a run";
}

TEST_F(Bmp, MayBeBare)
{
    Bytes const file = bmp_file(1, 1, {.bits = 8, .palette = {3, 2, 1, 0}, .colours = 1}, {0, 0, 0, 0});
    Bytes const bare(file.begin() + 14, file.end());
    EXPECT_EQ(bytes_of(decoded(bare, "x.dib").to_picture(false)), (Numbers{1, 2, 3}));
    EXPECT_EQ(bytes_of(decoded(file, "x.dib").to_picture(false)), (Numbers{1, 2, 3}));
}

TEST_F(Bmp, ThatIsCutShortIsRefused)
{
    expect_no_piece_is_taken(bmp_file(3, 2, {}, Bytes(24, 7)), "x.bmp");
    expect_no_piece_is_taken(bmp_file(1, 1, {.bits = 8, .palette = Bytes(8, 7)}, {0, 0, 0, 0}), "x.bmp");
    expect_no_piece_is_taken(
        bmp_file(4, 2, {.bits = 8, .compression = 1, .palette = Bytes(8, 7)}, {4, 1, 0, 0, 3, 1, 0, 1}),
        "x.bmp");
}

TEST_F(Bmp, ThatIsNotTakenIsRefusedByItsName)
{
    EXPECT_EQ(complaint(bmp_file(1, 1, {.bits = 0, .compression = 5}, {}), "x.bmp"),
              "it is a BMP file around a PNG picture");
    EXPECT_EQ(complaint(bmp_file(1, 1, {.bits = 0, .compression = 4}, {}), "x.bmp"),
              "it is a BMP file around a JPEG picture");
    EXPECT_EQ(complaint(bmp_file(1, 1, {.header = 64, .compression = 4}, {}), "x.bmp"),
              "it is a BMP file with a compression of OS/2");
    EXPECT_EQ(complaint(FileBuilder().text("BA").zeros(12).text("BM").zeros(80), "x.bmp"),
              "it is an OS/2 array of BMP pictures");
}

TEST_F(Bmp, WithAHeaderThatMakesNoSenseIsRefused)
{
    Bytes const texels(64, 1);
    for (BmpForm const& form : {BmpForm{.header = 41}, BmpForm{.bits = 3}, BmpForm{.compression = 7},
                                BmpForm{.bits = 4, .compression = 1},
                                BmpForm{.bits = 16, .compression = 3, .masks = {0x8001, 0, 0}},
                                BmpForm{.bits = 16, .compression = 3, .masks = {0x10000, 0, 0}}}) {
        EXPECT_NE(complaint(bmp_file(1, 1, form, texels), "x.bmp").find("damaged"), std::string::npos)
            << form.header << ' ' << form.bits << ' ' << form.compression;
    }
    for (unsigned const compression : {0U, 1U}) {
        Bytes const file = bmp_file(65535, 65535, {.bits = 8, .compression = compression}, texels);
        EXPECT_EQ(complaint(file, "x.bmp"), "its size of 65535 x 65535 is more than 1048576 texels");
        EXPECT_NE(complaint(file, "x.bmp", 1e10).find("damaged"), std::string::npos);
    }
    EXPECT_NE(complaint(bmp_file(-5, 1, {}, texels), "x.bmp"), "");
    EXPECT_NE(complaint(bmp_file(1, INT32_MIN, {}, texels), "x.bmp"), "");
}

TEST_F(Bmp, ThatIsDamagedDoesNoHarm)
{
    for (Bytes const& file :
         {bmp_file(4, 2, {.bits = 8, .compression = 1, .palette = Bytes(8, 7)}, {4, 1, 0, 0, 3, 1, 0, 1}),
          bmp_file(4, 2, {.bits = 4, .compression = 2, .palette = Bytes(8, 7)},
                   {0, 3, 0x12, 0x30, 0, 0, 4, 0x98, 0, 1}),
          bmp_file(2, 2, {.bits = 16, .compression = 3, .masks = {0xf800, 0x7e0, 0x1f}}, Bytes(8, 7))}) {
        expect_no_harm(toolkit::bmp_decoder(), file, folder_ / "x.bmp");
    }
}

} // namespace
} // namespace umbrixlib::test
