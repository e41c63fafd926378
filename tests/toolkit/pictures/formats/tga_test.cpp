// SPDX-License-Identifier: MIT
/// TGA files of each kind.
#include "files/file_builder.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::test {
namespace {

struct TgaForm {
    int type = 2;
    int bits = 24;
    int descriptor = 0;
    int map_first = 0;
    int map_bits = 0;
    Bytes map{};
    Bytes comment{};
};

Bytes tga_file(int width, int height, TgaForm const& form, Bytes const& texels)
{
    Bytes file(18);
    file[0] = static_cast<std::uint8_t>(form.comment.size());
    file[1] = form.map.empty() ? 0 : 1;
    file[2] = static_cast<std::uint8_t>(form.type);
    file[3] = static_cast<std::uint8_t>(form.map_first);
    if (!form.map.empty()) {
        file[5] = static_cast<std::uint8_t>(form.map.size() * 8 /
                                            static_cast<std::size_t>((form.map_bits + 7) / 8 * 8));
        file[7] = static_cast<std::uint8_t>(form.map_bits);
    }
    file[12] = static_cast<std::uint8_t>(width & 255);
    file[13] = static_cast<std::uint8_t>(width >> 8);
    file[14] = static_cast<std::uint8_t>(height & 255);
    file[15] = static_cast<std::uint8_t>(height >> 8);
    file[16] = static_cast<std::uint8_t>(form.bits);
    file[17] = static_cast<std::uint8_t>(form.descriptor);
    for (Bytes const& part : {form.comment, form.map, texels}) {
        file.insert(file.end(), part.begin(), part.end());
    }
    return file;
}

class Tga : public Decoding {
protected:
    Numbers colours(int width, int height, TgaForm const& form, Bytes const& texels) const
    {
        DecodedImage const image = decoded(tga_file(width, height, form, texels), "x.tga");
        return bytes_of(image.to_picture(image.has_alpha()));
    }
};

TEST_F(Tga, OfColoursHasBlueFirst)
{
    EXPECT_EQ(colours(1, 2, {}, {3, 2, 1, 6, 5, 4}), (Numbers{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(colours(1, 1, {.bits = 32, .descriptor = 8}, {3, 2, 1, 9}), (Numbers{1, 2, 3, 9}));
    EXPECT_EQ(colours(1, 1, {.bits = 32}, {3, 2, 1, 9}), (Numbers{1, 2, 3, 9}));
    EXPECT_EQ(colours(1, 1, {.comment = {7, 7, 7}}, {3, 2, 1}), (Numbers{1, 2, 3}));
}

TEST_F(Tga, OfFiveBitsAChannelSpreadsThemToEight)
{
    // Red 31, green 1, blue 16.
    for (int const bits : {15, 16}) {
        EXPECT_EQ(colours(1, 1, {.bits = bits}, {0b00110000, 0b01111100}), (Numbers{255, 8, 132}));
    }
}

TEST_F(Tga, OfGreysMayHaveAnAlpha)
{
    EXPECT_EQ(colours(2, 1, {.type = 3, .bits = 8}, {7, 9}), (Numbers{7, 7, 7, 9, 9, 9}));
    EXPECT_EQ(colours(2, 1, {.type = 3, .bits = 16, .descriptor = 8}, {7, 100, 9, 200}),
              (Numbers{7, 7, 7, 100, 9, 9, 9, 200}));
}

TEST_F(Tga, MayHaveTheTopRowOrTheRightColumnFirst)
{
    Bytes const texels{1, 2, 3, 4};
    TgaForm const greys{.type = 3, .bits = 8};
    auto const first_channels = [&](int descriptor) {
        TgaForm form = greys;
        form.descriptor = descriptor;
        Picture const picture = decoded(tga_file(2, 2, form, texels), "x.tga").to_picture(false);
        return Numbers{picture.texel(0)[0], picture.texel(1)[0], picture.texel(2)[0], picture.texel(3)[0]};
    };
    EXPECT_EQ(first_channels(0), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(first_channels(0x20), (Numbers{3, 4, 1, 2}));
    EXPECT_EQ(first_channels(0x10), (Numbers{2, 1, 4, 3}));
    EXPECT_EQ(first_channels(0x30), (Numbers{4, 3, 2, 1}));
}

TEST_F(Tga, WithAPaletteGivesItsColours)
{
    Numbers const wanted{1, 2, 3, 0, 0, 0, 4, 5, 6};
    TgaForm form{.type = 1, .bits = 8, .map_bits = 24, .map = {3, 2, 1, 6, 5, 4}};
    EXPECT_EQ(colours(3, 1, form, {0, 9, 1}), wanted) << "9 is not in the map";
    form.map_first = 40;
    EXPECT_EQ(colours(3, 1, form, {40, 9, 41}), wanted);
    form.bits = 16;
    EXPECT_EQ(colours(3, 1, form, {40, 0, 40, 1, 41, 0}), wanted);
    form.map_bits = 32;
    form.map = {3, 2, 1, 77, 6, 5, 4, 77};
    EXPECT_EQ(colours(3, 1, form, {40, 0, 40, 1, 41, 0}), wanted);
    form.map_bits = 16;
    form.map = {0b00110000, 0b01111100};
    EXPECT_EQ(colours(1, 1, form, {40, 0}), (Numbers{255, 8, 132}));
    EXPECT_EQ(decoded(tga_file(1, 1, form, {40, 0}), "x.tga").description(), "palette");
}

TEST_F(Tga, OfAnyKindMayHaveTheRightColumnFirst)
{
    EXPECT_EQ(colours(2, 1, {.descriptor = 0x10}, {3, 2, 1, 6, 5, 4}), (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(2, 1, {.bits = 32, .descriptor = 0x18}, {3, 2, 1, 9, 6, 5, 4, 8}),
              (Numbers{4, 5, 6, 8, 1, 2, 3, 9}));
    EXPECT_EQ(colours(2, 2,
                      {.type = 9,
                       .bits = 8,
                       .descriptor = 0x30,
                       .map_first = 7,
                       .map_bits = 24,
                       .map = {3, 2, 1, 6, 5, 4}},
                      {0x82, 7, 0x00, 8}),
              (Numbers{4, 5, 6, 1, 2, 3, 1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(colours(2, 1, {.type = 10, .bits = 16, .descriptor = 0x11}, {0x01, 0x00, 0x7c, 0x1f, 0x80}),
              (Numbers{0, 0, 255, 255, 0, 0}))
        << "the bit of attributes is left alone";
}

TEST_F(Tga, OfColoursMayHaveAMapThatIsNotUsed)
{
    EXPECT_EQ(colours(1, 1, {.map_bits = 24, .map = {9, 9, 9, 8, 8, 8}}, {3, 2, 1}), (Numbers{1, 2, 3}));
}

TEST_F(Tga, MayHaveRunLengths)
{
    // Three times a colour, then two as they are; the last run may be longer than the picture.
    EXPECT_EQ(colours(5, 1, {.type = 10}, {0x82, 3, 2, 1, 0x01, 6, 5, 4, 9, 8, 7}),
              (Numbers{1, 2, 3, 1, 2, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(colours(2, 2, {.type = 11, .bits = 8}, {0xff, 5}),
              (Numbers{5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5}));
    EXPECT_EQ(colours(2, 1, {.type = 9, .bits = 8, .map_bits = 24, .map = {3, 2, 1}}, {0x81, 0}),
              (Numbers{1, 2, 3, 1, 2, 3}));
}

TEST_F(Tga, ThatIsCutShortIsRefused)
{
    expect_no_piece_is_taken(tga_file(3, 2, {}, Bytes(18, 7)), "x.tga");
    expect_no_piece_is_taken(tga_file(5, 1, {.type = 10}, {0x82, 3, 2, 1, 0x01, 6, 5, 4, 9, 8, 7}), "x.tga");
    expect_no_piece_is_taken(
        tga_file(2, 1, {.type = 1, .bits = 8, .map_bits = 24, .map = {3, 2, 1}, .comment = {1, 2}}, {0, 0}),
        "x.tga");
}

TEST_F(Tga, WithAHeaderThatMakesNoSenseIsRefused)
{
    for (TgaForm const& form :
         {TgaForm{.type = 0}, TgaForm{.type = 4}, TgaForm{.bits = 8}, TgaForm{.bits = 48},
          TgaForm{.type = 3, .bits = 24}, TgaForm{.type = 1, .bits = 8},
          TgaForm{.type = 1, .bits = 24, .map_bits = 24, .map = {1, 2, 3}}}) {
        EXPECT_NE(complaint(tga_file(1, 1, form, Bytes(64, 1)), "x.tga").find("damaged"), std::string::npos)
            << form.type << ' ' << form.bits;
    }
    EXPECT_NE(complaint(tga_file(0, 1, {}, Bytes(64, 1)), "x.tga").find("damaged"), std::string::npos);
}

TEST_F(Tga, ThatIsNotTakenIsRefusedByItsName)
{
    EXPECT_EQ(complaint(tga_file(1, 1, {.type = 32}, Bytes(64, 1)), "x.tga"),
              "it is a TGA picture with Huffman codes");
    EXPECT_EQ(complaint(tga_file(1, 1, {.type = 3, .bits = 1}, Bytes(64, 1)), "x.tga"),
              "it is a TGA picture of one bit a texel");
}

TEST_F(Tga, ThatIsTooLargeIsRefusedByItsHeader)
{
    for (int const type : {2, 10}) {
        Bytes const file = tga_file(0xffff, 0xffff, {.type = type, .bits = 32}, Bytes(64, 1));
        EXPECT_EQ(complaint(file, "x.tga"), "its size of 65535 x 65535 is more than 1048576 texels");
        // 16 GB of samples would not fit: nothing is taken for a file that cannot hold them.
        EXPECT_NE(complaint(file, "x.tga", 1e10).find("damaged"), std::string::npos);
    }
}

TEST_F(Tga, ThatIsDamagedDoesNoHarm)
{
    for (Bytes const& file :
         {tga_file(5, 1, {.type = 10}, {0x82, 3, 2, 1, 0x01, 6, 5, 4, 9, 8, 7}),
          tga_file(2, 2, {.type = 1, .bits = 16, .map_first = 300, .map_bits = 16, .map = {1, 2, 3, 4}},
                   Bytes(8, 1))}) {
        expect_no_harm(toolkit::tga_decoder(), file, folder_ / "x.tga");
    }
}

TEST_F(Tga, OfAnUnknownNameIsToldByItsHeader)
{
    Bytes const file = tga_file(1, 1, {}, {3, 2, 1});
    for (char const* name : {"x.vda", "x.icb", "x.vst", "x", "x.texture"}) {
        EXPECT_EQ(bytes_of(decoded(file, name).to_picture(false)), (Numbers{1, 2, 3})) << name;
    }
}

TEST_F(Tga, GivesBackWhatWasWritten)
{
    for (int const channels : {3, 4}) {
        Picture picture = toolkit::make_picture(300, 2, channels);
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            picture.bytes[i] = static_cast<std::uint8_t>(i * i / 3);
        }
        ASSERT_TRUE(toolkit::tga_encoder().encode(folder_ / "y.tga", picture));
        DecodedImage const read(folder_ / "y.tga", "input", kMostTexels);
        EXPECT_EQ(read.to_picture(channels == 4).bytes, picture.bytes);
        TgaPicture const other = read_tga(folder_ / "y.tga");
        EXPECT_EQ(other.at(299, 1, 0), picture.texel(599)[0]);
        EXPECT_EQ(other.at(0, 1, 2), picture.texel(300)[2]);
    }
    EXPECT_FALSE(toolkit::tga_encoder().encode("/nowhere/y.tga", toolkit::make_picture(1, 1, 3)));
    EXPECT_FALSE(toolkit::tga_encoder().encode("/dev/full", toolkit::make_picture(99, 99, 3)));
}

} // namespace
} // namespace umbrixlib::test
