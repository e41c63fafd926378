// SPDX-License-Identifier: MIT
/// Photoshop's files.
#include "files/file_builder.h"

#include <cmath>

namespace umbrixlib::test {
namespace {

struct PsdForm {
    unsigned mode = 3;
    unsigned channels = 3;
    unsigned bits = 8;
    unsigned version = 1;
    unsigned compression = 0;
    Bytes colours{};
};

Bytes psd_file(unsigned width, unsigned height, PsdForm const& form, Bytes const& data)
{
    FileBuilder file(ByteOrder::kBig);
    file.text("8BPS").u16({form.version}).zeros(6).u16({form.channels}).u32({height, width});
    file.u16({form.bits, form.mode}).u32({static_cast<unsigned>(form.colours.size())}).u8(form.colours);
    file.u32({3}).u8({1, 2, 3}); // resources
    file.u32(form.version == 2 ? std::vector<unsigned>{0, 2} : std::vector<unsigned>{2}).u8({7, 7});
    return file.u16({form.compression}).u8(data);
}

class Psd : public Decoding {
protected:
    DecodedImage image(unsigned width, unsigned height, PsdForm const& form, Bytes const& data) const
    {
        return decoded(psd_file(width, height, form, data), "x.psd");
    }
    Numbers colours(unsigned width, unsigned height, PsdForm const& form, Bytes const& data) const
    {
        DecodedImage const read = image(width, height, form, data);
        return bytes_of(read.to_picture(read.has_alpha()));
    }
};

TEST_F(Psd, HasChannelsOneBehindTheOther)
{
    EXPECT_EQ(colours(1, 2, {}, {1, 2, 3, 4, 5, 6}), (Numbers{2, 4, 6, 1, 3, 5}));
    EXPECT_EQ(colours(1, 1, {.channels = 4}, {1, 2, 3, 4}), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(colours(1, 1, {.channels = 6}, {1, 2, 3, 4, 5, 6}), (Numbers{1, 2, 3, 4})) << "two more";
    EXPECT_EQ(colours(1, 1, {.version = 2}, {1, 2, 3}), (Numbers{1, 2, 3})) << "PSB";
    EXPECT_EQ(image(2, 1, {.mode = 1, .channels = 1}, {1, 2}).description(), "8-bit grey");
    EXPECT_EQ(colours(1, 1, {.mode = 1, .channels = 2}, {1, 2}), (Numbers{1, 1, 1, 2}));
    EXPECT_EQ(colours(1, 1, {.mode = 8, .channels = 1, .colours = {1, 2}}, {9}), (Numbers{9, 9, 9}))
        << "duotone";
}

TEST_F(Psd, OfMoreBitsKeepsThem)
{
    EXPECT_EQ(shorts_of(image(1, 1, {.bits = 16}, {1, 2, 3, 4, 5, 6}).to_picture(false)),
              (Numbers{0x102, 0x304, 0x506}));
    Bytes const floats = FileBuilder(ByteOrder::kBig).f32({-1.5f});
    Picture const deep = image(1, 1, {.mode = 1, .channels = 1, .bits = 32}, floats).to_picture(false);
    ASSERT_EQ(deep.type, SampleType::kFloat);
    EXPECT_EQ(deep.samples<float>()[0], -1.5f);
}

TEST_F(Psd, OfBitsOrNumbersGivesColours)
{
    EXPECT_EQ(colours(2, 1, {.mode = 0, .channels = 1, .bits = 1}, {0x40}),
              (Numbers{255, 255, 255, 0, 0, 0}));
    Bytes palette(768);
    palette[5] = 1;
    palette[256 + 5] = 2;
    palette[512 + 5] = 3;
    PsdForm const form{.mode = 2, .channels = 1, .colours = palette};
    EXPECT_EQ(colours(2, 1, form, {5, 0}), (Numbers{1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(image(2, 1, form, {5, 0}).description(), "palette");
}

TEST_F(Psd, OfInksIsMadeColours)
{
    EXPECT_EQ(colours(1, 1, {.mode = 4, .channels = 4}, {255, 100, 0, 255}), (Numbers{255, 100, 0}));
    EXPECT_EQ(colours(1, 1, {.mode = 4, .channels = 4}, {255, 100, 0, 51}), (Numbers{51, 20, 0}));
    EXPECT_EQ(colours(1, 1, {.mode = 4, .channels = 5}, {255, 100, 0, 51, 77}), (Numbers{51, 20, 0, 77}));
    EXPECT_EQ(
        shorts_of(image(1, 1, {.mode = 4, .channels = 4, .bits = 16}, {255, 255, 100, 0, 0, 0, 255, 255})
                      .to_picture(false)),
        (Numbers{65535, 25600, 0}));
}

TEST_F(Psd, MayHaveRunLengths)
{
    // Sizes of the rows of all channels, then a run of three, or one and two as they are.
    Bytes const runs{0xfe, 9, 0x80, 0, 5, 1, 6, 7};
    PsdForm const form{.mode = 1, .channels = 1, .compression = 1};
    Bytes const data = FileBuilder(ByteOrder::kBig).u16({3, 5}).u8(runs);
    EXPECT_EQ(colours(3, 2, form, data), (Numbers{5, 5, 5, 6, 6, 6, 7, 7, 7, 9, 9, 9, 9, 9, 9, 9, 9, 9}));
    Bytes const file = psd_file(3, 2, form, data);
    expect_no_piece_is_taken(file, "x.psd");
    expect_no_harm(toolkit::psd_decoder(), file, folder_ / "x.psd");
    Bytes const large = FileBuilder(ByteOrder::kBig).u32({3, 5}).u8(runs);
    EXPECT_EQ(colours(3, 2, {.mode = 1, .channels = 1, .version = 2, .compression = 1}, large).front(), 5);
}

TEST_F(Psd, ThatIsNotTakenIsRefusedByItsName)
{
    EXPECT_EQ(complaint(psd_file(1, 1, {.mode = 9}, {1, 2, 3}), "x.psd"),
              "it is a Photoshop picture of Lab colours");
    EXPECT_EQ(complaint(psd_file(1, 1, {.mode = 7}, {1, 2, 3}), "x.psd"),
              "it is a Photoshop picture of channels without colours");
    EXPECT_EQ(complaint(psd_file(1, 1, {.compression = 2}, {1, 2, 3}), "x.psd"),
              "it is a Photoshop picture with ZIP compression");
}

TEST_F(Psd, ThatIsDamagedIsRefused)
{
    expect_no_piece_is_taken(psd_file(2, 2, {}, Bytes(12, 7)), "x.psd");
    for (PsdForm const& form : {PsdForm{.mode = 5}, PsdForm{.channels = 2}, PsdForm{.bits = 4},
                                PsdForm{.version = 3}, PsdForm{.mode = 2}, PsdForm{.mode = 0, .bits = 8},
                                PsdForm{.compression = 4}, PsdForm{.channels = 57}}) {
        EXPECT_NE(complaint(psd_file(1, 1, form, Bytes(64)), "x.psd").find("damaged"), std::string::npos)
            << form.mode << ' ' << form.bits;
    }
    EXPECT_EQ(complaint(psd_file(300000, 300000, {.version = 2}, {}), "x.psb"),
              "its size of 300000 x 300000 is more than 1048576 texels");
    EXPECT_NE(complaint(psd_file(60000, 60000, {}, {}), "x.psd", 1e10).find("damaged"), std::string::npos);
    EXPECT_NE(complaint(psd_file(60000, 60000, {.compression = 1}, {}), "x.psd", 1e10).find("damaged"),
              std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
