// SPDX-License-Identifier: MIT
/// PNG files of each kind.
#include "decoding.h"
#include "toolkit/pictures/analysis/channel_ranges.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::test {
namespace {

class Png : public Decoding {
protected:
    DecodedImage image(Bytes const& file) const { return decoded(file, "x.png"); }
};

TEST_F(Png, OfGreysGivesThreeEqualChannelsTheBottomRowFirst)
{
    DecodedImage const grey = image(png_bytes(2, PngColour::kGrey, 8, {{1, 2}, {3, 4}}));
    EXPECT_EQ(grey.description(), "8-bit grey");
    EXPECT_FALSE(grey.is_plain());
    EXPECT_EQ(bytes_of(grey.to_picture(false)), (Numbers{3, 3, 3, 4, 4, 4, 1, 1, 1, 2, 2, 2}));
}

TEST_F(Png, OfOneTwoAndFourBitsSpreadsTheGreysToEight)
{
    EXPECT_EQ(bytes_of(image(png_bytes(3, PngColour::kGrey, 1, {{0b10100000}})).to_picture(false)),
              (Numbers{255, 255, 255, 0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(bytes_of(image(png_bytes(3, PngColour::kGrey, 2, {{0b01101100}})).to_picture(false)),
              (Numbers{85, 85, 85, 170, 170, 170, 255, 255, 255}));
    EXPECT_EQ(bytes_of(image(png_bytes(2, PngColour::kGrey, 4, {{0x3f}})).to_picture(false)),
              (Numbers{51, 51, 51, 255, 255, 255}));
}

TEST_F(Png, OfSixteenBitsKeepsThem)
{
    DecodedImage const grey = image(png_bytes(2, PngColour::kGrey, 16, {{0x12, 0x34, 0xff, 0xfe}}));
    EXPECT_EQ(grey.description(), "16-bit grey");
    EXPECT_EQ(grey.bits_per_channel(), 16);
    EXPECT_EQ(shorts_of(grey.to_picture(false)), (Numbers{0x1234, 0x1234, 0x1234, 0xfffe, 0xfffe, 0xfffe}));

    DecodedImage const rgba = image(png_bytes(1, PngColour::kRgba, 16, {{0, 1, 0, 2, 0, 3, 0x80, 0}}));
    EXPECT_EQ(rgba.description(), "16-bit colour with alpha");
    EXPECT_EQ(shorts_of(rgba.to_picture(true)), (Numbers{1, 2, 3, 0x8000}));
    EXPECT_EQ(shorts_of(rgba.to_picture(false)), (Numbers{1, 2, 3}));
}

TEST_F(Png, OfColoursIsPlain)
{
    DecodedImage const rgb = image(png_bytes(1, PngColour::kRgb, 8, {{1, 2, 3}}));
    EXPECT_TRUE(rgb.is_plain());
    EXPECT_EQ(bytes_of(rgb.to_picture(false)), (Numbers{1, 2, 3}));
    EXPECT_EQ(bytes_of(rgb.to_picture(true)), (Numbers{1, 2, 3, 255}));
    EXPECT_EQ(bytes_of(image(png_bytes(1, PngColour::kRgba, 8, {{1, 2, 3, 4}})).to_picture(true)),
              (Numbers{1, 2, 3, 4}));
}

TEST_F(Png, OfGreyWithAlphaKeepsBoth)
{
    DecodedImage const grey = image(png_bytes(2, PngColour::kGreyAlpha, 8, {{9, 200, 7, 100}}));
    EXPECT_EQ(grey.description(), "8-bit grey with alpha");
    EXPECT_EQ(bytes_of(grey.to_picture(true)), (Numbers{9, 9, 9, 200, 7, 7, 7, 100}));
    auto const ranges = toolkit::channel_ranges(grey.picture());
    ASSERT_EQ(ranges.size(), 2U);
    EXPECT_EQ(ranges[1].name, "alpha");
    EXPECT_EQ(ranges[1].minimum, 100.0);
    EXPECT_EQ(ranges[1].mean, 150.0);
}

TEST_F(Png, WithAPaletteGivesItsColours)
{
    Bytes const palette{1, 2, 3, 40, 50, 60};
    for (Bytes const& transparency : {Bytes{}, Bytes{7, 8}}) {
        DecodedImage const file =
            image(png_bytes(3, PngColour::kPalette, 1, {{0b01000000}}, palette, transparency));
        EXPECT_EQ(file.description(), "palette");
        EXPECT_FALSE(file.has_alpha());
        EXPECT_EQ(bytes_of(file.to_picture(false)), (Numbers{1, 2, 3, 40, 50, 60, 1, 2, 3}));
    }
    EXPECT_EQ(bytes_of(image(png_bytes(1, PngColour::kPalette, 8, {{200}}, palette)).to_picture(false)),
              (Numbers{0, 0, 0}))
        << "a colour that is not there";
}

TEST_F(Png, WithOneTransparentColourHasAnAlpha)
{
    EXPECT_EQ(bytes_of(image(png_bytes(2, PngColour::kGrey, 8, {{5, 6}}, {}, {0, 6})).to_picture(true)),
              (Numbers{5, 5, 5, 255, 6, 6, 6, 0}));
    EXPECT_EQ(bytes_of(image(png_bytes(2, PngColour::kRgb, 8, {{1, 2, 3, 4, 5, 6}}, {}, {0, 1, 0, 2, 0, 3}))
                           .to_picture(true)),
              (Numbers{1, 2, 3, 0, 4, 5, 6, 255}));
    EXPECT_EQ(
        shorts_of(
            image(png_bytes(1, PngColour::kGrey, 16, {{0x12, 0x34}}, {}, {0x12, 0x35})).to_picture(true)),
        (Numbers{0x1234, 0x1234, 0x1234, 65535}));
}

TEST_F(Png, ThatIsInterlacedIsPutTogether)
{
    // 3 x 3: the first, fourth, sixth and seventh pass have texels.
    Bytes const file =
        png_bytes(3, PngColour::kGrey, 8, {{11}, {13}, {31, 33}, {12}, {32}, {21, 22, 23}}, {}, {}, 3);
    Picture const picture = image(file).to_picture(false);
    Numbers reds;
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        reds.push_back(picture.texel(i)[0]);
    }
    EXPECT_EQ(reds, (Numbers{31, 32, 33, 21, 22, 23, 11, 12, 13}));
}

TEST_F(Png, IsToldByItsContentWhateverItsName)
{
    Bytes const file = png_bytes(1, PngColour::kRgb, 8, {{1, 2, 3}});
    for (char const* name : {"x.tga", "x.ppm", "x.jpg", "x"}) {
        EXPECT_EQ(bytes_of(decoded(file, name).to_picture(false)), (Numbers{1, 2, 3})) << name;
    }
}

TEST_F(Png, ThatIsCutShortIsRefused)
{
    constexpr std::size_t kBehindTheTexels = 20; // two check sums and the end
    expect_no_piece_is_taken(png_bytes(5, PngColour::kRgb, 8, std::vector<Bytes>(4, Bytes(15, 7))), "x.png",
                             kBehindTheTexels);
    expect_no_piece_is_taken(
        png_bytes(3, PngColour::kGrey, 8, {{11}, {13}, {31, 33}, {12}, {32}, {21, 22, 23}}, {}, {}, 3),
        "x.png", kBehindTheTexels);
}

TEST_F(Png, WithAWrongCheckSumIsRefused)
{
    Bytes file = png_bytes(5, PngColour::kRgb, 8, std::vector<Bytes>(4, Bytes(15, 7)));
    file[file.size() - 20] ^= 1U;
    EXPECT_NE(complaint(file, "x.png").find("damaged"), std::string::npos);
}

/// The header of a picture of any size, and nothing else.
Bytes header_only(std::uint32_t width, std::uint32_t height)
{
    Bytes file = png_bytes(1, PngColour::kRgba, 16, {Bytes(8, 0)});
    Bytes header;
    png_detail::append_big_endian(header, width);
    png_detail::append_big_endian(header, height);
    header.insert(header.end(), {16, 6, 0, 0, 0});
    file.resize(8);
    png_detail::append_chunk(file, "IHDR", header);
    png_detail::append_chunk(file, "IDAT", {});
    return file;
}

TEST_F(Png, ThatIsTooLargeIsRefusedByItsHeader)
{
    EXPECT_EQ(complaint(header_only(2000, 1000), "x.png"),
              "its size of 2000 x 1000 is more than 1048576 texels");
    EXPECT_EQ(complaint(header_only(70000, 2), "x.png"), "its size of 70000 x 2 has a side above 65535");
    EXPECT_EQ(complaint(header_only(2000000000, 1), "x.png", 4e9),
              "its size of 2000000000 x 1 has a side above 65535");
    // 32 GB of samples would not fit: nothing is taken for a file that cannot hold them.
    EXPECT_NE(complaint(header_only(65535, 65535), "x.png", 1e10).find("damaged"), std::string::npos);
}

TEST_F(Png, GivesBackWhatWasWritten)
{
    for (int const channels : {3, 4}) {
        Picture picture = toolkit::make_picture(19, 7, channels);
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            picture.bytes[i] = static_cast<std::uint8_t>(i * i / 3);
        }
        ASSERT_TRUE(toolkit::png_encoder().encode(folder_ / "y.png", picture));
        DecodedImage const read(folder_ / "y.png", "input", kMostTexels);
        EXPECT_TRUE(read.is_plain());
        EXPECT_EQ(read.to_picture(channels == 4).bytes, picture.bytes);
    }
    EXPECT_FALSE(toolkit::png_encoder().encode("/nowhere/y.png", toolkit::make_picture(1, 1, 3)));
    EXPECT_FALSE(toolkit::png_encoder().encode("/dev/full", toolkit::make_picture(99, 99, 3)));
}

TEST_F(Png, SaysThatItsColourProfileIsLeftAlone)
{
    Bytes const plain = png_bytes(2, PngColour::kGrey, 8, {{1, 2}});
    EXPECT_TRUE(image(plain).notes().empty());
    constexpr std::ptrdiff_t kBehindHeader = 8 + 25;
    Bytes with_profile(plain.begin(), plain.begin() + kBehindHeader);
    png_detail::append_chunk(with_profile, "iCCP", {'x', 0, 0, 1, 2});
    with_profile.insert(with_profile.end(), plain.begin() + kBehindHeader, plain.end());
    DecodedImage const told = image(with_profile);
    EXPECT_EQ(told.notes(),
              std::vector<std::string>{"its colour profile is left alone: values count as they are"});
    EXPECT_EQ(bytes_of(told.to_picture(false)), bytes_of(image(plain).to_picture(false)));
}

} // namespace
} // namespace umbrixlib::test
