// SPDX-License-Identifier: MIT
/// PCX pictures and DCX books of them.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

struct PcxForm {
    std::uint8_t version = 5;
    std::uint8_t encoding = 1;
    std::uint8_t bits = 8;
    std::uint8_t planes = 3;
    Bytes palette{};
    unsigned palette_kind = 1;
};

Bytes pcx_file(unsigned width, unsigned height, unsigned row, PcxForm const& form, Bytes const& data)
{
    FileBuilder file;
    file.u8({10, form.version, form.encoding, form.bits}).u16({2, 1, width + 1, height, 72, 72});
    file.u8(form.palette).up_to(65).u8({form.planes}).u16({row, form.palette_kind});
    return file.up_to(128).u8(data);
}

class Pcx : public Decoding {
protected:
    Numbers colours(unsigned width, unsigned height, unsigned row, PcxForm const& form,
                    Bytes const& data) const
    {
        DecodedImage const read = decoded(pcx_file(width, height, row, form, data), "x.pcx");
        return bytes_of(read.to_picture(read.has_alpha()));
    }
};

TEST_F(Pcx, OfColoursHasAPlaneAChannel)
{
    EXPECT_EQ(colours(1, 2, 2, {}, {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0}), (Numbers{4, 5, 6, 1, 2, 3}));
    EXPECT_EQ(colours(1, 1, 1, {.planes = 4}, {1, 2, 3, 4}), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(colours(2, 1, 2, {.encoding = 0}, {200, 201, 3, 4, 5, 6}), (Numbers{200, 3, 5, 201, 4, 6}));
    EXPECT_EQ(colours(2, 1, 2, {}, {0xc1, 200, 9, 0xc4, 7}), (Numbers{200, 7, 7, 9, 7, 7}));
}

TEST_F(Pcx, OfFewColoursHasItsPaletteInTheHeader)
{
    Bytes const palette{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(colours(2, 1, 2, {.bits = 4, .planes = 1, .palette = palette}, {0x13, 0}),
              (Numbers{4, 5, 6, 10, 11, 12}));
    EXPECT_EQ(colours(2, 1, 2, {.bits = 2, .planes = 1, .palette = palette}, {0x90, 0}),
              (Numbers{7, 8, 9, 4, 5, 6}));
    EXPECT_EQ(colours(2, 1, 2, {.bits = 1, .planes = 2, .palette = palette}, {0x80, 0, 0x80, 0}),
              (Numbers{10, 11, 12, 1, 2, 3}));
    EXPECT_EQ(colours(2, 1, 2, {.bits = 1, .planes = 1}, {0x40, 0}), (Numbers{0, 0, 0, 255, 255, 255}));
}

TEST_F(Pcx, Of256ColoursHasThemAtItsEnd)
{
    Bytes data{0, 1, 12};
    for (int i = 0; i < 256; ++i) {
        data.insert(data.end(), {static_cast<std::uint8_t>(i), 7, static_cast<std::uint8_t>(255 - i)});
    }
    EXPECT_EQ(colours(2, 1, 2, {.planes = 1}, data), (Numbers{0, 7, 255, 1, 7, 254}));
    Bytes const file = pcx_file(2, 1, 2, {.planes = 1}, data);
    expect_no_piece_is_taken(file, "x.pcx");
    expect_no_harm(toolkit::pcx_decoder(), file, folder_ / "x.pcx");
    data.resize(2);
    EXPECT_EQ(decoded(pcx_file(2, 1, 2, {.planes = 1, .palette_kind = 2}, data), "x.pcx").description(),
              "8-bit grey");
}

TEST_F(Pcx, OfABookIsItsFirstPage)
{
    FileBuilder file;
    Bytes const page = pcx_file(1, 1, 1, {}, {1, 2, 3});
    file.u32({0x3ade68b1, 16, 147, 0}).u8(page).u8(page);
    EXPECT_EQ(bytes_of(decoded(file, "x.dcx").to_picture(false)), (Numbers{1, 2, 3}));
    expect_no_harm(toolkit::pcx_decoder(), file, folder_ / "x.dcx");
}

TEST_F(Pcx, ThatIsDamagedIsRefused)
{
    expect_no_piece_is_taken(pcx_file(1, 2, 2, {}, {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0}), "x.pcx");
    for (PcxForm const& form :
         {PcxForm{.encoding = 2}, PcxForm{.bits = 3}, PcxForm{.planes = 2}, PcxForm{.bits = 4}}) {
        EXPECT_NE(complaint(pcx_file(1, 1, 2, form, Bytes(64)), "x.pcx").find("damaged"), std::string::npos);
    }
    EXPECT_NE(complaint(pcx_file(3, 1, 2, {}, Bytes(64)), "x.pcx").find("damaged"), std::string::npos)
        << "row";
    EXPECT_NE(complaint(pcx_file(60000, 60000, 60000, {}, Bytes(64)), "x.pcx", 1e10).find("damaged"),
              std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
