// SPDX-License-Identifier: MIT
/// PBM, PGM, PPM and PAM files.
#include "files/file_builder.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::test {
namespace {

class Pnm : public Decoding {
protected:
    static Bytes file(std::string const& header, Bytes const& samples = {})
    {
        Bytes bytes(header.begin(), header.end());
        bytes.insert(bytes.end(), samples.begin(), samples.end());
        return bytes;
    }

    DecodedImage image(std::string const& header, Bytes const& samples = {}) const
    {
        return decoded(file(header, samples), "x.pnm");
    }
};

TEST_F(Pnm, OfEachKindIsRead)
{
    EXPECT_EQ(bytes_of(image("P1 2 2 10 0 1").to_picture(false)),
              (Numbers{255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(bytes_of(image("P4\n2 2\n", {0b10000000, 0b01000000}).to_picture(false)),
              (Numbers{255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(bytes_of(image("P2\n1 2 # a comment\n255\n7\n9\n").to_picture(false)),
              (Numbers{9, 9, 9, 7, 7, 7}));
    EXPECT_EQ(bytes_of(image("P5\n1 2\n255\n", {7, 9}).to_picture(false)), (Numbers{9, 9, 9, 7, 7, 7}));
    EXPECT_EQ(bytes_of(image("P3 1 1 255 1 2 3").to_picture(false)), (Numbers{1, 2, 3}));
    EXPECT_EQ(bytes_of(image("P6#a\n1 1 255#b\n", {1, 2, 3}).to_picture(false)), (Numbers{1, 2, 3}));
    EXPECT_EQ(bytes_of(image("P7\nWIDTH 1\nHEIGHT 1\n# c\nDEPTH 2\nMAXVAL 255\nTUPLTYPE GRAYSCALE_ALPHA\n"
                             "ENDHDR\n",
                             {5, 6})
                           .to_picture(true)),
              (Numbers{5, 5, 5, 6}));
}

TEST_F(Pnm, OfAnyChannelsIsRead)
{
    auto const header = [](char const* channels, char const* most) {
        return std::string("P7\nMAXVAL ") + most + "\nDEPTH " + channels + "\nHEIGHT 1\nWIDTH 1\nENDHDR\n";
    };
    EXPECT_EQ(image(header("1", "1"), {1}).description(), "8-bit grey");
    EXPECT_EQ(bytes_of(image(header("1", "1"), {1}).to_picture(false)), (Numbers{255, 255, 255}))
        << "1 is white";
    EXPECT_EQ(bytes_of(image(header("3", "15"), {15, 1, 0}).to_picture(false)), (Numbers{255, 17, 0}));
    EXPECT_EQ(bytes_of(image(header("4", "255"), {1, 2, 3, 4}).to_picture(true)), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(shorts_of(image(header("2", "65535"), {1, 2, 3, 4}).to_picture(true)),
              (Numbers{0x102, 0x102, 0x102, 0x304}));
    EXPECT_EQ(shorts_of(image(header("4", "256"), {1, 0, 0, 128, 0, 0, 0, 1}).to_picture(true)),
              (Numbers{65535, 32768, 0, 256}));
}

TEST_F(Pnm, ThatIsDamagedDoesNoHarm)
{
    expect_no_harm(toolkit::pnm_decoder(), file("P3 2 1 9 1 2 3 4 5 6"), folder_ / "x.ppm");
    expect_no_harm(toolkit::pnm_decoder(), file("P4 9 2 ", Bytes(4, 7)), folder_ / "x.pbm");
}

TEST_F(Pnm, SpreadsItsNumbersOverAllThatTheSamplesHold)
{
    EXPECT_EQ(bytes_of(image("P5 3 1 100 ", {0, 50, 100}).to_picture(false)),
              (Numbers{0, 0, 0, 128, 128, 128, 255, 255, 255}));
    EXPECT_EQ(shorts_of(image("P5 2 1 1000 ", {0x03, 0xe8, 0x01, 0xf4}).to_picture(false)),
              (Numbers{65535, 65535, 65535, 32768, 32768, 32768}));
    EXPECT_EQ(shorts_of(image("P2 1 1 65535 4660").to_picture(false)), (Numbers{4660, 4660, 4660}));
    EXPECT_EQ(shorts_of(image("P6 1 1 65535 ", {1, 2, 3, 4, 5, 6}).to_picture(false)),
              (Numbers{0x102, 0x304, 0x506}));
}

TEST_F(Pnm, ThatIsCutShortIsRefused)
{
    expect_no_piece_is_taken(file("P6\n2 2\n255\n", Bytes(12, 7)), "x.ppm");
    expect_no_piece_is_taken(file("P5\n2 2\n65535\n", Bytes(8, 7)), "x.pgm");
    expect_no_piece_is_taken(file("P4\n9 2\n", Bytes(4, 7)), "x.pbm");
    expect_no_piece_is_taken(file("P2\n2 1\n255\n12 7"), "x.pgm");
    expect_no_piece_is_taken(
        file("P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n", Bytes(4, 7)),
        "x.pam");
}

TEST_F(Pnm, WithNonsenseInItIsRefused)
{
    for (char const* const text :
         {"P5 -1 1 255 aa", "P5 1x 1 255 aa", "P5 1 1 0 aa", "P5 1 1 65536 aaaa", "P2 1 1 255 x",
          "P2 1 1 255 256", "P1 1 1 2", "P7 DEPTH 5 WIDTH 1 HEIGHT 1 MAXVAL 255 ENDHDR aaaaa",
          "P7 BREADTH 1 ENDHDR a", "P5 99999999999999999999 1 255 a"}) {
        EXPECT_NE(complaint(file(text), "x.pnm").find("damaged"), std::string::npos) << text;
    }
    EXPECT_EQ(complaint(file("P5 65535 65535 255 "), "x.pgm"),
              "its size of 65535 x 65535 is more than 1048576 texels");
    EXPECT_NE(complaint(file("P5 65535 65535 255 "), "x.pgm", 1e10).find("damaged"), std::string::npos);
}

TEST_F(Pnm, GivesBackWhatWasWritten)
{
    Picture picture = toolkit::make_picture(3, 2, 3);
    for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
        picture.bytes[i] = static_cast<std::uint8_t>(i * 13);
    }
    ASSERT_TRUE(toolkit::ppm_encoder().encode(folder_ / "y.ppm", picture));
    DecodedImage const read(folder_ / "y.ppm", "input", kMostTexels);
    EXPECT_EQ(read.to_picture(false).bytes, picture.bytes);
    EXPECT_FALSE(toolkit::ppm_encoder().encode("/nowhere/y.ppm", picture));
}

} // namespace
} // namespace umbrixlib::test
