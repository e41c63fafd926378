// SPDX-License-Identifier: MIT
/// OpenEXR files of each kind, compared with the numbers that they were made from.
#include "files/exr_files.h"
#include "files/reading.h"

namespace umbrixlib::test {
namespace {

constexpr exr_pixel_type_t kHalves = EXR_PIXEL_HALF;
constexpr exr_pixel_type_t kFloats = EXR_PIXEL_FLOAT;
constexpr exr_pixel_type_t kWhole = EXR_PIXEL_UINT;

class Exr : public Reading {
protected:
    Exr() : Reading(toolkit::exr_decoder(), "x.exr") {}

    DecodedFile taken(ExrKind const& kind, ExrNumbers const& numbers) const
    {
        DecodedFile result = read(exr_file(kind, numbers));
        EXPECT_EQ(result.format, "OpenEXR");
        return result;
    }

    /// One texel, whose channels are 1, 2 and so on in the order given.
    DecodedFile texel_of(std::vector<ExrChannelKind> const& channels) const
    {
        return read(
            exr_file(one_texel(channels), ExrNumbers{0x3c00, 0x4000, 0x4200, 0x4400, 0x4500, 0x4600}));
    }

    std::string refusal_of(std::vector<ExrChannelKind> const& channels) const
    {
        return refusal(exr_file(one_texel(channels), ExrNumbers(channels.size())));
    }

    static ExrKind one_texel(std::vector<ExrChannelKind> const& channels)
    {
        return {.width = 1, .height = 1, .channels = channels};
    }
};

/// Positive and negative numbers of a channel's type, without NaN, which nothing equals.
std::uint32_t number_of(exr_pixel_type_t type, std::uint32_t bits)
{
    switch (type) {
    case kHalves:
        return bits & 0xbfffU;
    case kFloats:
        return bits & 0xbfffffffU;
    default:
        return bits;
    }
}

double value_of(exr_pixel_type_t type, std::uint32_t number)
{
    switch (type) {
    case kHalves:
        return static_cast<double>(toolkit::to_float({static_cast<std::uint16_t>(number)}));
    case kFloats:
        return static_cast<double>(std::bit_cast<float>(number));
    default:
        return static_cast<double>(static_cast<float>(number / 4294967295.0));
    }
}

ExrNumbers numbers_for(ExrKind const& kind)
{
    std::mt19937 random(3);
    ExrNumbers numbers;
    for (int i = 0; i < kind.width * kind.height; ++i) {
        for (ExrChannelKind const& channel : kind.channels) {
            numbers.push_back(number_of(channel.type, static_cast<std::uint32_t>(random())));
        }
    }
    return numbers;
}

/// Of channels A, B, G, R in the file.
Values values_from_abgr(ExrKind const& kind, ExrNumbers const& numbers)
{
    Values values;
    for (std::size_t i = 0; i < numbers.size(); i += 4) {
        for (std::size_t const c : {3U, 2U, 1U, 0U}) {
            values.push_back(value_of(kind.channels[c].type, numbers[i + c]));
        }
    }
    return values;
}

TEST_F(Exr, OfEachTypeCompressionAndLayoutIsTheSame)
{
    for (exr_pixel_type_t const type : {kHalves, kFloats, kWhole}) {
        for (exr_compression_t const compression :
             {EXR_COMPRESSION_NONE, EXR_COMPRESSION_RLE, EXR_COMPRESSION_ZIPS, EXR_COMPRESSION_ZIP,
              EXR_COMPRESSION_PIZ}) {
            for (int const tile : {0, 16}) {
                for (bool const last_row_first : {false, true}) {
                    ExrKind const kind{.width = 37,
                                       .height = 41,
                                       .channels = {{"A", type}, {"B", type}, {"G", type}, {"R", type}},
                                       .compression = compression,
                                       .tile = tile,
                                       .last_row_first = last_row_first && tile == 0};
                    ExrNumbers const numbers = numbers_for(kind);
                    Picture const picture = taken(kind, numbers).picture;
                    EXPECT_EQ(picture.type, type == kHalves ? SampleType::kHalf : SampleType::kFloat);
                    EXPECT_EQ(values_of(picture), values_from_abgr(kind, numbers))
                        << "type " << type << ", compression " << compression << ", tile " << tile;
                }
            }
        }
    }
}

TEST_F(Exr, OfPxr24LosesTheLowBitsOfFloatsAndNoOther)
{
    for (exr_pixel_type_t const type : {kHalves, kFloats}) {
        ExrKind const kind{.width = 19,
                           .height = 35,
                           .channels = {{"A", type}, {"B", type}, {"G", type}, {"R", type}},
                           .compression = EXR_COMPRESSION_PXR24};
        ExrNumbers const numbers = numbers_for(kind);
        Values const values = values_of(taken(kind, numbers).picture);
        Values const expected = values_from_abgr(kind, numbers);
        ASSERT_EQ(values.size(), expected.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_NEAR(values[i], expected[i],
                        type == kHalves ? 0.0 : 1e-37 + std::abs(expected[i]) / 60000);
        }
    }
}

TEST_F(Exr, OfB44IsNear)
{
    for (exr_compression_t const compression : {EXR_COMPRESSION_B44, EXR_COMPRESSION_B44A}) {
        ExrKind const kind{.width = 22, .height = 33, .compression = compression};
        ExrNumbers numbers;
        for (std::uint32_t i = 0; i < 22 * 33; ++i) {
            numbers.push_back(0x3800 + i % 22 * 2 + i / 22 * 3); // 0.5 and a little more
        }
        Values const values = values_of(taken(kind, numbers).picture);
        ASSERT_EQ(values.size(), numbers.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_NEAR(values[i], value_of(kHalves, numbers[i]), 0.01);
        }
    }
}

TEST_F(Exr, OfMixedTypesBecomesFloats)
{
    for (exr_compression_t const compression : {EXR_COMPRESSION_NONE, EXR_COMPRESSION_ZIP}) {
        ExrKind const kind{.width = 20,
                           .height = 18,
                           .channels = {{"A", kFloats}, {"B", kHalves}, {"G", kWhole}, {"R", kHalves}},
                           .compression = compression};
        ExrNumbers const numbers = numbers_for(kind);
        Picture const picture = taken(kind, numbers).picture;
        EXPECT_EQ(picture.type, SampleType::kFloat);
        EXPECT_EQ(values_of(picture), values_from_abgr(kind, numbers));
    }
}

TEST_F(Exr, HasItsChannelsByName)
{
    EXPECT_EQ(values_of(texel_of({{"B"}, {"G"}, {"R"}}).picture), (Values{3, 2, 1}));
    EXPECT_EQ(values_of(texel_of({{"A"}, {"Y"}}).picture), (Values{2, 1}));
    EXPECT_EQ(values_of(texel_of({{"height"}}).picture), (Values{1}));
    EXPECT_EQ(values_of(texel_of({{"R"}}).picture), (Values{1}));
    EXPECT_EQ(values_of(texel_of({{"A"}, {"Z"}}).picture), (Values{2, 1}));
    EXPECT_EQ(values_of(texel_of({{"X"}, {"Y"}, {"Z"}}).picture), (Values{1, 2, 3}));
    EXPECT_EQ(values_of(texel_of({{"b"}, {"g"}, {"r"}}).picture), (Values{3, 2, 1}));
    EXPECT_EQ(texel_of({{"Y"}}).notes, Notes{});
}

TEST_F(Exr, OfFurtherChannelsLeavesThemOut)
{
    DecodedFile const depth = texel_of({{"B"}, {"G"}, {"R"}, {"Z", kFloats}});
    EXPECT_EQ(values_of(depth.picture), (Values{3, 2, 1}));
    EXPECT_EQ(depth.picture.type, SampleType::kHalf);
    EXPECT_EQ(depth.notes, (Notes{"1 of its 4 channels are left out"}));
    DecodedFile const layer = texel_of({{"Depth.Z"}, {"Bump.N.X"}, {"Bump.N.Y"}, {"Bump.N.Z"}});
    EXPECT_EQ(layer.picture.channels, 3);
    EXPECT_EQ(layer.notes, (Notes{"its layer Bump.N is taken", "1 of its 4 channels are left out"}));
    DecodedFile const both = texel_of({{"B"}, {"G"}, {"R"}, {"l.B"}, {"l.G"}, {"l.R"}});
    EXPECT_EQ(values_of(both.picture), (Values{3, 2, 1}));
}

TEST_F(Exr, ThatIsNotTakenIsRefusedByName)
{
    EXPECT_EQ(refusal_of({{"a.B"}, {"a.G"}, {"a.R"}, {"b.B"}, {"b.G"}, {"b.R"}}),
              "it is an OpenEXR picture of several layers; save one of them alone");
    EXPECT_EQ(refusal_of({{"G"}, {"R"}}),
              "it is an OpenEXR picture with the channels G, R; save it with R, G and B, or with Y");
    EXPECT_EQ(refusal(exr_file(
                  {.width = 4, .height = 4, .channels = {{"BY", kHalves, 2}, {"RY", kHalves, 2}, {"Y"}}},
                  ExrNumbers(48))),
              "it is an OpenEXR picture of luminance and chroma; save it with channels R, G and B");
    EXPECT_EQ(refusal(exr_file({.width = 4, .height = 4, .channels = {{"Y", kHalves, 2}}}, ExrNumbers(16))),
              "it is an OpenEXR picture with channels of fewer texels; save them in full resolution");
    Bytes file = exr_file({}, ExrNumbers(20));
    file[5] = 0x08;
    EXPECT_EQ(refusal(file), "it is a deep OpenEXR picture; save it flat");
    file[5] = 0x18;
    EXPECT_EQ(refusal(file), "it is a deep OpenEXR picture; save it flat");
    file[5] = 0x10;
    EXPECT_EQ(refusal(file), "it is an OpenEXR picture of several parts; save one of them alone");
    file[5] = 0;
    std::string const name = "compression";
    auto const found = std::search(file.begin(), file.end(), name.begin(), name.end());
    found[2 * 12 + 4] = EXR_COMPRESSION_DWAA;
    EXPECT_EQ(refusal(file), "it is an OpenEXR picture compressed with DWA; save it with ZIP or PIZ");
}

TEST_F(Exr, IsWhatItsDataWindowHolds)
{
    for (int const tile : {0, 16}) {
        ExrKind kind{.width = 20, .height = 17, .compression = EXR_COMPRESSION_ZIP, .tile = tile};
        kind.left = -3;
        kind.top = 5;
        ExrNumbers const numbers = numbers_for(kind);
        Values expected;
        for (std::uint32_t const number : numbers) {
            expected.push_back(value_of(kHalves, number));
        }
        DecodedFile decoded = taken(kind, numbers);
        EXPECT_EQ(values_of(decoded.picture), expected);
        EXPECT_EQ(decoded.notes, Notes{});
        kind.shown = 100;
        decoded = taken(kind, numbers);
        EXPECT_EQ(values_of(decoded.picture), expected);
        EXPECT_EQ(decoded.notes,
                  (Notes{"all that it holds is taken, which is not what its display window shows"}));
    }
}

TEST_F(Exr, ThatIsTooLargeIsRefusedByItsHeader)
{
    Bytes const file = exr_file({.width = 40, .height = 30}, ExrNumbers(1200));
    EXPECT_EQ(refusal(file, 1199), "its size of 40 x 30 is more than 1199 texels");
    EXPECT_EQ(refusal(file, 1200), "");
    ExrKind const wide{.width = 70000, .height = 1, .compression = EXR_COMPRESSION_ZIP};
    EXPECT_EQ(refusal(exr_file(wide, ExrNumbers(70000))), "its size of 70000 x 1 has a side above 65535");
}

TEST_F(Exr, ThatIsCutShortIsRefused)
{
    for (ExrKind const& kind :
         {ExrKind{.width = 7, .height = 9},
          ExrKind{.width = 7, .height = 18, .compression = EXR_COMPRESSION_ZIP},
          ExrKind{.width = 7, .height = 9, .compression = EXR_COMPRESSION_PIZ, .tile = 4}}) {
        expect_no_piece_is_taken(exr_file(kind, numbers_for(kind)));
    }
}

TEST_F(Exr, ThatIsDamagedEndsTheSameWayEachTime)
{
    for (exr_compression_t const compression :
         {EXR_COMPRESSION_NONE, EXR_COMPRESSION_RLE, EXR_COMPRESSION_ZIPS, EXR_COMPRESSION_ZIP,
          EXR_COMPRESSION_PIZ, EXR_COMPRESSION_PXR24, EXR_COMPRESSION_B44, EXR_COMPRESSION_B44A}) {
        for (int const tile : {0, 8}) {
            ExrKind const kind{.width = 17, .height = 19, .compression = compression, .tile = tile};
            ExrNumbers numbers = numbers_for(kind);
            for (std::size_t i = 0; i < numbers.size(); i += 3) {
                numbers[i] = 0x3c00; // so that something is compressed
            }
            expect_same_end_of_damage(exr_file(kind, numbers), 60);
        }
    }
}

} // namespace
} // namespace umbrixlib::test
