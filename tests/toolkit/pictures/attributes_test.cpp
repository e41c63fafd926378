// SPDX-License-Identifier: MIT
/// What pictures tell of how they were made: the text, and the formats that keep it.
#include "decoding.h"
#include "toolkit/pictures/encoder.h"

namespace umbrixlib::test {
namespace {

using toolkit::Attributes;
using toolkit::parse_attributes;

Attributes const kSome{{"umbrix", "map"}, {"mode", "unit"}, {"note", "a: b"}, {"empty", ""}};

TEST(Attributes, AreReadAsTheyWereWritten)
{
    std::string const text = toolkit::attribute_text(kSome);
    EXPECT_EQ(text, "umbrix: map\nmode: unit\nnote: a: b\nempty: \n");
    EXPECT_EQ(parse_attributes(text), kSome);
    EXPECT_EQ(value_of(kSome, "mode"), "unit");
    EXPECT_EQ(value_of(kSome, "rays"), "");
}

TEST(Attributes, AreChangedWhereThereAreAny)
{
    Attributes attributes = kSome;
    set_value(attributes, "mode", "flat");
    set_value(attributes, "rays", "7");
    EXPECT_EQ(value_of(attributes, "mode"), "flat");
    EXPECT_EQ(attributes.back(), (toolkit::Attribute{"rays", "7"}));
    Attributes none;
    set_value(none, "mode", "flat");
    EXPECT_TRUE(none.empty());
}

TEST(Attributes, OfAnyOtherTextAreNone)
{
    std::string const long_key(33, 'k');
    std::string const long_value(201, 'v');
    std::string many = "umbrix: map\n";
    for (int i = 0; i < 40; ++i) {
        many += "key: value\n";
    }
    for (std::string const& text :
         {std::string(), std::string("a photograph"), std::string("umbrix: map"), std::string("mode: unit\n"),
          std::string("umbrix: map\nmode unit\n"), std::string("umbrix: map\n\n"),
          std::string("umbrix: map\nMode: unit\n"), std::string("umbrix: \x1b[31m\n"),
          std::string("umbrix: map\x00\n", 13), std::string("umbrix: \xc3\xa4\n"), many,
          "umbrix: map\n" + long_key + ": v\n", "umbrix: map\nkey: " + long_value + "\n",
          "umbrix: map\n: value\n" + std::string(5000, '\n')}) {
        EXPECT_TRUE(parse_attributes(text).empty()) << text;
    }
}

class AttributesInFiles : public Decoding {
protected:
    static Picture picture_with(Attributes const& attributes, SampleType type)
    {
        Picture picture = toolkit::make_picture(5, 3, 3, type);
        picture.attributes = attributes;
        return picture;
    }

    Attributes read_back(toolkit::Encoder const& encoder, char const* name, Picture const& picture) const
    {
        EXPECT_TRUE(encoder.encode(folder_ / name, picture)) << name;
        return DecodedImage(folder_ / name, "input", kMostTexels).picture().attributes;
    }
};

TEST_F(AttributesInFiles, AreKeptByPngTiffAndOpenExr)
{
    for (Attributes const& attributes : {kSome, Attributes{}}) {
        for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
            Picture const picture = picture_with(attributes, type);
            EXPECT_EQ(read_back(toolkit::png_encoder(), "a.png", picture), attributes);
            EXPECT_EQ(read_back(toolkit::tiff_encoder(), "a.tif", picture), attributes);
        }
        Picture const halves = picture_with(attributes, SampleType::kHalf);
        EXPECT_EQ(read_back(toolkit::exr_encoder(), "a.exr", halves), attributes);
        EXPECT_EQ(read_back(toolkit::tiff_encoder(), "a.tif", halves), attributes);
    }
}

TEST_F(AttributesInFiles, AreLeftOutByTheOthers)
{
    EXPECT_TRUE(read_back(toolkit::tga_encoder(), "a.tga", picture_with(kSome, SampleType::kUint8)).empty());
}

TEST_F(AttributesInFiles, StayWithAPictureThatIsConverted)
{
    Picture picture = picture_with(kSome, SampleType::kUint16);
    EXPECT_EQ(in_colour(picture, true).attributes, kSome);
    EXPECT_EQ(without_alpha(in_colour(picture, true)).attributes, kSome);
    EXPECT_EQ(in_floats(picture).attributes, kSome);
}

/// A file with a text chunk of any bytes behind its header.
Bytes png_with_text(char const* name, Bytes const& content)
{
    Bytes file = png_bytes(2, PngColour::kGrey, 8, {{1, 2}});
    constexpr std::ptrdiff_t kHeaderEnd = 8 + 25;
    Bytes chunk;
    png_detail::append_chunk(chunk, name, content);
    file.insert(file.begin() + kHeaderEnd, chunk.begin(), chunk.end());
    return file;
}

TEST_F(AttributesInFiles, OfPngAreNoneInTextsThatAreNotOurs)
{
    auto const bytes = [](std::string const& text) { return Bytes(text.begin(), text.end()); };
    std::string const start("Umbrix\0\0\0\0\0", 11);
    std::string const packed("Umbrix\0\1\0\0\0", 11);
    EXPECT_EQ(decoded(png_with_text("iTXt", bytes(start + "umbrix: map\n")), "x.png").picture().attributes,
              (Attributes{{"umbrix", "map"}}));
    for (Bytes const& text : {bytes(packed + "umbrix: map\n"), bytes("Umbrix"), Bytes{}, bytes(start),
                              Bytes(70'000, 'x'), bytes(start + "umbrix: map\n" + std::string(5000, 'x')),
                              bytes("Other" + start + "umbrix: map\n")}) {
        DecodedImage const image = decoded(png_with_text("iTXt", text), "x.png");
        EXPECT_TRUE(image.picture().attributes.empty());
        EXPECT_EQ(bytes_of(image.picture()), (Numbers{1, 2}));
    }
    EXPECT_TRUE(
        decoded(png_with_text("tEXt", bytes("Umbrix\0umbrix: map\n")), "x.png").picture().attributes.empty());
}

} // namespace
} // namespace umbrixlib::test
