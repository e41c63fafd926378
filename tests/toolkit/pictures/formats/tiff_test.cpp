// SPDX-License-Identifier: MIT
/// TIFF files of each kind, compared with the numbers that they were made from.
#include "files/reading.h"
#include "files/tiff_files.h"

#include <bit>

namespace umbrixlib::test {
namespace {

class Tiff : public Reading {
protected:
    Tiff() : Reading(toolkit::tiff_decoder(), "x.tif") {}

    Bytes file(TiffKind const& kind, RawNumbers const& numbers) const
    {
        return tiff_file(kind, numbers, folder_ / "made.tif");
    }

    DecodedFile taken(TiffKind const& kind, RawNumbers const& numbers) const
    {
        DecodedFile result = read(file(kind, numbers));
        EXPECT_EQ(result.format, "TIFF");
        return result;
    }
};

/// Numbers of @p bits bits, 0 and the largest among them.
RawNumbers raw_numbers(TiffKind const& kind)
{
    std::mt19937_64 random(kind.bits);
    RawNumbers numbers(static_cast<std::size_t>(kind.width) * kind.height * kind.channels);
    for (std::uint64_t& number : numbers) {
        number = random() >> (64 - kind.bits);
    }
    numbers[0] = 0;
    numbers[1] = ~std::uint64_t{0} >> (64 - kind.bits);
    return numbers;
}

RawNumbers with_bytes_turned(RawNumbers numbers, unsigned bits)
{
    for (std::uint64_t& number : numbers) {
        number = __builtin_bswap64(number) >> (64 - bits);
    }
    return numbers;
}

Values as_values(RawNumbers const& numbers)
{
    return {numbers.begin(), numbers.end()};
}

TEST_F(Tiff, OfEachDepthIsSpreadOverWhatASampleCanHold)
{
    for (unsigned bits = 1; bits <= 32; ++bits) {
        for (char const* mode : {"wl", "wb"}) {
            TiffKind const kind{.mode = mode, .bits = bits};
            RawNumbers const numbers = raw_numbers(kind);
            Picture const picture = taken(kind, numbers).picture;
            ASSERT_EQ(picture.type, bits <= 8    ? SampleType::kUint8
                                    : bits <= 16 ? SampleType::kUint16
                                                 : SampleType::kFloat);
            double const full = toolkit::full_scale(picture.type);
            double const most = std::ldexp(1.0, static_cast<int>(bits)) - 1;
            Values expected;
            for (std::uint64_t const number : numbers) {
                double const exact = static_cast<double>(number) * full / most;
                expected.push_back(bits <= 16 ? std::floor(exact + 0.5)
                                              : static_cast<double>(static_cast<float>(exact)));
            }
            EXPECT_EQ(values_of(picture), expected) << bits << mode;
        }
    }
}

TEST_F(Tiff, OfSignedNumbersBecomesFloats)
{
    TiffKind kind{.width = 4, .height = 1, .format = SAMPLEFORMAT_INT};
    EXPECT_EQ(values_of(taken(kind, {0, 127, 0x81, 0x80}).picture),
              (Values{0, 1, -1, static_cast<double>(-128.0f / 127.0f)}));
    kind.bits = 16;
    EXPECT_EQ(values_of(taken(kind, {0, 32767, 0x8001, 16383}).picture),
              (Values{0, 1, -1, static_cast<double>(static_cast<float>(16383.0 / 32767.0))}));
    kind.bits = 32;
    EXPECT_EQ(values_of(taken(kind, {0, 0x7fffffff, 0x80000001, 0x40000000}).picture),
              (Values{0, 1, -1, static_cast<double>(static_cast<float>(1073741824.0 / 2147483647.0))}));
}

TEST_F(Tiff, OfFloatsKeepsThem)
{
    for (char const* mode : {"wl", "wb"}) {
        TiffKind kind{.mode = mode, .width = 4, .height = 1, .format = SAMPLEFORMAT_IEEEFP};
        Values const expected{-2.5, 0, 1.5, 1024};
        kind.bits = 16;
        Picture picture = taken(kind, {0xc100, 0, 0x3e00, 0x6400}).picture;
        EXPECT_EQ(picture.type, SampleType::kHalf);
        EXPECT_EQ(values_of(picture), expected) << mode;
        kind.bits = 24;
        picture = taken(kind, {0xc04000, 0, 0x3f8000, 0x490000}).picture;
        EXPECT_EQ(picture.type, SampleType::kFloat);
        EXPECT_EQ(values_of(picture), expected) << mode;
        kind.bits = 32;
        RawNumbers numbers;
        for (double const value : expected) {
            numbers.push_back(std::bit_cast<std::uint32_t>(static_cast<float>(value)));
        }
        EXPECT_EQ(values_of(taken(kind, numbers).picture), expected) << mode;
        kind.bits = 64;
        numbers.clear();
        for (double const value : expected) {
            numbers.push_back(std::bit_cast<std::uint64_t>(value));
        }
        picture = taken(kind, numbers).picture;
        EXPECT_EQ(picture.type, SampleType::kFloat);
        EXPECT_EQ(values_of(picture), expected) << mode;
    }
}

TEST_F(Tiff, OfEachCompressionAndLayoutIsTheSame)
{
    struct Way {
        int compression;
        int predictor;
        unsigned bits;
        int format;
    };
    std::vector<Way> const ways = {
        {COMPRESSION_NONE, 0, 8, SAMPLEFORMAT_UINT},
        {COMPRESSION_NONE, 0, 12, SAMPLEFORMAT_UINT},
        {COMPRESSION_PACKBITS, 0, 16, SAMPLEFORMAT_UINT},
        {COMPRESSION_LZW, 0, 8, SAMPLEFORMAT_UINT},
        {COMPRESSION_LZW, PREDICTOR_HORIZONTAL, 16, SAMPLEFORMAT_UINT},
        {COMPRESSION_ADOBE_DEFLATE, PREDICTOR_HORIZONTAL, 8, SAMPLEFORMAT_UINT},
        {COMPRESSION_ADOBE_DEFLATE, PREDICTOR_FLOATINGPOINT, 32, SAMPLEFORMAT_IEEEFP},
        {COMPRESSION_ADOBE_DEFLATE, PREDICTOR_FLOATINGPOINT, 16, SAMPLEFORMAT_IEEEFP},
        {COMPRESSION_LZMA, 0, 8, SAMPLEFORMAT_UINT},
        {COMPRESSION_ZSTD, PREDICTOR_HORIZONTAL, 16, SAMPLEFORMAT_UINT},
        {COMPRESSION_LERC, 0, 32, SAMPLEFORMAT_IEEEFP},
    };
    for (Way const& way : ways) {
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(way.compression)) == 0) {
            continue;
        }
        TiffKind kind{.bits = way.bits,
                      .channels = 3,
                      .photometric = PHOTOMETRIC_RGB,
                      .format = way.format,
                      .compression = way.compression,
                      .predictor = way.predictor};
        kind.width = 21;
        kind.height = 19;
        if (way.compression == COMPRESSION_LZMA) {
            kind.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_LZMAPRESET, 0); }; // for speed
        }
        RawNumbers numbers = raw_numbers(kind);
        if (way.format == SAMPLEFORMAT_IEEEFP) { // no NaN, which nothing equals
            for (std::uint64_t& number : numbers) {
                number &= way.bits == 16 ? 0x3fffU : 0x3fffffffU;
            }
        }
        Values expected;
        bool first = true;
        for (char const* mode : {"wl", "wb", "wl8"}) {
            for (std::uint32_t const tile : {0U, 16U}) {
                for (bool const planar : {false, true}) {
                    bool const high_first = mode[1] == 'b';
                    // libtiff writes these in a way that it does not read.
                    if (high_first && way.compression == COMPRESSION_LERC) {
                        continue;
                    }
                    kind.mode = mode;
                    kind.tile = tile;
                    kind.planar = planar;
                    // It also turns bytes that this predictor takes in the machine's order.
                    bool const turned = high_first && way.predictor == PREDICTOR_FLOATINGPOINT;
                    Values const values = values_of(
                        taken(kind, turned ? with_bytes_turned(numbers, way.bits) : numbers).picture);
                    ASSERT_EQ(values.size(), numbers.size());
                    if (first && way.bits != 12 && way.format == SAMPLEFORMAT_UINT) {
                        EXPECT_EQ(values, as_values(numbers));
                    }
                    if (first) {
                        expected = values;
                        first = false;
                    }
                    EXPECT_EQ(values, expected)
                        << "compression " << way.compression << ", " << mode << ", tile " << tile << planar;
                }
            }
        }
    }
}

TEST_F(Tiff, OfFloatsWithEachPredictorIsTheSame)
{
    TiffKind kind{.width = 9, .height = 5, .bits = 32, .format = SAMPLEFORMAT_IEEEFP};
    RawNumbers numbers = raw_numbers(kind);
    Values expected;
    for (std::uint64_t& number : numbers) {
        number &= 0x3fffffffU;
        expected.push_back(static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(number))));
    }
    for (int const compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        for (int const predictor : {PREDICTOR_NONE, PREDICTOR_HORIZONTAL, PREDICTOR_FLOATINGPOINT}) {
            kind.compression = compression;
            kind.predictor = compression == COMPRESSION_NONE ? 0 : predictor;
            EXPECT_EQ(values_of(taken(kind, numbers).picture), expected) << compression << predictor;
        }
    }
}

TEST_F(Tiff, OfAFaxIsBlackWhereItIsBlack)
{
    for (int const compression :
         {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4, COMPRESSION_NONE}) {
        TiffKind kind{.width = 8, .height = 2, .bits = 1, .photometric = PHOTOMETRIC_MINISWHITE};
        kind.compression = compression;
        RawNumbers const numbers{0, 1, 1, 0, 0, 0, 0, 1, 1, 1, 1, 1, 0, 0, 0, 0};
        Values expected;
        for (std::uint64_t const number : numbers) {
            expected.push_back(number == 1 ? 0 : 255);
        }
        EXPECT_EQ(values_of(taken(kind, numbers).picture), expected) << compression;
    }
}

TEST_F(Tiff, WithWhiteAtZeroIsTurned)
{
    TiffKind kind{.width = 3, .height = 1, .photometric = PHOTOMETRIC_MINISWHITE};
    EXPECT_EQ(values_of(taken(kind, {0, 55, 255}).picture), (Values{255, 200, 0}));
    kind.bits = 16;
    EXPECT_EQ(values_of(taken(kind, {0, 535, 65535}).picture), (Values{65535, 65000, 0}));
    kind.bits = 4;
    EXPECT_EQ(values_of(taken(kind, {0, 1, 15}).picture), (Values{255, 238, 0}));
}

TEST_F(Tiff, WithAPaletteGivesItsColours)
{
    std::vector<std::uint16_t> red(16);
    std::vector<std::uint16_t> green(16);
    std::vector<std::uint16_t> blue(16);
    TiffKind kind{.width = 3, .height = 1, .bits = 4, .photometric = PHOTOMETRIC_PALETTE};
    kind.tags = [&](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    };
    for (unsigned const step : {257U, 256U, 1U}) {
        for (unsigned i = 0; i < 16; ++i) {
            red[i] = static_cast<std::uint16_t>(step * i);
            green[i] = static_cast<std::uint16_t>(step * (255 - i));
            blue[i] = static_cast<std::uint16_t>(step * (100 + i));
        }
        DecodedFile const decoded = taken(kind, {0, 15, 7});
        EXPECT_TRUE(decoded.palette);
        EXPECT_EQ(decoded.picture.type, SampleType::kUint8);
        EXPECT_EQ(values_of(decoded.picture), (Values{0, 255, 100, 15, 240, 115, 7, 248, 107})) << step;
    }
    red[7] = 1001;
    green.assign(16, 40000);
    Picture const deep = taken(kind, {7, 0, 7}).picture;
    EXPECT_EQ(deep.type, SampleType::kUint16);
    EXPECT_EQ(values_of(deep), (Values{1001, 40000, 107, 0, 40000, 100, 1001, 40000, 107}));
}

TEST_F(Tiff, WithAStraightAlphaKeepsIt)
{
    TiffKind kind{.width = 2, .height = 1, .bits = 16, .channels = 4, .photometric = PHOTOMETRIC_RGB};
    for (int const extra : {EXTRASAMPLE_UNASSALPHA, EXTRASAMPLE_UNSPECIFIED}) {
        kind.extras = {static_cast<std::uint16_t>(extra)};
        DecodedFile const decoded = taken(kind, {10, 20, 30, 5, 65535, 1, 2, 0});
        EXPECT_EQ(values_of(decoded.picture), (Values{10, 20, 30, 5, 65535, 1, 2, 0}));
        EXPECT_EQ(decoded.notes, Notes{});
    }
    kind = {.width = 2, .height = 1, .channels = 2, .extras = {EXTRASAMPLE_UNASSALPHA}};
    EXPECT_EQ(values_of(taken(kind, {10, 20, 30, 5}).picture), (Values{10, 20, 30, 5}));
}

TEST_F(Tiff, WithAMultipliedAlphaIsDividedByIt)
{
    TiffKind kind{.width = 2, .height = 1, .channels = 4, .photometric = PHOTOMETRIC_RGB};
    kind.extras = {EXTRASAMPLE_ASSOCALPHA};
    DecodedFile const decoded = taken(kind, {50, 100, 25, 100, 7, 8, 9, 0});
    EXPECT_EQ(values_of(decoded.picture), (Values{128, 255, 64, 100, 7, 8, 9, 0}));
    EXPECT_EQ(decoded.notes, (Notes{"its colours were multiplied with its alpha, and are divided by it"}));
    kind.format = SAMPLEFORMAT_IEEEFP;
    kind.bits = 16;
    Picture const halves = taken(kind, {0x3400, 0x3800, 0xb800, 0x3800, 0x3c00, 0x3c00, 0, 0}).picture;
    EXPECT_EQ(halves.type, SampleType::kFloat);
    EXPECT_EQ(values_of(halves), (Values{0.5, 1, -1, 0.5, 1, 1, 0, 0}));
    kind = {.width = 1, .height = 1, .channels = 4, .photometric = PHOTOMETRIC_RGB};
    kind.extras = {EXTRASAMPLE_ASSOCALPHA};
    kind.tags = [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_SOFTWARE, "Developer's Image Library (DevIL) 1.7.8");
    };
    EXPECT_EQ(values_of(taken(kind, {50, 100, 25, 20}).picture), (Values{50, 100, 25, 20}))
        << "a program that marks every alpha so";
}

TEST_F(Tiff, WithFurtherChannelsLeavesThemOut)
{
    for (bool const planar : {false, true}) {
        TiffKind kind{.width = 2, .height = 1, .channels = 6, .photometric = PHOTOMETRIC_RGB};
        kind.planar = planar;
        kind.extras = {EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA, EXTRASAMPLE_UNSPECIFIED};
        DecodedFile const decoded = taken(kind, {1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16});
        EXPECT_EQ(values_of(decoded.picture), (Values{1, 2, 3, 5, 11, 12, 13, 15}));
        EXPECT_EQ(decoded.notes, (Notes{"2 of its 6 channels are left out"}));
    }
    TiffKind kind{.width = 1, .height = 1, .channels = 3, .extras = {0, 0}};
    DecodedFile const decoded = taken(kind, {1, 2, 3});
    EXPECT_EQ(values_of(decoded.picture), (Values{1, 2, 3}));
    EXPECT_EQ(decoded.notes,
              (Notes{"its channels have no names: the first three are taken as red, green and blue"}));
}

TEST_F(Tiff, OfInksBecomesColours)
{
    TiffKind kind{.width = 2, .height = 1, .channels = 4, .photometric = PHOTOMETRIC_SEPARATED};
    DecodedFile const decoded = taken(kind, {0, 255, 51, 0, 0, 102, 0, 51});
    EXPECT_EQ(values_of(decoded.picture), (Values{255, 0, 204, 204, 122, 204}));
    EXPECT_EQ(decoded.notes, (Notes{"its CMYK inks became RGB without their colour profile"}));
    kind.bits = 16;
    EXPECT_EQ(values_of(taken(kind, {0, 65535, 13107, 0, 0, 0, 0, 65535}).picture),
              (Values{65535, 0, 52428, 0, 0, 0}));
}

TEST_F(Tiff, OfYCbCrBecomesColours)
{
    TiffKind kind{.width = 8, .height = 8, .channels = 3, .photometric = PHOTOMETRIC_YCBCR};
    kind.rows_per_strip = 8;
    kind.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1); };
    RawNumbers red;
    RawNumbers in_ycbcr;
    for (int i = 0; i < 64; ++i) {
        red.insert(red.end(), {200, 10, 20});
        in_ycbcr.insert(in_ycbcr.end(), {68, 101, 222});
    }
    Picture const plain = taken(kind, in_ycbcr).picture;
    kind.compression = COMPRESSION_JPEG;
    kind.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); };
    kind.height = 16;
    kind.width = 16;
    kind.rows_per_strip = 16;
    for (int i = 0; i < 192; ++i) {
        red.insert(red.end(), {200, 10, 20});
    }
    Picture const jpeg = taken(kind, red).picture;
    for (Picture const& picture : {plain, jpeg}) {
        ASSERT_EQ(picture.channels, 3);
        for (std::size_t i = 0; i < picture.texels(); ++i) {
            EXPECT_NEAR(picture.texel(i)[0], 200, 2);
            EXPECT_NEAR(picture.texel(i)[1], 10, 2);
            EXPECT_NEAR(picture.texel(i)[2], 20, 2);
        }
    }
}

TEST_F(Tiff, IsTurnedAsItsTagSays)
{
    // 1 2 3
    // 4 5 6
    std::vector<Values> const upright = {
        {1, 2, 3, 4, 5, 6}, {3, 2, 1, 6, 5, 4}, {6, 5, 4, 3, 2, 1}, {4, 5, 6, 1, 2, 3},
        {1, 4, 2, 5, 3, 6}, {4, 1, 5, 2, 6, 3}, {6, 3, 5, 2, 4, 1}, {3, 6, 2, 5, 1, 4},
    };
    for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
        TiffKind kind{.width = 3, .height = 2};
        kind.tags = [=](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation); };
        DecodedFile const decoded = taken(kind, {1, 2, 3, 4, 5, 6});
        EXPECT_EQ(decoded.picture.width, orientation < 5 ? 3 : 2);
        EXPECT_EQ(values_of(decoded.picture), upright[orientation - 1U]) << orientation;
        EXPECT_EQ(decoded.notes.size(), orientation == 1 ? 0U : 1U);
    }
}

TEST_F(Tiff, OfSeveralPicturesGivesTheFirst)
{
    TiffKind const kind{.width = 1, .height = 1};
    std::filesystem::path const path = folder_ / "several.tif";
    tiff_file(kind, {42}, path);
    TiffKind second = kind;
    second.mode = "a";
    DecodedFile const decoded = read(tiff_file(second, {43}, path));
    EXPECT_EQ(values_of(decoded.picture), (Values{42}));
    EXPECT_EQ(decoded.notes, (Notes{"it has several pictures, of which this is the first"}));
}

TEST_F(Tiff, WithAProfileSaysThatItIsLeftAlone)
{
    TiffKind kind{.width = 1, .height = 1};
    kind.tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 4, "icc?"); };
    EXPECT_EQ(taken(kind, {1}).notes, (Notes{"its colour profile is left alone: values count as they are"}));
}

TEST_F(Tiff, ThatIsNotTakenIsRefusedByName)
{
    auto const of = [&](TiffKind kind) {
        kind.width = 2;
        kind.height = 2;
        return refusal(file(kind, RawNumbers(4 * kind.channels)));
    };
    EXPECT_EQ(of({.channels = 3, .photometric = PHOTOMETRIC_CIELAB}),
              "it is a TIFF picture of Lab colours; save it as RGB");
    EXPECT_EQ(of({.bits = 64}),
              "it is a TIFF picture of whole numbers with 64 bits; save it with 8, 16 or 32");
    EXPECT_EQ(of({.bits = 64, .format = SAMPLEFORMAT_COMPLEXIEEEFP}),
              "it is a TIFF picture of complex numbers; save it with real ones");
    EXPECT_EQ(of({.photometric = PHOTOMETRIC_CFA}),
              "it is a TIFF picture of camera raw colours; save it as RGB");
    EXPECT_EQ(of({.channels = 5,
                  .photometric = PHOTOMETRIC_SEPARATED,
                  .tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_MULTIINK); }}),
              "it is a TIFF picture of inks that are not CMYK of 8 or 16 bits; save it as RGB");
    EXPECT_EQ(of({.channels = 99}), "it is a TIFF picture of 99 channels; save it with at most four");

    Bytes jpeg_2000 = file({.width = 1, .height = 1}, {0});
    for (std::size_t i = 0; i + 12 <= jpeg_2000.size(); ++i) { // the entry of the compression
        if (jpeg_2000[i] == 3 && jpeg_2000[i + 1] == 1 && jpeg_2000[i + 2] == 3 && jpeg_2000[i + 4] == 1) {
            jpeg_2000[i + 8] = 34712 & 255;
            jpeg_2000[i + 9] = 34712 >> 8;
        }
    }
    EXPECT_EQ(refusal(jpeg_2000), "it is a TIFF picture compressed with JPEG 2000; save it with Deflate or "
                                  "without compression");
}

TEST_F(Tiff, OfChannelsOfDifferentDepthsIsRefusedByName)
{
    // One texel of 5, 6 and 5 bits.
    Bytes const file{'I', 'I', 42, 0, 8, 0, 0, 0, 7,   0,         //
                     0,   1,   3,  0, 1, 0, 0, 0, 1,   0, 0,   0, // width
                     1,   1,   3,  0, 1, 0, 0, 0, 1,   0, 0,   0, // height
                     2,   1,   3,  0, 3, 0, 0, 0, 98,  0, 0,   0, // bits
                     6,   1,   3,  0, 1, 0, 0, 0, 2,   0, 0,   0, // RGB
                     17,  1,   4,  0, 1, 0, 0, 0, 104, 0, 0,   0, // the strip
                     21,  1,   3,  0, 1, 0, 0, 0, 3,   0, 0,   0, // channels
                     23,  1,   4,  0, 1, 0, 0, 0, 2,   0, 0,   0, // its length
                     0,   0,   0,  0, 5, 0, 6, 0, 5,   0, 255, 255};
    EXPECT_EQ(refusal(file), "it is a TIFF picture with channels of different depths; save it with the same "
                             "number of bits in each");
}

TEST_F(Tiff, ThatIsTooLargeIsRefusedByItsTags)
{
    Bytes const whole = file({.width = 40, .height = 30}, RawNumbers(1200));
    EXPECT_EQ(refusal(whole, 1199), "its size of 40 x 30 is more than 1199 texels");
    EXPECT_EQ(refusal(whole, 1200), "");
    TiffKind kind{.width = 70000, .height = 1};
    EXPECT_EQ(refusal(file(kind, RawNumbers(70000))), "its size of 70000 x 1 has a side above 65535");
}

TEST_F(Tiff, ThatIsCutShortIsRefused)
{
    for (int const compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        TiffKind kind{.width = 9, .height = 7, .bits = 16, .compression = compression};
        // The tags are the end of the file: none of them is left in a piece.
        expect_no_piece_is_taken(file(kind, raw_numbers(kind)), 2);
    }
}

TEST_F(Tiff, ThatIsDamagedEndsTheSameWayEachTime)
{
    for (int const compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                  COMPRESSION_PACKBITS, COMPRESSION_JPEG, COMPRESSION_LERC}) {
        for (std::uint32_t const tile : {0U, 16U}) {
            TiffKind kind{.width = 16, .height = 16, .compression = compression};
            kind.rows_per_strip = 8;
            kind.tile = tile;
            expect_same_end_of_damage(file(kind, raw_numbers(kind)), 40);
        }
    }
    TiffKind fax{.width = 64, .height = 8, .bits = 1, .photometric = PHOTOMETRIC_MINISWHITE};
    fax.compression = COMPRESSION_CCITTFAX4;
    expect_same_end_of_damage(file(fax, raw_numbers(fax)), 100);
}

} // namespace
} // namespace umbrixlib::test
