// SPDX-License-Identifier: MIT
/// WebP files of each kind, compared with the colours that they were made from.
#include "files/reading.h"

#include <webp/encode.h>

namespace umbrixlib::test {
namespace {

class Webp : public Reading {
protected:
    Webp() : Reading(toolkit::webp_decoder(), "x.webp") {}
};

Bytes taken_over(std::uint8_t* output, std::size_t size)
{
    Bytes file(output, output + size);
    WebPFree(output);
    return file;
}

Bytes lossless(Bytes const& rgb, int width, int height)
{
    std::uint8_t* output = nullptr;
    std::size_t const size = WebPEncodeLosslessRGB(rgb.data(), width, height, 3 * width, &output);
    return taken_over(output, size);
}

/// 17 x 11 colours.
Bytes some_colours(std::size_t channels = 3)
{
    Bytes colours(17 * 11 * channels);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        colours[i] = static_cast<std::uint8_t>(i * i / 7 + 1);
    }
    return colours;
}

Values as_values(Bytes const& bytes)
{
    return {bytes.begin(), bytes.end()};
}

void append_chunk(Bytes& file, std::string const& name, Bytes const& content)
{
    file.insert(file.end(), name.begin(), name.end());
    for (unsigned shift = 0; shift < 32; shift += 8) {
        file.push_back(static_cast<std::uint8_t>(content.size() >> shift));
    }
    file.insert(file.end(), content.begin(), content.end());
    if (content.size() % 2 != 0) {
        file.push_back(0);
    }
}

/// @param flags 2: an animation; 8: EXIF; 32: a profile.
Bytes extended(std::uint8_t flags, std::uint8_t width, std::uint8_t height,
               std::vector<std::pair<std::string, Bytes>> const& chunks)
{
    Bytes body{'W', 'E', 'B', 'P'};
    append_chunk(body, "VP8X",
                 {flags, 0, 0, 0, static_cast<std::uint8_t>(width - 1), 0, 0,
                  static_cast<std::uint8_t>(height - 1), 0, 0});
    for (auto const& [name, content] : chunks) {
        append_chunk(body, name, content);
    }
    Bytes file;
    append_chunk(file, "RIFF", body);
    return file;
}

/// The chunk of texels in a file of nothing else.
Bytes texels_of(Bytes const& file)
{
    return {file.begin() + 20, file.end()};
}

TEST_F(Webp, WithoutLossIsTheSame)
{
    DecodedFile const colours = read(lossless(some_colours(), 17, 11));
    EXPECT_EQ(colours.format, "WebP");
    EXPECT_EQ(colours.notes, Notes{});
    EXPECT_EQ(colours.picture.channels, 3);
    EXPECT_EQ(values_of(colours.picture), as_values(some_colours()));

    Bytes const with_alpha = some_colours(4);
    std::uint8_t* output = nullptr;
    WebPConfig config;
    ASSERT_TRUE(WebPConfigInit(&config));
    config.lossless = 1;
    config.exact = 1;
    WebPPicture picture;
    ASSERT_TRUE(WebPPictureInit(&picture));
    picture.use_argb = 1;
    picture.width = 17;
    picture.height = 11;
    WebPPictureImportRGBA(&picture, with_alpha.data(), 4 * 17);
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;
    ASSERT_TRUE(WebPEncode(&config, &picture));
    WebPPictureFree(&picture);
    output = writer.mem;
    Picture const read_back = read(taken_over(output, writer.size)).picture;
    EXPECT_EQ(read_back.channels, 4);
    EXPECT_EQ(values_of(read_back), as_values(with_alpha));
}

TEST_F(Webp, WithLossIsNear)
{
    Bytes smooth(32 * 24 * 3);
    for (std::size_t i = 0; i < smooth.size(); ++i) {
        smooth[i] = static_cast<std::uint8_t>(60 + i / 3 % 32 * 3);
    }
    std::uint8_t* output = nullptr;
    std::size_t const size = WebPEncodeRGB(smooth.data(), 32, 24, 96, 95, &output);
    Values const values = values_of(read(taken_over(output, size)).picture);
    ASSERT_EQ(values.size(), smooth.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_NEAR(values[i], smooth[i], 8) << i;
    }
}

TEST_F(Webp, OfSeveralPicturesGivesTheFirst)
{
    Bytes const colours(2 * 2 * 3, 77);
    Bytes frame{1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 100, 0, 0, 0}; // at 2, 2; 2 x 2 texels
    append_chunk(frame, "VP8L", texels_of(lossless(colours, 2, 2)));
    DecodedFile const decoded =
        read(extended(2, 5, 4, {{"ANIM", Bytes(6)}, {"ANMF", frame}, {"ANMF", frame}}));
    EXPECT_EQ(decoded.notes, (Notes{"it has several pictures, of which this is the first"}));
    ASSERT_EQ(decoded.picture.channels, 4);
    ASSERT_EQ(decoded.picture.texels(), 20U);
    for (std::size_t y = 0; y < 4; ++y) { // from the bottom
        for (std::size_t x = 0; x < 5; ++x) {
            bool const inside = y < 2 && (x == 2 || x == 3);
            EXPECT_EQ(decoded.picture.texel(y * 5 + x)[0], inside ? 77 : 0) << x << y;
            EXPECT_EQ(decoded.picture.texel(y * 5 + x)[3], inside ? 255 : 0) << x << y;
        }
    }
}

TEST_F(Webp, ObeysOrientationsAndNotProfiles)
{
    Bytes const exif{'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, 3, 0, 0, 0, 0, 0, 0};
    Bytes prefixed{'E', 'x', 'i', 'f', 0, 0};
    prefixed.insert(prefixed.end(), exif.begin(), exif.end());
    for (Bytes const& chunk : {exif, prefixed}) {
        DecodedFile const decoded = read(extended(
            8 | 32, 1, 2,
            {{"ICCP", {1, 2}}, {"VP8L", texels_of(lossless({1, 2, 3, 4, 5, 6}, 1, 2))}, {"EXIF", chunk}}));
        EXPECT_EQ(values_of(decoded.picture), (Values{4, 5, 6, 1, 2, 3}));
        EXPECT_EQ(decoded.notes, (Notes{"turned upright, as its orientation tag says",
                                        "its colour profile is left alone: values count as they are"}));
    }
}

TEST_F(Webp, ThatIsTooLargeIsRefusedByItsHeader)
{
    EXPECT_EQ(refusal(lossless(some_colours(), 17, 11), 186), "its size of 17 x 11 is more than 186 texels");
    EXPECT_EQ(refusal(lossless(some_colours(), 17, 11), 187), "");
}

TEST_F(Webp, ThatIsCutShortIsRefused)
{
    expect_no_piece_is_taken(lossless(some_colours(), 17, 11));
}

TEST_F(Webp, ThatIsDamagedEndsTheSameWayEachTime)
{
    expect_same_end_of_damage(lossless(some_colours(), 17, 11));
    std::uint8_t* output = nullptr;
    Bytes const colours = some_colours(4);
    std::size_t const size = WebPEncodeRGBA(colours.data(), 17, 11, 4 * 17, 80, &output);
    expect_same_end_of_damage(taken_over(output, size));
}

} // namespace
} // namespace umbrixlib::test
