// SPDX-License-Identifier: MIT
/// JPEG files of each kind, near to the colours that they were made from.
#include "files/reading.h"
#include "toolkit/pictures/formats/jpeg/jpeg_segments.h"

#include <cstdio>
#include <jpeglib.h>

namespace umbrixlib::test {
namespace {

struct JpegKind {
    unsigned width = 19;
    unsigned height = 17;
    J_COLOR_SPACE given = JCS_RGB;
    J_COLOR_SPACE stored = JCS_YCbCr;
    int quality = 100;
    bool progressive = false;
    bool arithmetic = false;
    int subsampling = 1;
    unsigned restart = 0;
    int marker = 0; ///< An APP marker of these bytes.
    std::string bytes{};
};

constexpr int channels_of(J_COLOR_SPACE space)
{
    return space == JCS_GRAYSCALE ? 1 : space == JCS_CMYK ? 4 : 3;
}

/// @param samples The top row first.
Bytes jpeg_file(JpegKind const& kind, Bytes samples)
{
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* to = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &to, &size);
    jpeg.image_width = kind.width;
    jpeg.image_height = kind.height;
    jpeg.input_components = channels_of(kind.given);
    jpeg.in_color_space = kind.given;
    jpeg_set_defaults(&jpeg);
    jpeg_set_colorspace(&jpeg, kind.stored);
    jpeg_set_quality(&jpeg, kind.quality, TRUE);
    jpeg.comp_info[0].h_samp_factor = kind.subsampling;
    jpeg.comp_info[0].v_samp_factor = kind.subsampling;
    jpeg.arith_code = static_cast<boolean>(kind.arithmetic);
    jpeg.restart_interval = kind.restart;
    if (kind.progressive) {
        jpeg_simple_progression(&jpeg);
    }
    jpeg_start_compress(&jpeg, TRUE);
    if (kind.marker != 0) {
        jpeg_write_marker(&jpeg, JPEG_APP0 + kind.marker, reinterpret_cast<JOCTET const*>(kind.bytes.data()),
                          static_cast<unsigned>(kind.bytes.size()));
    }
    std::size_t const row =
        static_cast<std::size_t>(kind.width) * static_cast<std::size_t>(jpeg.input_components);
    for (std::size_t y = 0; y < kind.height; ++y) {
        JSAMPROW from = &samples[y * row];
        jpeg_write_scanlines(&jpeg, &from, 1);
    }
    jpeg_finish_compress(&jpeg);
    Bytes file(to, to + size);
    jpeg_destroy_compress(&jpeg);
    std::free(to);
    return file;
}

/// Smooth in each channel.
Bytes gradient(JpegKind const& kind)
{
    Bytes samples;
    for (unsigned y = 0; y < kind.height; ++y) {
        for (unsigned x = 0; x < kind.width; ++x) {
            for (int c = 0; c < channels_of(kind.given); ++c) {
                samples.push_back(
                    static_cast<std::uint8_t>(20 + 9 * (c == 1 ? x : y) + 10U * static_cast<unsigned>(c)));
            }
        }
    }
    return samples;
}

class Jpeg : public Reading {
protected:
    Jpeg() : Reading(toolkit::jpeg_decoder(), "x.jpg") {}

    void expect_near(Picture const& picture, Bytes const& samples, double most) const
    {
        Values const values = values_of(picture);
        ASSERT_EQ(values.size(), samples.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_NEAR(values[i], samples[i], most) << i;
        }
    }
};

TEST_F(Jpeg, OfEachKindIsNearToItsSource)
{
    for (bool const progressive : {false, true}) {
        for (bool const arithmetic : {false, true}) {
            for (unsigned const restart : {0U, 1U}) {
                JpegKind kind{.progressive = progressive, .arithmetic = arithmetic, .restart = restart};
                DecodedFile const decoded = read(jpeg_file(kind, gradient(kind)));
                EXPECT_EQ(decoded.format, "JPEG");
                EXPECT_EQ(decoded.notes, Notes{});
                EXPECT_EQ(decoded.picture.channels, 3);
                expect_near(decoded.picture, gradient(kind), 3);
                kind.given = JCS_GRAYSCALE;
                kind.stored = JCS_GRAYSCALE;
                Picture const grey = read(jpeg_file(kind, gradient(kind))).picture;
                EXPECT_EQ(grey.channels, 1);
                expect_near(grey, gradient(kind), 2);
            }
        }
    }
    JpegKind kind{.stored = JCS_RGB};
    expect_near(read(jpeg_file(kind, gradient(kind))).picture, gradient(kind), 2);
    kind = {.subsampling = 2};
    expect_near(read(jpeg_file(kind, gradient(kind))).picture, gradient(kind), 12);
}

TEST_F(Jpeg, OfInksBecomesColours)
{
    for (J_COLOR_SPACE const stored : {JCS_CMYK, JCS_YCCK}) {
        JpegKind const kind{.width = 1, .height = 1, .given = JCS_CMYK, .stored = stored};
        DecodedFile const adobe = read(jpeg_file(kind, {255, 0, 204, 204}));
        EXPECT_EQ(adobe.notes, (Notes{"its CMYK inks became RGB without their colour profile"}));
        expect_near(adobe.picture, {204, 0, 163}, 3);
    }
    // Without Adobe's marker 0 is no ink.
    Bytes file =
        jpeg_file({.width = 1, .height = 1, .given = JCS_CMYK, .stored = JCS_CMYK}, {0, 255, 51, 51});
    ASSERT_EQ(file[3], 0xee);
    file.erase(file.begin() + 2, file.begin() + 2 + 16);
    expect_near(read(file).picture, {204, 0, 163}, 3);
}

std::string exif_with(int orientation, bool little)
{
    using namespace std::string_literals;
    auto const number = static_cast<char>(orientation);
    return little ? "Exif\0\0II*\0\x08\0\0\0\x02\0\0\x01\x03\0\x01\0\0\0\x07\0\0\0\x12\x01\x03\0\x01\0\0\0"s +
                        number + "\0\0\0\0\0\0\0"s
                  : "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0"s + number + "\0\0\0\0\0\0"s;
}

TEST_F(Jpeg, IsTurnedAsExifSays)
{
    JpegKind kind{.width = 16, .height = 8, .given = JCS_GRAYSCALE, .stored = JCS_GRAYSCALE, .marker = 1};
    Bytes samples;
    for (int i = 0; i < 128; ++i) {
        samples.push_back(i % 16 < 8 ? 50 : 200); // dark on the left
    }
    for (bool const little : {false, true}) {
        kind.bytes = exif_with(6, little);
        DecodedFile const turned = read(jpeg_file(kind, samples));
        EXPECT_EQ(turned.notes, (Notes{"turned upright, as its orientation tag says"}));
        ASSERT_EQ(turned.picture.width, 8);
        ASSERT_EQ(turned.picture.height, 16);
        EXPECT_NEAR(values_of(turned.picture).front(), 50, 2) << "dark at the top";
        EXPECT_NEAR(values_of(turned.picture).back(), 200, 2);
        for (int const upright : {0, 1, 9}) {
            kind.bytes = exif_with(upright, little);
            EXPECT_EQ(read(jpeg_file(kind, samples)).picture.width, 16);
        }
        std::string const whole = exif_with(6, little);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            kind.bytes = whole.substr(0, size);
            EXPECT_EQ(refusal(jpeg_file(kind, samples)), "");
        }
    }
}

TEST_F(Jpeg, WithAProfileSaysThatItIsLeftAlone)
{
    JpegKind const kind{.marker = 2, .bytes = std::string("ICC_PROFILE\0\1\1", 14)};
    EXPECT_EQ(read(jpeg_file(kind, gradient(kind))).notes,
              (Notes{"its colour profile is left alone: values count as they are"}));
}

TEST_F(Jpeg, WithoutItsTagsHasTheSameTexels)
{
    for (bool const progressive : {false, true}) {
        for (unsigned const restart : {0U, 1U}) {
            JpegKind kind{.progressive = progressive, .restart = restart};
            Bytes const plain = jpeg_file(kind, gradient(kind));
            kind.marker = 1;
            kind.bytes = exif_with(1, true);
            Bytes tagged = jpeg_file(kind, gradient(kind));
            tagged.insert(tagged.end(), {'m', 'o', 'r', 'e'});
            ASSERT_GT(tagged.size(), plain.size());
            EXPECT_EQ(toolkit::bare_jpeg(tagged), plain);
            EXPECT_EQ(toolkit::bare_jpeg(plain), plain);
        }
    }
}

TEST_F(Jpeg, ThatABrowserShowsOtherwiseIsNotMadeBare)
{
    JpegKind turned{.marker = 1, .bytes = exif_with(6, false)};
    JpegKind const inks{.given = JCS_CMYK, .stored = JCS_CMYK};
    JpegKind const arithmetic{.arithmetic = true};
    for (JpegKind const& kind : {turned, inks, arithmetic}) {
        EXPECT_FALSE(toolkit::bare_jpeg(jpeg_file(kind, gradient(kind))));
    }
    Bytes const whole = jpeg_file({.progressive = true}, gradient({}));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(toolkit::bare_jpeg(std::span(whole).first(size))) << size;
    }
}

TEST_F(Jpeg, ThatIsNotTakenIsRefusedByName)
{
    Bytes file = jpeg_file({}, gradient({}));
    std::size_t frame = 0;
    while (file[frame] != 0xff || file[frame + 1] != 0xc0) {
        ++frame;
    }
    Bytes deep = file;
    deep[frame + 4] = 12;
    EXPECT_EQ(refusal(deep), "it is a JPEG picture of 12 bits; save it with 8 bits, or as PNG");
    file[frame + 1] = 0xc3;
    EXPECT_EQ(refusal(file), "it is a lossless JPEG picture; save it as PNG, or as baseline JPEG");
    file[frame + 1] = 0xc5;
    EXPECT_EQ(refusal(file), "it is a JPEG picture of a rare kind; save it as PNG, or as baseline JPEG");
}

TEST_F(Jpeg, ThatIsTooLargeIsRefusedByItsHeader)
{
    JpegKind const kind{.width = 40, .height = 30};
    EXPECT_EQ(refusal(jpeg_file(kind, gradient(kind)), 1199), "its size of 40 x 30 is more than 1199 texels");
    EXPECT_EQ(refusal(jpeg_file(kind, gradient(kind)), 1200), "");
}

TEST_F(Jpeg, ThatIsCutShortIsRefused)
{
    for (bool const progressive : {false, true}) {
        JpegKind const kind{
            .width = 9, .given = JCS_GRAYSCALE, .stored = JCS_GRAYSCALE, .progressive = progressive};
        expect_no_piece_is_taken(jpeg_file(kind, gradient(kind)));
    }
}

TEST_F(Jpeg, ThatIsDamagedEndsTheSameWayEachTime)
{
    for (bool const progressive : {false, true}) {
        JpegKind kind{.progressive = progressive};
        expect_same_end_of_damage(jpeg_file(kind, gradient(kind)), 200);
        kind.given = JCS_CMYK;
        kind.stored = JCS_YCCK;
        expect_same_end_of_damage(jpeg_file(kind, gradient(kind)), 100);
    }
}

} // namespace
} // namespace umbrixlib::test
