// SPDX-License-Identifier: MIT
/// GIF files of each kind, compared with the numbers of colours that they were made from.
#include "files/reading.h"

#include <gif_lib.h>

namespace umbrixlib::test {
namespace {

struct GifFrame {
    int left = 0;
    int top = 0;
    int width = 5;
    int height = 9;
    bool interlaced = false;
    bool own_palette = false;
};

class Gif : public Reading {
protected:
    Gif() : Reading(toolkit::gif_decoder(), "x.gif") {}
};

constexpr int kColours = 64;

/// Colour k is 3k, 255 - k, and k or, in a palette of a frame's own, 100 more.
ColorMapObject* palette(int blue)
{
    ColorMapObject* const map = GifMakeMapObject(kColours, nullptr);
    for (int i = 0; i < kColours; ++i) {
        map->Colors[i] = {static_cast<GifByteType>(3 * i), static_cast<GifByteType>(255 - i),
                          static_cast<GifByteType>(blue + i)};
    }
    return map;
}

int put(GifFileType* gif, GifByteType const* bytes, int size)
{
    auto& file = *static_cast<Bytes*>(gif->UserData);
    file.insert(file.end(), bytes, bytes + size);
    return size;
}

/// Texel i of a frame is colour i, counted from the top left, modulo 60.
Bytes gif_file(int width, int height, std::vector<GifFrame> const& frames)
{
    Bytes file;
    int error = 0;
    GifFileType* const gif = EGifOpen(&file, put, &error);
    ColorMapObject* const shared = palette(0);
    ColorMapObject* const own = palette(100);
    EGifPutScreenDesc(gif, width, height, 6, 63, shared);
    for (GifFrame const& frame : frames) {
        GraphicsControlBlock const control{0, false, 5, 2};
        GifByteType extension[4];
        EGifGCBToExtension(&control, extension);
        EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, extension);
        EGifPutImageDesc(gif, frame.left, frame.top, frame.width, frame.height, frame.interlaced,
                         frame.own_palette ? own : nullptr);
        std::vector<int> rows;
        if (frame.interlaced) {
            for (auto const& [first, step] :
                 std::vector<std::pair<int, int>>{{0, 8}, {4, 8}, {2, 4}, {1, 2}}) {
                for (int y = first; y < frame.height; y += step) {
                    rows.push_back(y);
                }
            }
        } else {
            for (int y = 0; y < frame.height; ++y) {
                rows.push_back(y);
            }
        }
        for (int const y : rows) {
            Bytes row;
            for (int x = 0; x < frame.width; ++x) {
                row.push_back(static_cast<std::uint8_t>((y * frame.width + x) % 60));
            }
            EGifPutLine(gif, row.data(), frame.width);
        }
    }
    EGifCloseFile(gif, &error);
    GifFreeMapObject(shared);
    GifFreeMapObject(own);
    return file;
}

void append_colour(Values& values, int number, int blue)
{
    values.insert(values.end(), {3.0 * number, 255.0 - number, static_cast<double>(blue + number)});
}

TEST_F(Gif, GivesTheColoursOfItsPalette)
{
    for (bool const interlaced : {false, true}) {
        for (bool const own : {false, true}) {
            DecodedFile const decoded =
                read(gif_file(5, 9, {{.interlaced = interlaced, .own_palette = own}}));
            Values expected;
            for (int i = 0; i < 45; ++i) {
                append_colour(expected, i, own ? 100 : 0);
            }
            EXPECT_EQ(values_of(decoded.picture), expected);
            EXPECT_TRUE(decoded.palette);
            EXPECT_EQ(decoded.format, "GIF");
            EXPECT_EQ(decoded.notes, Notes{});
        }
    }
}

TEST_F(Gif, HasItsFrameWhereItIsOnTheCanvas)
{
    DecodedFile const decoded = read(gif_file(4, 3, {{.left = 1, .top = 1, .width = 2, .height = 1}}));
    Values expected;
    for (int i = 0; i < 12; ++i) {
        append_colour(expected, i == 5 ? 0 : i == 6 ? 1 : 63, 0);
    }
    EXPECT_EQ(values_of(decoded.picture), expected) << "on the background";
    EXPECT_EQ(read(gif_file(2, 2, {{.left = 1, .top = 2}})).picture.width, 6) << "beyond the canvas";
}

TEST_F(Gif, OfSeveralPicturesGivesTheFirst)
{
    DecodedFile const decoded = read(gif_file(2, 1, {{.width = 2, .height = 1}, {.width = 1, .height = 1}}));
    EXPECT_EQ(values_of(decoded.picture), (Values{0, 255, 0, 3, 254, 1}));
    EXPECT_EQ(decoded.notes, (Notes{"it has several pictures, of which this is the first"}));
}

TEST_F(Gif, ThatIsTooLargeIsRefusedByItsHeader)
{
    EXPECT_EQ(refusal(gif_file(40, 30, {{.width = 40, .height = 30}}), 1199),
              "its size of 40 x 30 is more than 1199 texels");
    EXPECT_EQ(refusal(gif_file(40, 30, {{.width = 40, .height = 30}}), 1200), "");
}

TEST_F(Gif, ThatIsCutShortIsRefused)
{
    constexpr std::size_t kBehindTheTexels = 4; // the end of the codes, of the blocks and of the file
    expect_no_piece_is_taken(gif_file(5, 9, {{}}), kBehindTheTexels);
}

TEST_F(Gif, ThatIsDamagedEndsTheSameWayEachTime)
{
    expect_same_end_of_damage(gif_file(5, 9, {{}}));
    expect_same_end_of_damage(gif_file(9, 9, {{.left = 2, .interlaced = true, .own_palette = true}}));
}

} // namespace
} // namespace umbrixlib::test
