// SPDX-License-Identifier: MIT
/// PFM files.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Pfm : public Decoding {
protected:
    std::vector<float> floats(Bytes const& file) const
    {
        Picture const picture = decoded(file, "x.pfm").to_picture(false);
        EXPECT_EQ(picture.type, SampleType::kFloat);
        auto const samples = picture.samples<float>();
        return {samples.begin(), samples.end()};
    }
};

TEST_F(Pfm, HasTheBottomRowFirstAndItsOrderOfBytesInItsScale)
{
    std::vector<float> const wanted{1.5f, -2, 3e9f, 0.1f, 5, 6};
    EXPECT_EQ(floats(FileBuilder().text("PF\n1 2\n-1.0\n").f32(wanted)), wanted);
    EXPECT_EQ(floats(FileBuilder(ByteOrder::kBig).text("PF\n1 2\n1.0\n").f32(wanted)), wanted);
    EXPECT_EQ(floats(FileBuilder().text("Pf\n1 2\n-1.0\n").f32({7, 8})),
              (std::vector<float>{7, 7, 7, 8, 8, 8}));
    EXPECT_EQ(decoded(FileBuilder().text("Pf 1 1 -1 ").f32({7}), "x.pfm").description(), "float grey");
}

TEST_F(Pfm, ThatIsCutShortOrMakesNoSenseIsRefused)
{
    Bytes const file = FileBuilder().text("Pf\n2 2\n-1.0\n").f32({1, 2, 3, 4});
    expect_no_piece_is_taken(file, "x.pfm");
    for (char const* const text : {"PF 1 1 0 aaaaaaaaaaaa", "PF 1 1 x aaaaaaaaaaaa", "PF -1 1 1 aaaaaaaaaaaa",
                                   "PF 1 1 nan aaaaaaaaaaaa"}) {
        EXPECT_NE(complaint(FileBuilder().text(text), "x.pfm").find("damaged"), std::string::npos) << text;
    }
    EXPECT_EQ(complaint(FileBuilder().text("PF 65535 65535 -1 "), "x.pfm"),
              "its size of 65535 x 65535 is more than 1048576 texels");
    EXPECT_NE(complaint(FileBuilder().text("PF 65535 65535 -1 "), "x.pfm", 1e10).find("damaged"),
              std::string::npos);
    expect_no_harm(toolkit::pfm_decoder(), file, folder_ / "x.pfm");
}

} // namespace
} // namespace umbrixlib::test
