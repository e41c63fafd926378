// SPDX-License-Identifier: MIT
/// Pictures of each sample type and number of channels, written and read back.
#include "files/reading.h"
#include "toolkit/pictures/encoder.h"

#include <tiffio.h>

namespace umbrixlib::test {
namespace {

using toolkit::Encoder;

/// Each sample differs from its neighbours; no NaN, which nothing equals.
Picture picture_of(SampleType type, int channels, int width = 37, int height = 29)
{
    Picture picture = toolkit::make_picture(width, height, channels, type);
    std::mt19937 random(static_cast<unsigned>(channels));
    for (std::uint8_t& byte : picture.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    if (type == SampleType::kHalf) {
        for (std::uint16_t& bits : picture.samples<std::uint16_t>()) {
            bits &= 0xbfffU;
        }
    } else if (type == SampleType::kFloat) {
        for (std::uint32_t& bits : picture.samples<std::uint32_t>()) {
            bits &= 0xbfffffffU;
        }
    }
    return picture;
}

constexpr SampleType kTypes[] = {SampleType::kUint8, SampleType::kUint16, SampleType::kHalf,
                                 SampleType::kFloat};

class Writing : public testing::Test {
protected:
    DecodedFile read_back(Decoder const& decoder, char const* name) const
    {
        toolkit::SourceFile source(folder_ / name, "input", 1 << 20);
        return decoder.decode(source);
    }

    /// The same picture is the same bytes.
    Bytes written(Encoder const& encoder, char const* name, Picture const& picture) const
    {
        EXPECT_TRUE(encoder.encode(folder_ / name, picture));
        Bytes first = read_file(folder_ / name);
        EXPECT_TRUE(encoder.encode(folder_ / name, picture));
        EXPECT_EQ(read_file(folder_ / name), first);
        return first;
    }

    static void expect_failures(Encoder const& encoder, SampleType type)
    {
        EXPECT_FALSE(encoder.encode("/nowhere/picture", picture_of(type, 3)));
        EXPECT_FALSE(encoder.encode("/dev/full", picture_of(type, 3)));
        EXPECT_FALSE(encoder.encode("/dev/full", picture_of(type, 3, 300, 300)));
    }

    TemporaryFolder folder_;
};

class TiffWriting : public Writing {};
class ExrWriting : public Writing {};
class JpegWriting : public Writing {};

TEST_F(TiffWriting, KeepsEachTypeAndNumberOfChannels)
{
    for (SampleType const type : kTypes) {
        for (int channels = 1; channels <= 4; ++channels) {
            Picture const picture = picture_of(type, channels);
            written(toolkit::tiff_encoder(), "y.tif", picture);
            DecodedFile const read = read_back(toolkit::tiff_decoder(), "y.tif");
            EXPECT_EQ(read.picture.type, type);
            EXPECT_EQ(read.picture.channels, channels);
            EXPECT_EQ(read.picture.bytes, picture.bytes);
            EXPECT_EQ(read.notes, Notes{});
        }
    }
    Picture const tall = picture_of(SampleType::kFloat, 4, 300, 100); // of several strips
    written(toolkit::tiff_encoder(), "y.tif", tall);
    EXPECT_EQ(read_back(toolkit::tiff_decoder(), "y.tif").picture.bytes, tall.bytes);
}

TEST_F(TiffWriting, SaysThatTheAlphaDidNotMultiplyTheColours)
{
    for (int const channels : {2, 4}) {
        written(toolkit::tiff_encoder(), "y.tif", picture_of(SampleType::kUint8, channels));
        TIFF* const tiff = TIFFOpen((folder_ / "y.tif").c_str(), "r");
        ASSERT_NE(tiff, nullptr);
        std::uint16_t count = 0;
        std::uint16_t const* kinds = nullptr;
        ASSERT_TRUE(TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds));
        EXPECT_EQ(count, 1);
        EXPECT_EQ(kinds[0], EXTRASAMPLE_UNASSALPHA);
        char const* date = nullptr;
        EXPECT_FALSE(TIFFGetField(tiff, TIFFTAG_DATETIME, &date));
        TIFFClose(tiff);
    }
}

TEST_F(TiffWriting, ThatFailsSaysSo)
{
    for (SampleType const type : kTypes) {
        expect_failures(toolkit::tiff_encoder(), type);
    }
}

TEST_F(ExrWriting, KeepsFloatsAndEachNumberOfChannels)
{
    for (SampleType const type : {SampleType::kHalf, SampleType::kFloat}) {
        for (int channels = 1; channels <= 4; ++channels) {
            Picture const picture = picture_of(type, channels);
            written(toolkit::exr_encoder(), "y.exr", picture);
            DecodedFile const read = read_back(toolkit::exr_decoder(), "y.exr");
            EXPECT_EQ(read.picture.type, type);
            EXPECT_EQ(read.picture.channels, channels);
            EXPECT_EQ(read.picture.bytes, picture.bytes);
            EXPECT_EQ(read.notes, Notes{});
        }
    }
}

TEST_F(ExrWriting, MakesFloatsOfWholeNumbers)
{
    for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
        Picture const picture = picture_of(type, 3);
        written(toolkit::exr_encoder(), "y.exr", picture);
        EXPECT_EQ(read_back(toolkit::exr_decoder(), "y.exr").picture.bytes,
                  toolkit::in_floats(picture).bytes);
    }
}

TEST_F(ExrWriting, PutsTheTopRowFirst)
{
    Picture picture = toolkit::make_picture(1, 2, 1, SampleType::kHalf);
    picture.samples<std::uint16_t>()[0] = 0x1111; // the bottom
    picture.samples<std::uint16_t>()[1] = 0x2222;
    Bytes const file = written(toolkit::exr_encoder(), "y.exr", picture);
    // Such a small chunk is not packed.
    EXPECT_EQ(Bytes(file.end() - 4, file.end()), (Bytes{0x22, 0x22, 0x11, 0x11}));
}

TEST_F(ExrWriting, ThatFailsSaysSo)
{
    expect_failures(toolkit::exr_encoder(), SampleType::kHalf);
    expect_failures(toolkit::exr_encoder(), SampleType::kUint8);
}

TEST_F(JpegWriting, IsNearToThePictureInEightBits)
{
    for (SampleType const type : kTypes) {
        for (int channels = 1; channels <= 4; ++channels) {
            Picture picture = toolkit::make_picture(40, 24, channels, type);
            toolkit::with_samples(picture, [&]<typename Sample>(std::span<Sample const>) {
                auto const samples = picture.samples<Sample>();
                for (std::size_t i = 0; i < samples.size(); ++i) {
                    std::size_t const column = i / static_cast<std::size_t>(channels) % 40;
                    double const value = static_cast<double>(column) / 64 * toolkit::full_scale(type);
                    if constexpr (std::is_same_v<Sample, toolkit::Half>) {
                        samples[i] = {0x3800}; // 0.5
                    } else {
                        samples[i] = static_cast<Sample>(value);
                    }
                }
            });
            written(toolkit::jpeg_encoder(), "y.jpg", picture);
            Picture const read = read_back(toolkit::jpeg_decoder(), "y.jpg").picture;
            EXPECT_EQ(read.channels, channels < 3 ? 1 : 3);
            Picture const expected = channels % 2 == 0 ? toolkit::without_alpha(picture) : picture;
            Values const values = values_of(expected);
            double const full = toolkit::full_scale(type);
            Values const found = values_of(read);
            ASSERT_EQ(found.size(), values.size());
            for (std::size_t i = 0; i < values.size(); ++i) {
                ASSERT_NEAR(found[i], values[i] / full * 255, 2.6);
            }
        }
    }
}

TEST_F(JpegWriting, ThatFailsSaysSo)
{
    expect_failures(toolkit::jpeg_encoder(), SampleType::kUint8);
    EXPECT_FALSE(
        toolkit::jpeg_encoder().encode(folder_ / "y.jpg", picture_of(SampleType::kUint8, 1, 65501, 1)))
        << "wider than the format";
}

} // namespace
} // namespace umbrixlib::test
