// SPDX-License-Identifier: MIT
/// The look at a file that was written: it passes what is whole and right, and nothing else.
#include "decoding.h"
#include "toolkit/pictures/encoder.h"
#include "toolkit/pictures/formats/png/png_check.h"
#include "toolkit/pictures/formats/png/png_frame.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <omp.h>
#include <random>

namespace umbrixlib::test {
namespace {

using toolkit::make_picture;
using toolkit::png_holds;

/// Rows of noise, slopes and stripes: each is packed in another way.
Picture mixed_picture(int width, int height, int channels, SampleType type)
{
    Picture picture = make_picture(width, height, channels, type);
    picture.attributes = {{"kind", "test"}};
    std::mt19937 random(1);
    std::size_t const row = picture.bytes.size() / static_cast<std::size_t>(height);
    for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
        std::size_t const x = i % row;
        std::size_t const y = i / row;
        std::size_t const values[] = {random(), x + y / 3, x % 40 * (x % 40), x * y / 64};
        picture.bytes[i] = static_cast<std::uint8_t>(values[y / 16 % 4]);
    }
    return picture;
}

class PngCheck : public Decoding {
protected:
    Bytes written(Picture const& picture) const
    {
        EXPECT_TRUE(toolkit::png_encoder().encode(file_, picture));
        std::ifstream in(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    bool holds(Bytes const& bytes, Picture const& picture) const
    {
        write_file(file_, bytes);
        return png_holds(file_, picture);
    }

    std::filesystem::path const file_ = folder_ / "a.png";
};

TEST_F(PngCheck, PassesWhatTheEncoderWrites)
{
    for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
        for (int const channels : {1, 2, 3, 4}) {
            Picture const picture = mixed_picture(397, 301, channels, type);
            EXPECT_TRUE(holds(written(picture), picture)) << channels;
        }
        for (int const side : {1, 2, 9}) {
            Picture const picture = mixed_picture(side, side, 3, type);
            EXPECT_TRUE(holds(written(picture), picture)) << side;
        }
    }
    Picture const wide = mixed_picture(65535, 9, 4, SampleType::kUint16); // a row is a piece
    EXPECT_TRUE(holds(written(wide), wide));
}

TEST_F(PngCheck, PassesRowsWithFiltersOfTheirOwn)
{
    Picture picture = DecodedImage(UMBRIX_EXAMPLES "/textures/cobbles_height.png", "input", 1e8).picture();
    EXPECT_TRUE(holds(written(picture), picture));
    picture.bytes[77777] ^= 1;
    EXPECT_FALSE(png_holds(file_, picture));
}

TEST_F(PngCheck, PassesWithAnyNumberOfThreads)
{
    int const usual = omp_get_max_threads();
    Picture const picture = mixed_picture(1000, 1500, 3, SampleType::kUint16);
    Bytes const bytes = written(picture);
    for (int const threads : {1, 2, 3, 7}) {
        omp_set_num_threads(threads);
        EXPECT_TRUE(holds(bytes, picture)) << threads;
    }
    omp_set_num_threads(usual);
}

TEST_F(PngCheck, FailsWhenOneBitOfTheFileIsWrong)
{
    Picture const picture = mixed_picture(19, 21, 3, SampleType::kUint8);
    Bytes const bytes = written(picture);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        Bytes wrong = bytes;
        wrong[i] ^= static_cast<std::uint8_t>(1U << i % 8);
        EXPECT_FALSE(holds(wrong, picture)) << i;
    }
}

TEST_F(PngCheck, FailsWhenTheFileEndsEarlyOrLate)
{
    Picture const picture = mixed_picture(19, 21, 3, SampleType::kUint8);
    Bytes bytes = written(picture);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_FALSE(holds(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)), picture));
    }
    bytes.push_back(0);
    EXPECT_FALSE(holds(bytes, picture));
    EXPECT_FALSE(png_holds(folder_ / "nowhere.png", picture));
    EXPECT_FALSE(png_holds(folder_.path(), picture));
}

TEST_F(PngCheck, FailsWhenAnySampleIsAnother)
{
    for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
        Picture const picture = mixed_picture(300, 1200, 3, type);
        Bytes const bytes = written(picture);
        for (std::size_t i = 0; i < picture.bytes.size(); i += 1 + picture.bytes.size() / 97) {
            Picture other = picture;
            other.bytes[i] ^= 0x10;
            EXPECT_FALSE(png_holds(file_, other)) << i;
        }
    }
}

TEST_F(PngCheck, FailsForAPictureOfAnotherForm)
{
    Picture const picture = mixed_picture(24, 12, 1, SampleType::kUint16);
    Bytes const bytes = written(picture);
    Picture other = picture;
    std::swap(other.width, other.height);
    EXPECT_FALSE(holds(bytes, other));
    other = picture;
    other.type = SampleType::kUint8;
    other.channels = 2;
    EXPECT_FALSE(holds(bytes, other));
    other = picture;
    other.attributes = {{"kind", "other"}};
    EXPECT_FALSE(holds(bytes, other));
}

/// Of a sound file with the pieces of its rows, in which the check sums of chunks hold.
struct Piece {
    std::size_t at;
    std::size_t size; ///< With the head and the check sum.
};

std::vector<Piece> pieces_of(Bytes const& file, Picture const& picture)
{
    std::vector<Piece> pieces;
    std::size_t const end = file.size() - toolkit::png_end(0).size();
    for (std::size_t at = toolkit::png_start(picture).size(); at < end;) {
        std::size_t size = 12;
        for (std::size_t i = 0; i < 4; ++i) {
            size += std::size_t{file[at + i]} << (24 - 8 * i);
        }
        pieces.push_back({at, size});
        at += size;
    }
    return pieces;
}

TEST_F(PngCheck, FailsWhenPiecesAreOutOfOrderOrMissing)
{
    Picture const picture = mixed_picture(512, 1024, 3, SampleType::kUint8);
    Bytes const bytes = written(picture);
    std::vector<Piece> const pieces = pieces_of(bytes, picture);
    ASSERT_GE(pieces.size(), 4U);
    auto const at = [&](Bytes const& file, std::size_t piece) {
        return file.begin() + static_cast<std::ptrdiff_t>(pieces[piece].at);
    };
    Bytes exchanged = bytes;
    std::rotate(exchanged.begin() + (at(bytes, 1) - bytes.begin()),
                exchanged.begin() + (at(bytes, 2) - bytes.begin()),
                exchanged.begin() + (at(bytes, 3) - bytes.begin()));
    ASSERT_NE(exchanged, bytes);
    EXPECT_FALSE(holds(exchanged, picture));
    Bytes shorter(bytes.begin(), at(bytes, 1));
    shorter.insert(shorter.end(), at(bytes, 2), bytes.end());
    EXPECT_FALSE(holds(shorter, picture));
    Bytes longer(bytes.begin(), at(bytes, 2));
    longer.insert(longer.end(), at(bytes, 1), bytes.end());
    EXPECT_FALSE(holds(longer, picture));
}

/// A file of one piece, @p stream, whose check sums of chunks hold.
Bytes file_of(Picture const& picture, Bytes const& stream, std::uint32_t adler)
{
    Bytes file = toolkit::png_start(picture);
    auto const append = [&](auto const& bytes) { file.insert(file.end(), bytes.begin(), bytes.end()); };
    append(toolkit::png_piece_head(stream.size()));
    append(stream);
    append(toolkit::png_piece_tail(stream));
    append(toolkit::png_end(adler));
    return file;
}

TEST_F(PngCheck, FailsWhenTheStreamIsWrongThoughAllCheckSumsOfChunksHold)
{
    Picture const picture = make_picture(2, 1, 1);
    constexpr std::uint32_t kAdler = 0x00030001; // of three zeros
    EXPECT_TRUE(holds(file_of(picture, {0, 3, 0, 0xfc, 0xff, 0, 0, 0}, kAdler), picture));
    EXPECT_FALSE(holds(file_of(picture, {0, 3, 0, 0xfc, 0xff, 0, 0, 0}, kAdler + 1), picture))
        << "the check sum of the rows";
    EXPECT_FALSE(holds(file_of(picture, {1, 3, 0, 0xfc, 0xff, 0, 0, 0}, kAdler), picture))
        << "a last block that is not the last one";
    EXPECT_FALSE(holds(file_of(picture, {0, 2, 0, 0xfd, 0xff, 0, 0}, kAdler), picture)) << "too few bytes";
    EXPECT_FALSE(holds(file_of(picture, {0, 4, 0, 0xfb, 0xff, 0, 0, 0, 0}, kAdler), picture)) << "too many";
    EXPECT_FALSE(holds(file_of(picture, {0, 3, 0, 0xfc, 0xff, 5, 0, 0}, kAdler), picture)) << "no filter";
    EXPECT_FALSE(holds(file_of(picture, {}, kAdler), picture));
    EXPECT_FALSE(holds(file_of(picture, {7, 7, 7}, kAdler), picture)) << "no Deflate";
}

} // namespace
} // namespace umbrixlib::test
