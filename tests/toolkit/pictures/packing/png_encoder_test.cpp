// SPDX-License-Identifier: MIT
/// Files that are written, taken apart: chunks, check sums, one zlib stream, filters, texels.
#include "decoding.h"
#include "inflated.h"
#include "toolkit/pictures/encoder.h"

#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <omp.h>
#include <png.h>
#include <random>
#include <set>

namespace umbrixlib::test {
namespace {

using toolkit::make_picture;

/// What a picture shows; each is packed in another way.
enum class Content { kFlat, kNoise, kSmooth, kRepeated, kMixed };

unsigned sample_of(Content content, std::size_t x, std::size_t y, std::mt19937& random)
{
    switch (content) {
    case Content::kFlat:
        return 0x8080;
    case Content::kNoise:
        return static_cast<unsigned>(random());
    case Content::kSmooth:
        return static_cast<unsigned>(40 * x + x * y / 64 + random() % 300);
    case Content::kRepeated:
        return static_cast<unsigned>(x % 40 * (x % 40) * 997 + y % 3);
    default:
        return sample_of(static_cast<Content>(y / 16 % 4), x, y, random);
    }
}

Picture picture_of(Content content, int width, int height, int channels, SampleType type)
{
    Picture picture = make_picture(width, height, channels, type);
    std::mt19937 random(1);
    std::size_t const row = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i < row * static_cast<std::size_t>(height); ++i) {
        unsigned const sample =
            sample_of(content, i % row / static_cast<std::size_t>(channels), i / row, random);
        if (type == SampleType::kUint8) {
            picture.bytes[i] = static_cast<std::uint8_t>(sample >> 8U);
        } else {
            picture.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(sample);
        }
    }
    return picture;
}

struct Chunk {
    std::string name;
    Bytes content;
};

std::uint32_t number_at(Bytes const& bytes, std::size_t at)
{
    return std::uint32_t{bytes[at]} << 24U | std::uint32_t{bytes[at + 1]} << 16U |
           std::uint32_t{bytes[at + 2]} << 8U | bytes[at + 3];
}

/// All chunks, to the last byte of the file.
std::vector<Chunk> chunks_of(Bytes const& file)
{
    EXPECT_EQ(Bytes(file.begin(), file.begin() + 8), (Bytes{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'}));
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at < file.size();) {
        std::size_t const size = number_at(file, at);
        EXPECT_LE(at + 12 + size, file.size());
        auto const begin = file.begin() + static_cast<std::ptrdiff_t>(at);
        Bytes const checked(begin + 4, begin + 8 + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(crc32(0, checked.data(), static_cast<uInt>(checked.size())),
                  number_at(file, at + 8 + size));
        chunks.push_back({{checked.begin(), checked.begin() + 4}, {checked.begin() + 4, checked.end()}});
        at += 12 + size;
    }
    return chunks;
}

int paeth(int left, int above, int above_left)
{
    int const sum = left + above - above_left;
    int const distances[] = {std::abs(sum - left), std::abs(sum - above), std::abs(sum - above_left)};
    int const least = std::ranges::min(distances);
    return least == distances[0] ? left : least == distances[1] ? above : above_left;
}

/// The rows of a file in the order of a picture in memory.
Bytes texels_of(Bytes const& filtered, std::size_t row_size, std::size_t rows, std::size_t step)
{
    EXPECT_EQ(filtered.size(), rows * (row_size + 1));
    Bytes texels(rows * row_size);
    Bytes above(row_size);
    for (std::size_t y = 0; y < rows; ++y) {
        std::uint8_t const* const from = &filtered[y * (row_size + 1)];
        std::uint8_t* const to = &texels[(rows - 1 - y) * row_size];
        EXPECT_LE(from[0], 4);
        for (std::size_t i = 0; i < row_size; ++i) {
            int const left = i < step ? 0 : to[i - step];
            int const above_left = i < step ? 0 : above[i - step];
            int const guesses[] = {0, left, above[i], (left + above[i]) / 2,
                                   paeth(left, above[i], above_left)};
            to[i] = static_cast<std::uint8_t>(from[i + 1] + guesses[from[0] % 5]);
        }
        above.assign(to, to + row_size);
    }
    return texels;
}

class PngEncoder : public Decoding {
protected:
    Bytes written(Picture const& picture) const
    {
        EXPECT_TRUE(toolkit::png_encoder().encode(folder_ / "a.png", picture));
        std::ifstream in(folder_ / "a.png", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    void expect_sound(Picture const& picture) const
    {
        std::vector<Chunk> const chunks = chunks_of(written(picture));
        ASSERT_EQ(chunks.front().name, "IHDR");
        EXPECT_EQ(number_at(chunks.front().content, 0), static_cast<std::uint32_t>(picture.width));
        EXPECT_EQ(number_at(chunks.front().content, 4), static_cast<std::uint32_t>(picture.height));
        EXPECT_EQ(chunks.back().name, "IEND");
        Bytes packed;
        for (Chunk const& chunk : chunks) {
            if (chunk.name == "IDAT") {
                packed.insert(packed.end(), chunk.content.begin(), chunk.content.end());
            }
        }
        Inflated const stream = inflated(packed, 15);
        ASSERT_TRUE(stream.ended);
        EXPECT_EQ(stream.left, 0U);
        std::size_t const sample = toolkit::sample_size(picture.type);
        auto const rows = static_cast<std::size_t>(picture.height);
        Bytes texels = texels_of(stream.bytes, picture.bytes.size() / rows, rows,
                                 sample * static_cast<std::size_t>(picture.channels));
        for (std::size_t i = 0; sample == 2 && i < texels.size(); i += 2) {
            auto const number = static_cast<std::uint16_t>(texels[i] << 8U | texels[i + 1]);
            std::memcpy(&texels[i], &number, sizeof number);
        }
        EXPECT_TRUE(texels == picture.bytes);
        EXPECT_TRUE(DecodedImage(folder_ / "a.png", "input", 1e8).picture().bytes == picture.bytes)
            << "as libpng reads it";
    }
};

TEST_F(PngEncoder, WritesFilesThatAreSoundToTheLastBit)
{
    for (Content const content :
         {Content::kFlat, Content::kNoise, Content::kSmooth, Content::kRepeated, Content::kMixed}) {
        for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
            for (int const channels : {1, 2, 3, 4}) {
                SCOPED_TRACE(testing::Message() << static_cast<int>(content) << ' ' << channels);
                expect_sound(picture_of(content, 397, 301, channels, type));
            }
        }
    }
}

TEST_F(PngEncoder, TakesEachShape)
{
    expect_sound(picture_of(Content::kNoise, 1, 1, 1, SampleType::kUint8));
    expect_sound(picture_of(Content::kNoise, 1, 1, 4, SampleType::kUint16));
    expect_sound(picture_of(Content::kSmooth, 65535, 3, 4, SampleType::kUint16)); // a row is a piece
    expect_sound(picture_of(Content::kSmooth, 1, 65535, 3, SampleType::kUint8));
    expect_sound(picture_of(Content::kMixed, 4096, 8300, 1, SampleType::kUint8)); // more than is held back
}

TEST_F(PngEncoder, WritesTheSameBytesWithAnyNumberOfThreads)
{
    int const usual = omp_get_max_threads();
    Picture const picture = picture_of(Content::kMixed, 1000, 1500, 3, SampleType::kUint16);
    omp_set_num_threads(1);
    Bytes const one = written(picture);
    for (int const threads : {2, 3, 7}) {
        omp_set_num_threads(threads);
        EXPECT_TRUE(written(picture) == one) << threads;
    }
    omp_set_num_threads(usual);
}

TEST_F(PngEncoder, PacksWhatRepeatsItselfAndWhatDoesNot)
{
    auto const share = [&](Content content) {
        Picture const picture = picture_of(content, 512, 512, 3, SampleType::kUint8);
        return static_cast<double>(written(picture).size()) / static_cast<double>(picture.bytes.size());
    };
    EXPECT_LT(share(Content::kFlat), 0.004);
    EXPECT_LT(share(Content::kRepeated), 0.01);
    EXPECT_LT(share(Content::kSmooth), 0.35); // 2.3 bits of noise
    EXPECT_LT(share(Content::kNoise), 1.001);
}

/// What libpng makes of a picture if nothing is asked for.
std::size_t size_by_libpng(Picture const& picture)
{
    constexpr int kColourTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                                    PNG_COLOR_TYPE_RGB_ALPHA};
    std::size_t size = 0;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &size,
        [](png_structp to, png_bytep, png_size_t count) {
            *static_cast<std::size_t*>(png_get_io_ptr(to)) += count;
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 static_cast<int>(8 * toolkit::sample_size(picture.type)), kColourTypes[picture.channels - 1],
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (picture.type == SampleType::kUint16 && std::endian::native == std::endian::little) {
        png_set_swap(png);
    }
    std::size_t const row = picture.bytes.size() / static_cast<std::size_t>(picture.height);
    for (std::size_t y = static_cast<std::size_t>(picture.height); y > 0; --y) {
        png_write_row(png, &picture.bytes[(y - 1) * row]);
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return size;
}

TEST_F(PngEncoder, MakesFilesAsSmallAsLibpngDoes)
{
    auto const expect_small = [&](Picture const& picture, std::string const& name, double more = 1.03) {
        auto const of_pieces = static_cast<double>(picture.bytes.size()) / 2048; // headers
        EXPECT_LE(static_cast<double>(written(picture).size()),
                  more * static_cast<double>(size_by_libpng(picture)) + of_pieces)
            << name;
    };
    for (auto const& each : std::filesystem::directory_iterator(UMBRIX_EXAMPLES "/textures")) {
        expect_small(DecodedImage(each.path(), "input", 1e8).picture(), each.path().filename());
    }
    for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
        for (Content const content : {Content::kNoise, Content::kSmooth, Content::kRepeated}) {
            expect_small(picture_of(content, 700, 500, 3, type),
                         "content " + std::to_string(static_cast<int>(content)));
        }
        expect_small(picture_of(Content::kMixed, 700, 500, 3, type), "stripes of all contents", 1.1);
    }
}

TEST_F(PngEncoder, ChoosesAFilterForEachRowWhereThatPays)
{
    Picture const cobbles =
        DecodedImage(UMBRIX_EXAMPLES "/textures/cobbles_height.png", "input", 1e8).picture();
    std::vector<Chunk> const chunks = chunks_of(written(cobbles));
    Bytes packed;
    for (Chunk const& chunk : chunks) {
        if (chunk.name == "IDAT") {
            packed.insert(packed.end(), chunk.content.begin(), chunk.content.end());
        }
    }
    Bytes const rows = inflated(packed, 15).bytes;
    std::set<std::uint8_t> filters;
    for (std::size_t at = 0; at < rows.size(); at += static_cast<std::size_t>(cobbles.width) + 1) {
        filters.insert(rows[at]);
    }
    EXPECT_GT(filters.size(), 1U);
    expect_sound(cobbles);
}

TEST_F(PngEncoder, SavesTimeOrBytesAsAskedFor)
{
    auto const size = [&](Picture const& picture, toolkit::Compression compression) {
        std::filesystem::path const file = folder_ / "c.png";
        EXPECT_TRUE(toolkit::png_encoder().encode_as(file, picture, compression));
        EXPECT_TRUE(toolkit::png_encoder().holds(file, picture).value_or(false));
        EXPECT_TRUE(DecodedImage(file, "input", 1e8).picture().bytes == picture.bytes);
        return std::filesystem::file_size(file);
    };
    using enum toolkit::Compression;
    // Bricks have no matches worth having.
    for (auto const& [name, differ] : {std::pair("cobbles_height.png", true), {"bricks_normal.png", false}}) {
        Picture const picture =
            DecodedImage(std::filesystem::path(UMBRIX_EXAMPLES "/textures") / name, "input", 1e8).picture();
        std::uintmax_t const usual = size(picture, kDefault);
        EXPECT_EQ(usual, written(picture).size());
        EXPECT_EQ(size(picture, kSmall) < usual, differ) << name;
        EXPECT_EQ(usual < size(picture, kFast), differ) << name;
    }
    for (Content const content :
         {Content::kFlat, Content::kNoise, Content::kSmooth, Content::kRepeated, Content::kMixed}) {
        for (auto const compression : {kFast, kSmall}) {
            size(picture_of(content, 397, 301, 3, SampleType::kUint16), compression);
        }
    }
}

TEST_F(PngEncoder, RefusesFloatsAndFilesThatCannotBeWritten)
{
    for (SampleType const type : {SampleType::kHalf, SampleType::kFloat}) {
        EXPECT_FALSE(toolkit::png_encoder().encode(folder_ / "b.png", make_picture(2, 2, 3, type)));
    }
    EXPECT_FALSE(toolkit::png_encoder().encode("/nowhere/b.png", make_picture(2, 2, 3)));
    EXPECT_FALSE(toolkit::png_encoder().encode("/dev/full", make_picture(2, 2, 3)));
}

} // namespace
} // namespace umbrixlib::test
