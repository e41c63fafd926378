// SPDX-License-Identifier: MIT
/// DDS files, compressed and not.
#include "files/file_builder.h"

#include <map>

namespace umbrixlib::test {
namespace {

struct DdsForm {
    unsigned flags = 0x40; ///< Of the pixel format: RGB.
    std::string code{};
    unsigned bits = 0;
    std::vector<unsigned> masks{};
    unsigned dxgi = 0; ///< Not 0: there is a DX10 header.
    unsigned what = 0;
    unsigned depth = 0;
    unsigned pitch = 0;
    unsigned array = 1;
};

Bytes dds_file(unsigned width, unsigned height, DdsForm const& form, Bytes const& data)
{
    FileBuilder file;
    bool const has_code = !form.code.empty() || form.dxgi != 0;
    file.text("DDS ").u32({124, 0x1007 | (form.pitch != 0 ? 8U : 0U) | (form.depth != 0 ? 0x800000U : 0U)});
    file.u32({height, width, form.pitch, form.depth, 1}).up_to(76);
    file.u32({32, has_code ? 4 : form.flags}).text(form.dxgi != 0 ? "DX10" : form.code).up_to(88);
    file.u32({form.bits}).u32(form.masks).up_to(108).u32({0x1000, form.what}).up_to(128);
    if (form.dxgi != 0) {
        file.u32({form.dxgi, 3, form.what != 0 ? 4U : 0U, form.array, 0});
    }
    return file.u8(data);
}

class Dds : public Decoding {
protected:
    DecodedImage image(unsigned width, unsigned height, DdsForm const& form, Bytes const& data) const
    {
        return decoded(dds_file(width, height, form, data), "x.dds");
    }
    Numbers colours(unsigned width, unsigned height, DdsForm const& form, Bytes const& data) const
    {
        DecodedImage const read = image(width, height, form, data);
        return bytes_of(read.to_picture(read.has_alpha()));
    }
    std::vector<std::string> notes_of(Bytes const& file) const
    {
        write_file(folder_ / "n.dds", file);
        toolkit::SourceFile source(folder_ / "n.dds", "input", kMostTexels);
        return toolkit::dds_decoder().decode(source).notes;
    }
    /// Texel (x, 0) of a block of 4 x 4.
    Numbers of_block(DdsForm const& form, Bytes const& block) const
    {
        Numbers const all = colours(4, 4, form, block);
        return {all.end() - static_cast<std::ptrdiff_t>(all.size() / 4), all.end()};
    }
};

TEST_F(Dds, WithMasksGivesTheTopRowLast)
{
    EXPECT_EQ(colours(1, 2, {.bits = 24, .masks = {0xff0000, 0xff00, 0xff}}, {3, 2, 1, 6, 5, 4}),
              (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(1, 1, {.flags = 0x41, .bits = 32, .masks = {0xff0000, 0xff00, 0xff, 0xff000000}},
                      {3, 2, 1, 9}),
              (Numbers{1, 2, 3, 9}));
    EXPECT_EQ(colours(1, 1, {.bits = 32, .masks = {0xff, 0xff00, 0xff0000}}, {3, 2, 1, 9}),
              (Numbers{3, 2, 1}));
    EXPECT_EQ(colours(1, 1, {.bits = 16, .masks = {0xf800, 0x7e0, 0x1f}}, {0xff, 0xff}),
              (Numbers{255, 255, 255}));
    EXPECT_EQ(colours(1, 1, {.flags = 0x41, .bits = 16, .masks = {0xf00, 0xf0, 0xf, 0xf000}}, {0x12, 0xf3}),
              (Numbers{51, 17, 34, 255}));
}

TEST_F(Dds, OfOneChannelIsGrey)
{
    EXPECT_EQ(image(1, 1, {.flags = 0x20000, .bits = 8, .masks = {0xff}}, {7}).description(), "8-bit grey");
    EXPECT_EQ(
        shorts_of(image(1, 1, {.flags = 0x20000, .bits = 16, .masks = {0xffff}}, {7, 1}).to_picture(false)),
        (Numbers{263, 263, 263}));
    EXPECT_EQ(colours(1, 1, {.flags = 0x20001, .bits = 16, .masks = {0xff, 0, 0, 0xff00}}, {7, 9}),
              (Numbers{7, 7, 7, 9}));
    EXPECT_EQ(colours(1, 1, {.flags = 2, .bits = 8, .masks = {0, 0, 0, 0xff}}, {9}), (Numbers{9, 9, 9}));
}

TEST_F(Dds, MayHavePaddedRows)
{
    DdsForm const form{.bits = 24, .masks = {0xff0000, 0xff00, 0xff}, .pitch = 4};
    EXPECT_EQ(colours(1, 2, form, {3, 2, 1, 0, 6, 5, 4, 0}), (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(1, 2, form, {3, 2, 1, 6, 5, 4}), (Numbers{4, 5, 6, 1, 2, 3}))
        << "a pitch that is wrong";
}

TEST_F(Dds, WithDx10HeaderIsToldByItsNumber)
{
    for (auto const& [number, wanted] : std::map<unsigned, Numbers>{{28, {1, 2, 3, 4}},
                                                                    {29, {1, 2, 3, 4}},
                                                                    {87, {3, 2, 1, 4}},
                                                                    {91, {3, 2, 1, 4}},
                                                                    {88, {3, 2, 1}}}) {
        EXPECT_EQ(colours(1, 1, {.dxgi = number}, {1, 2, 3, 4}), wanted) << number;
    }
    EXPECT_EQ(colours(1, 1, {.dxgi = 61}, {9}), (Numbers{9, 9, 9}));
    EXPECT_EQ(shorts_of(image(1, 1, {.dxgi = 56}, {1, 2}).to_picture(false)), (Numbers{513, 513, 513}));
    EXPECT_EQ(shorts_of(image(1, 1, {.dxgi = 11}, {1, 0, 2, 0, 3, 0, 4, 1}).to_picture(true)),
              (Numbers{1, 2, 3, 260}));
    EXPECT_EQ(colours(1, 1, {.dxgi = 85}, {0x00, 0xf8}), (Numbers{255, 0, 0}));
    EXPECT_EQ(shorts_of(image(1, 1, {.dxgi = 24}, {0xff, 0x03, 0, 0xc0}).to_picture(true)),
              (Numbers{65535, 0, 0, 65535}));
}

TEST_F(Dds, WithoutATypeIsThatOfThePlainOne)
{
    Bytes block;
    for (unsigned i = 0; i < 16; ++i) {
        block.push_back(static_cast<std::uint8_t>(17 * i + 3));
    }
    for (auto const& [untyped, typed] : std::map<unsigned, unsigned>{
             {70, 71}, {73, 74}, {76, 77}, {79, 80}, {82, 83}, {72, 71}, {75, 74}, {78, 77}}) {
        EXPECT_EQ(of_block({.dxgi = untyped}, block), of_block({.dxgi = typed}, block)) << untyped;
    }
    for (auto const& [untyped, typed] :
         std::map<unsigned, unsigned>{{27, 28}, {90, 87}, {92, 88}, {93, 88}, {65, 61}}) {
        EXPECT_EQ(colours(1, 1, {.dxgi = untyped}, {1, 2, 3, 4}),
                  colours(1, 1, {.dxgi = typed}, {1, 2, 3, 4}))
            << untyped;
    }
}

TEST_F(Dds, OfFewBitsSpreadsThemOverAByte)
{
    EXPECT_EQ(colours(1, 1, {.dxgi = 86}, {0x1f, 0xc0}), (Numbers{132, 0, 255, 255}));
    EXPECT_EQ(colours(1, 1, {.dxgi = 86}, {0xe0, 0x03}), (Numbers{0, 255, 0, 0}));
    EXPECT_EQ(colours(1, 1, {.dxgi = 115}, {0x12, 0xf3}), (Numbers{51, 17, 34, 255}));
}

TEST_F(Dds, OfHalvesAndFloatsIsToldByNumbersOfBothKinds)
{
    Bytes const halves{0, 0x38, 0, 0xbc, 0, 0x3c, 0, 0}; // 0.5, -1, 1, 0
    Bytes const floats = FileBuilder().f32({0.5f, -1.0f, 1.0f, 0.0f});
    struct Row {
        std::uint8_t code;
        unsigned dxgi;
        bool half;
        int channels;
    };
    for (Row const& row : {Row{111, 54, true, 1}, Row{112, 34, true, 2}, Row{113, 10, true, 4},
                           Row{114, 41, false, 1}, Row{115, 16, false, 2}, Row{116, 2, false, 4}}) {
        Bytes const& data = row.half ? halves : floats;
        for (DdsForm const& form :
             {DdsForm{.code = {static_cast<char>(row.code), 0, 0, 0}}, DdsForm{.dxgi = row.dxgi}}) {
            DecodedImage const read = image(1, 1, form, data);
            Picture const picture = toolkit::in_floats(read.to_picture(row.channels == 4));
            auto const samples = picture.samples<float>();
            ASSERT_EQ(samples.size(), row.channels == 4 ? 4U : 3U) << row.dxgi;
            EXPECT_EQ(samples[0], 0.5f) << row.dxgi;
            EXPECT_EQ(samples[1], row.channels == 1 ? 0.5f : -1.0f) << row.dxgi;
            EXPECT_EQ(samples[2], row.channels == 1 ? 0.5f : row.channels == 2 ? 0.0f : 1.0f) << row.dxgi;
        }
    }
    EXPECT_EQ(shorts_of(image(1, 1, {.code = {36, 0, 0, 0}}, {1, 0, 2, 0, 3, 0, 4, 1}).to_picture(true)),
              (Numbers{1, 2, 3, 260}));
}

TEST_F(Dds, OfHalvesAndFloatsKeepsThem)
{
    Picture const halves = image(1, 1, {.dxgi = 10}, {0, 0x3c, 0, 0x40, 0, 0xbc, 0, 0}).to_picture(true);
    ASSERT_EQ(halves.type, SampleType::kHalf);
    EXPECT_EQ(toolkit::in_floats(halves).samples<float>()[1], 2.0f);
    EXPECT_EQ(toolkit::in_floats(halves).samples<float>()[2], -1.0f);
    Picture const grey = image(1, 1, {.dxgi = 41}, FileBuilder().f32({-2.5f})).to_picture(false);
    ASSERT_EQ(grey.type, SampleType::kFloat);
    EXPECT_EQ(grey.samples<float>()[0], -2.5f);
    Picture const old =
        image(1, 1, {.code = {116, 0, 0, 0}}, FileBuilder().f32({1, 2, 3, 4})).to_picture(true);
    EXPECT_EQ(old.samples<float>()[3], 4.0f);
    EXPECT_EQ(image(1, 1, {.dxgi = 54}, {0, 0x3c}).description(), "half-float grey");
}

TEST_F(Dds, OfTwoChannelsIsANormalMapWithoutItsBlue)
{
    // x = 0.6, y = 0: z = 0.8.
    EXPECT_EQ(colours(1, 1, {.dxgi = 49}, {204, 128}), (Numbers{204, 128, 229}));
    EXPECT_EQ(colours(1, 1, {.bits = 16, .masks = {0xff, 0xff00, 0}}, {204, 128}), (Numbers{204, 128, 229}));
    Numbers const deep = shorts_of(image(1, 1, {.dxgi = 35}, {0, 0xff, 0, 0xff}).to_picture(false));
    EXPECT_EQ(deep, (Numbers{0xff00, 0xff00, 32768})) << "longer than 1";
    EXPECT_EQ(notes_of(dds_file(1, 1, {.dxgi = 49}, {204, 128})),
              (std::vector<std::string>{"its blue is made from red and green, as a normal has it"}));
    // BC5: red 204, green 128 and 0.
    Bytes const block{204, 204, 0, 0, 0, 0, 0, 0, 128, 0, 0x08, 0, 0, 0, 0, 0};
    for (DdsForm const& form : {DdsForm{.code = "BC5U"}, DdsForm{.dxgi = 83}}) {
        Numbers const row = of_block(form, block);
        EXPECT_EQ((Numbers{row.begin(), row.begin() + 6}), (Numbers{204, 128, 229, 204, 0, 128}));
    }
    Numbers const row = of_block({.code = "ATI2"}, block);
    EXPECT_EQ((Numbers{row.begin(), row.begin() + 6}), (Numbers{128, 204, 229, 0, 204, 128}))
        << "green is first in ATI's own form";
}

TEST_F(Dds, OfBc1HasTheColoursBetweenTwo)
{
    // Pure red above pure blue: two colours between them.
    Numbers const four = of_block({.code = "DXT1"}, {0, 0xf8, 0x1f, 0, 0xe4, 0, 0, 0});
    EXPECT_EQ(four, (Numbers{255, 0, 0, 0, 0, 255, 170, 0, 85, 85, 0, 170}));
    // The other way about there is one between them, and nothing.
    Numbers const three = of_block({.dxgi = 71}, {0x1f, 0, 0, 0xf8, 0xe4, 0, 0, 0});
    EXPECT_EQ(three, (Numbers{0, 0, 255, 255, 255, 0, 0, 255, 128, 0, 128, 255, 0, 0, 0, 0}));
    EXPECT_FALSE(image(4, 4, {.code = "DXT1"}, {0, 0xf8, 0x1f, 0, 0xe4, 0, 0, 0}).has_alpha());
}

TEST_F(Dds, OfBc2AndBc3HasAnAlpha)
{
    Bytes const colours{0xff, 0xff, 0, 0, 0, 0, 0, 0};
    Bytes bc2{0x10, 0xf8, 0, 0, 0, 0, 0, 0};
    bc2.insert(bc2.end(), colours.begin(), colours.end());
    Numbers const alphas{255, 255, 255, 0, 255, 255, 255, 17, 255, 255, 255, 136, 255, 255, 255, 255};
    EXPECT_EQ(of_block({.code = "DXT3"}, bc2), alphas);
    EXPECT_EQ(of_block({.dxgi = 74}, bc2), alphas);
    // 255 and 0, then the first step between them (6/7) and the last (1/7).
    Bytes bc3{255, 0, 0x88, 0x0e, 0, 0, 0, 0};
    bc3.insert(bc3.end(), colours.begin(), colours.end());
    Numbers const steps{255, 255, 255, 255, 255, 255, 255, 0, 255, 255, 255, 219, 255, 255, 255, 36};
    EXPECT_EQ(of_block({.code = "DXT5"}, bc3), steps);
    EXPECT_EQ(of_block({.dxgi = 77}, bc3), steps);
    EXPECT_EQ(of_block({.code = "RXGB"}, bc3),
              (Numbers{255, 255, 255, 0, 255, 255, 219, 255, 255, 36, 255, 255}));
}

TEST_F(Dds, OfDxt2AndDxt4WasMultipliedByItsAlpha)
{
    // Grey 127 or so under an alpha of 136 of 255.
    Bytes block(8, 0x88);
    block.insert(block.end(), {0xef, 0x7b, 0, 0, 0, 0, 0, 0});
    Numbers const row = of_block({.code = "DXT2"}, block);
    EXPECT_EQ((Numbers{row.begin(), row.begin() + 4}), (Numbers{231, 234, 231, 136}));
    EXPECT_EQ(notes_of(dds_file(4, 4, {.code = "DXT2"}, block)).size(), 1U);
}

TEST_F(Dds, OfBc4IsGreyAndMayHaveASign)
{
    // 100 below 200: four between them, then 0 and 255.
    Bytes const block{100, 200, 0x88, 0x0e, 0, 0, 0, 0};
    for (DdsForm const& form : {DdsForm{.code = "ATI1"}, DdsForm{.code = "BC4U"}, DdsForm{.dxgi = 80}}) {
        EXPECT_EQ(of_block(form, block),
                  (Numbers{100, 100, 100, 200, 200, 200, 120, 120, 120, 255, 255, 255}));
    }
    Picture const with_sign =
        image(4, 4, {.dxgi = 81}, {127, 0x80, 0x88, 0x0e, 0, 0, 0, 0}).to_picture(false);
    ASSERT_EQ(with_sign.type, SampleType::kFloat);
    auto const top = with_sign.samples<float>().last(12);
    EXPECT_EQ(top[0], 1.0f);
    EXPECT_EQ(top[3], -1.0f);
    EXPECT_NEAR(static_cast<double>(top[6]), 5.0 / 7.0, 1e-6);
    Picture const normals =
        image(4, 4, {.code = "BC5S"}, {0, 0, 0, 0, 0, 0, 0, 0, 127, 0, 0, 0, 0, 0, 0, 0}).to_picture(false);
    EXPECT_EQ(normals.samples<float>()[0], 0.0f);
    EXPECT_EQ(normals.samples<float>()[1], 1.0f);
    EXPECT_EQ(normals.samples<float>()[2], 0.0f);
}

TEST_F(Dds, MayHaveSidesThatAreNoMultiplesOfFour)
{
    Bytes const blocks{10, 10, 0, 0, 0, 0, 0, 0, 20, 20, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(colours(5, 1, {.dxgi = 80}, blocks),
              (Numbers{10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 20, 20, 20}));
}

TEST_F(Dds, OfSeveralPicturesGivesTheFirst)
{
    using Notes = std::vector<std::string>;
    DdsForm form{.flags = 0x20000, .bits = 8, .masks = {0xff}, .what = 0x200};
    EXPECT_EQ(colours(1, 1, form, {1, 2, 3, 4, 5, 6}), (Numbers{1, 1, 1}));
    EXPECT_EQ(notes_of(dds_file(1, 1, form, {1, 2, 3, 4, 5, 6})),
              (Notes{"the first face of its cube is taken"}));
    form.what = 0x200000;
    form.depth = 2;
    EXPECT_EQ(notes_of(dds_file(1, 1, form, {1, 2})), (Notes{"the first of its 2 slices is taken"}));
    EXPECT_EQ(notes_of(dds_file(1, 1, {.dxgi = 61, .what = 0x200}, {1, 2, 3, 4, 5, 6})),
              (Notes{"the first face of its cube is taken"}));
    EXPECT_EQ(notes_of(dds_file(1, 1, {.dxgi = 61, .array = 3}, {1, 2, 3})),
              (Notes{"the first of its 3 pictures is taken"}));
}

TEST_F(Dds, ThatIsNotTakenIsRefusedByItsName)
{
    Bytes const data(64, 1);
    EXPECT_EQ(complaint(dds_file(4, 4, {.dxgi = 95}, data), "x.dds"),
              "it is a DDS file with BC6H compression");
    EXPECT_EQ(complaint(dds_file(4, 4, {.dxgi = 98}, data), "x.dds"),
              "it is a DDS file with BC7 compression");
    EXPECT_EQ(complaint(dds_file(4, 4, {.dxgi = 1}, data), "x.dds"), "it is a DDS file of the DXGI format 1");
    EXPECT_EQ(complaint(dds_file(4, 4, {.code = "UYVY"}, data), "x.dds"),
              "it is a DDS file of the form UYVY");
    EXPECT_EQ(complaint(dds_file(4, 4, {.flags = 0x20, .bits = 8}, data), "x.dds"),
              "it is a DDS file of a palette");
    EXPECT_EQ(
        complaint(dds_file(4, 4, {.flags = 0x41, .bits = 24, .masks = {0xff, 0xff00, 0, 0xff0000}}, data),
                  "x.dds"),
        "it is a DDS file of red, green and alpha");
}

TEST_F(Dds, ThatIsCutShortIsRefused)
{
    expect_no_piece_is_taken(dds_file(2, 2, {.bits = 24, .masks = {0xff0000, 0xff00, 0xff}}, Bytes(12, 7)),
                             "x.dds");
    expect_no_piece_is_taken(dds_file(5, 1, {.code = "DXT1"}, Bytes(16, 7)), "x.dds");
    expect_no_piece_is_taken(dds_file(1, 1, {.dxgi = 10}, Bytes(8, 7)), "x.dds");
    Bytes const large = dds_file(65535, 65535, {.dxgi = 77}, Bytes(64, 7));
    EXPECT_EQ(complaint(large, "x.dds"), "its size of 65535 x 65535 is more than 1048576 texels");
    EXPECT_NE(complaint(large, "x.dds", 1e10).find("damaged"), std::string::npos);
}

TEST_F(Dds, ThatIsDamagedDoesNoHarm)
{
    for (Bytes const& file :
         {dds_file(5, 4, {.code = "DXT5"}, Bytes(32, 7)),
          dds_file(2, 2, {.flags = 0x41, .bits = 16, .masks = {0xf00, 0xf0, 0xf, 0xf000}}, Bytes(8, 7)),
          dds_file(4, 4, {.dxgi = 84}, Bytes(16, 99))}) {
        expect_no_harm(toolkit::dds_decoder(), file, folder_ / "x.dds");
    }
}

} // namespace
} // namespace umbrixlib::test
