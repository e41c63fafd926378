// SPDX-License-Identifier: MIT
/// FITS pictures.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Fits : public Decoding {
protected:
    static FileBuilder start(int bits, std::vector<int> const& sides,
                             std::vector<std::pair<std::string, std::string>> const& more = {})
    {
        FileBuilder file(ByteOrder::kBig);
        auto const card = [&](std::string line, std::string const& value) {
            line.resize(8, ' ');
            line += value.empty() ? "" : "= " + std::string(20 - value.size(), ' ') + value;
            line.resize(80, ' ');
            file.text(line);
        };
        card("SIMPLE", "T");
        card("BITPIX", std::to_string(bits));
        card("NAXIS", std::to_string(sides.size()));
        for (std::size_t i = 0; i < sides.size(); ++i) {
            card(std::string("NAXIS") + static_cast<char>('1' + i), std::to_string(sides[i]));
        }
        for (auto const& [name, value] : more) {
            card(name, value);
        }
        card("END", "");
        return file.up_to(2880);
    }

    std::vector<float> floats(Bytes const& file) const
    {
        Picture const picture = decoded(file, "x.fits").to_picture(false);
        EXPECT_EQ(picture.type, SampleType::kFloat);
        std::vector<float> result;
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            result.push_back(picture.samples<float>()[3 * i]);
        }
        return result;
    }
};

TEST_F(Fits, HasItsBottomRowFirst)
{
    EXPECT_EQ(bytes_of(decoded(start(8, {1, 2}).u8({7, 9}), "x.fits").to_picture(false)),
              (Numbers{7, 7, 7, 9, 9, 9}));
    EXPECT_EQ(bytes_of(decoded(start(8, {2, 1, 3}).u8({1, 2, 3, 4, 5, 6}), "x.fits").to_picture(false)),
              (Numbers{1, 3, 5, 2, 4, 6}));
}

TEST_F(Fits, KeepsItsDepth)
{
    using Floats = std::vector<float>;
    EXPECT_EQ(shorts_of(decoded(start(16, {2, 1}, {{"BZERO", "32768"}}).u16({0x8000, 0x7fff}), "x.fits")
                            .to_picture(false)),
              (Numbers{0, 0, 0, 65535, 65535, 65535}));
    EXPECT_EQ(floats(start(16, {2, 1}).u16({32767, 0x8001})), (Floats{1, -1}));
    EXPECT_EQ(floats(start(32, {2, 1}).u32({2147483647, 0})), (Floats{1, 0}));
    EXPECT_EQ(floats(start(32, {2, 1}, {{"BZERO", "2147483648.0"}}).u32({2147483647, 0x80000000})),
              (Floats{1, 0}));
    EXPECT_EQ(floats(start(-32, {2, 1}).f32({1.5f, -7})), (Floats{1.5f, -7}));
    EXPECT_EQ(floats(start(-64, {1, 1}).u32({0x3ff80000, 0})), (Floats{1.5f}));
    EXPECT_EQ(floats(start(16, {1, 1}, {{"BSCALE", "0.5"}, {"BZERO", "10"}}).u16({4})), (Floats{12}));
}

TEST_F(Fits, ThatIsDamagedOrNoPictureIsRefused)
{
    Bytes const file = start(8, {2, 2}).u8({1, 2, 3, 4});
    expect_no_piece_is_taken(file, "x.fits");
    expect_no_harm(toolkit::fits_decoder(), file, folder_ / "x.fits");
    EXPECT_EQ(complaint(start(8, {2, 2, 5}).zeros(64), "x.fits"),
              "it is a FITS file without a simple picture");
    EXPECT_EQ(complaint(start(8, {}).zeros(64), "x.fits"), "it is a FITS file without a simple picture");
    EXPECT_NE(complaint(start(9, {1, 1}).zeros(64), "x.fits").find("damaged"), std::string::npos);
    for (char const* const side : {"NAXIS1", "NAXIS2"}) {
        EXPECT_NE(complaint(start(8, {2, 2}, {{side, "1.5"}}).zeros(64), "x.fits").find("damaged"),
                  std::string::npos);
    }
    EXPECT_NE(complaint(start(8, {60000, 60000}).zeros(64), "x.fits", 1e10).find("damaged"),
              std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
