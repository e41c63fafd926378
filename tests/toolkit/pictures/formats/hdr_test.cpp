// SPDX-License-Identifier: MIT
/// Radiance HDR pictures.
#include "files/file_builder.h"

namespace umbrixlib::test {
namespace {

class Hdr : public Decoding {
protected:
    static FileBuilder start(std::string const& size, std::string const& lines = "FORMAT=32-bit_rle_rgbe\n")
    {
        FileBuilder file;
        file.text("#?RADIANCE\n# made by hand\n").text(lines).text("\n").text(size).text("\n");
        return file;
    }

    std::vector<float> floats(Bytes const& file) const
    {
        Picture const picture = decoded(file, "x.hdr").to_picture(false);
        EXPECT_EQ(picture.type, SampleType::kFloat);
        auto const samples = picture.samples<float>();
        return {samples.begin(), samples.end()};
    }

    /// The red of each texel, the bottom row first.
    std::vector<float> reds(Bytes const& file) const
    {
        std::vector<float> const all = floats(file);
        std::vector<float> result;
        for (std::size_t i = 0; i < all.size(); i += 3) {
            result.push_back(all[i]);
        }
        return result;
    }
};

using Floats = std::vector<float>;

TEST_F(Hdr, HasTexelsOfOneExponent)
{
    EXPECT_EQ(floats(start("-Y 1 +X 2").u8({128, 64, 0, 129, 255, 1, 2, 140})),
              (Floats{1, 0.5f, 0, 4080, 16, 32}));
    EXPECT_EQ(floats(start("-Y 1 +X 1").u8({9, 9, 9, 0})), (Floats{0, 0, 0}));
}

TEST_F(Hdr, MayBeginInEachCorner)
{
    Bytes const texels{128, 0, 0, 129, 128, 0, 0, 130, 128, 0, 0, 131, 128, 0, 0, 132}; // 1, 2, 4, 8
    EXPECT_EQ(reds(start("-Y 2 +X 2").u8(texels)), (Floats{4, 8, 1, 2}));
    EXPECT_EQ(reds(start("+Y 2 +X 2").u8(texels)), (Floats{1, 2, 4, 8}));
    EXPECT_EQ(reds(start("-Y 2 -X 2").u8(texels)), (Floats{8, 4, 2, 1}));
    EXPECT_EQ(reds(start("+X 2 -Y 2").u8(texels)), (Floats{2, 8, 1, 4})) << "columns from the left";
    EXPECT_EQ(reds(start("-X 1 +Y 4").u8(texels)), (Floats{1, 2, 4, 8}));
}

TEST_F(Hdr, MayHaveRunLengthsOfTheNewerKind)
{
    // Eight texels: red is a run, green a run and a stretch, blue is 0, one exponent.
    Bytes const line{2, 2, 0, 8, 136, 128, 134, 0, 2, 64, 32, 136, 0, 136, 129};
    Bytes const file = start("-Y 1 +X 8").u8(line);
    Floats const wanted{1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0.5f, 0, 1, 0.25f, 0};
    EXPECT_EQ(floats(file), wanted);
    expect_no_piece_is_taken(file, "x.hdr");
    expect_no_harm(toolkit::hdr_decoder(), file, folder_ / "x.hdr");
    EXPECT_NE(complaint(start("-Y 1 +X 9").u8(line), "x.hdr").find("damaged"), std::string::npos);
    EXPECT_NE(complaint(start("-Y 1 +X 8").u8({2, 2, 0, 8, 137, 128}), "x.hdr").find("damaged"),
              std::string::npos);
}

TEST_F(Hdr, MayHaveRunLengthsOfTheOlderKind)
{
    Bytes const file = start("-Y 1 +X 5").u8({128, 0, 0, 129, 1, 1, 1, 3, 128, 0, 0, 130});
    EXPECT_EQ(reds(file), (Floats{1, 1, 1, 1, 2}));
    expect_no_piece_is_taken(file, "x.hdr");
    EXPECT_NE(complaint(start("-Y 1 +X 3").u8({1, 1, 1, 3}), "x.hdr").find("damaged"), std::string::npos);
    EXPECT_NE(complaint(start("-Y 1 +X 3").u8({9, 9, 9, 9, 1, 1, 1, 3}), "x.hdr").find("damaged"),
              std::string::npos);
}

TEST_F(Hdr, SaysWhatItLeavesAlone)
{
    write_file(folder_ / "n.hdr", start("-Y 1 +X 1", "EXPOSURE=2.5\nEXPOSURE=2\n").u8({9, 1, 1, 129}));
    toolkit::SourceFile source(folder_ / "n.hdr", "input", kMostTexels);
    EXPECT_EQ(toolkit::hdr_decoder().decode(source).notes,
              (std::vector<std::string>{"its exposure is left alone: values count as they are"}));
    EXPECT_EQ(complaint(start("-Y 1 +X 1", "FORMAT=32-bit_rle_xyze\n").zeros(4), "x.hdr"),
              "it is a Radiance picture of XYZ colours");
}

TEST_F(Hdr, WithASizeThatMakesNoSenseIsRefused)
{
    for (char const* const size :
         {"-Y 1", "-Y 1 +Y 1", "Y 1 X 1", "-Y 1 +X 1 ", "-Y a +X 1", "", "-Y 1 +Z 1"}) {
        EXPECT_NE(complaint(start(size).zeros(64), "x.hdr").find("damaged"), std::string::npos) << size;
    }
    EXPECT_NE(complaint(start("-Y -1 +X 1").zeros(64), "x.hdr"), "");
    EXPECT_EQ(complaint(start("-Y 65535 +X 65535"), "x.hdr"),
              "its size of 65535 x 65535 is more than 1048576 texels");
    EXPECT_NE(complaint(start("-Y 65535 +X 65535"), "x.hdr", 1e10).find("damaged"), std::string::npos);
}

} // namespace
} // namespace umbrixlib::test
