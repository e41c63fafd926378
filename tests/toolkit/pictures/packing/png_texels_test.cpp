// SPDX-License-Identifier: MIT
/// PNG files of whole samples, which are not read by libpng.
#include "toolkit/pictures/formats/png/png_texels.h"

#include "decoding.h"
#include "toolkit/pictures/formats/png/png_filters.h"

#include <functional>
#include <numeric>
#include <optional>
#include <random>
#include <zlib.h>

namespace umbrixlib::test {
namespace {

/// A file of random texels.
struct PngFile {
    int width;
    int height;
    int channels;
    SampleType type = SampleType::kUint8;
    std::size_t most_in_chunk = SIZE_MAX;

    std::size_t step() const { return toolkit::sample_size(type) * static_cast<std::size_t>(channels); }
    std::size_t row_bytes() const { return step() * static_cast<std::size_t>(width); }
};

/// Rows of smooth noise with the high byte of a sample first, the top one first.
std::vector<Bytes> random_rows(PngFile const& file)
{
    std::mt19937 random(static_cast<unsigned>(file.width * 7 + file.height));
    std::vector<Bytes> rows(static_cast<std::size_t>(file.height), Bytes(file.row_bytes()));
    for (std::size_t y = 0; y < rows.size(); ++y) {
        for (std::size_t i = 0; i < rows[y].size(); ++i) {
            rows[y][i] = static_cast<std::uint8_t>(y * 3 + i + random() % 4 * (random() % 9 == 0 ? 60 : 1));
        }
    }
    return rows;
}

/// The same, filtered.
/// @param filter_of Number of the filter of a row.
Bytes filtered(std::vector<Bytes> const& rows, std::size_t step,
               std::function<unsigned(std::size_t)> const& filter_of)
{
    Bytes all;
    Bytes above(rows.front().size());
    for (std::size_t y = 0; y < rows.size(); ++y) {
        unsigned const filter = filter_of(y);
        all.push_back(static_cast<std::uint8_t>(filter));
        Bytes made(rows[y].size());
        toolkit::filter_row(static_cast<toolkit::PngFilter>(filter), rows[y], above.data(), step,
                            made.data());
        all.insert(all.end(), made.begin(), made.end());
        above = rows[y];
    }
    return all;
}

Bytes zlib_stream(Bytes const& bytes)
{
    uLongf size = compressBound(bytes.size());
    Bytes packed(size);
    EXPECT_EQ(compress2(packed.data(), &size, bytes.data(), bytes.size(), 6), Z_OK);
    packed.resize(size);
    return packed;
}

Bytes png_around(Bytes const& stream, PngFile const& file)
{
    constexpr PngColour kColours[] = {PngColour::kGrey, PngColour::kGreyAlpha, PngColour::kRgb,
                                      PngColour::kRgba};
    Bytes header;
    png_detail::append_big_endian(header, static_cast<std::uint32_t>(file.width));
    png_detail::append_big_endian(header, static_cast<std::uint32_t>(file.height));
    auto const bits = static_cast<std::uint8_t>(8 * toolkit::sample_size(file.type));
    header.insert(header.end(), {bits, static_cast<std::uint8_t>(kColours[file.channels - 1]), 0, 0, 0});
    Bytes png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    png_detail::append_chunk(png, "IHDR", header);
    for (std::size_t at = 0; at < stream.size();) {
        auto const end = stream.begin() +
                         static_cast<std::ptrdiff_t>(at + std::min(file.most_in_chunk, stream.size() - at));
        png_detail::append_chunk(png, "IDAT", Bytes(stream.begin() + static_cast<std::ptrdiff_t>(at), end));
        at = static_cast<std::size_t>(end - stream.begin());
    }
    png_detail::append_chunk(png, "IEND", {});
    return png;
}

constexpr std::size_t kBeforeData =
    8 + 25 + 8; ///< Signature, header, and the head of the first chunk of texels.

class PngTexels : public Decoding {
protected:
    /// What is read without libpng; empty if something is odd.
    std::optional<Picture> texels(Bytes const& png, PngFile const& file) const
    {
        write_file(folder_ / "x.png", png);
        toolkit::SourceFile source(folder_ / "x.png", "input", kMostTexels);
        source.skip(kBeforeData);
        std::size_t const length =
            std::accumulate(png.begin() + kBeforeData - 8, png.begin() + kBeforeData - 4, std::size_t{0},
                            [](std::size_t sum, std::uint8_t byte) { return sum * 256 + byte; });
        Picture picture = toolkit::make_picture(file.width, file.height, file.channels, file.type);
        return toolkit::read_png_texels(source, length, picture) ? std::optional(picture) : std::nullopt;
    }

    /// As a picture has them: the bottom row first, samples in the machine's order.
    static Numbers samples(std::vector<Bytes> const& rows, PngFile const& file)
    {
        Numbers all;
        for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
            for (std::size_t i = 0; i < row->size(); ++i) {
                bool const is_short = file.type == SampleType::kUint16;
                all.push_back(is_short ? (*row)[i] * 256 + (*row)[i + 1] : (*row)[i]);
                i += is_short ? 1 : 0;
            }
        }
        return all;
    }

    static Numbers samples(Picture const& picture)
    {
        return picture.type == SampleType::kUint16 ? shorts_of(picture) : bytes_of(picture);
    }
};

TEST_F(PngTexels, AreThoseThatWereFilteredAndPacked)
{
    std::mt19937 random(5);
    for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
        for (int channels = 1; channels <= 4; ++channels) {
            for (auto const& [width, height] : {std::pair(1, 1), {7, 5}, {33, 300}, {250, 70}}) {
                PngFile const file{width, height, channels, type, width == 33 ? std::size_t{50} : SIZE_MAX};
                std::vector<Bytes> const rows = random_rows(file);
                Bytes const packed =
                    zlib_stream(filtered(rows, file.step(), [&](std::size_t) { return random() % 5; }));
                auto const read = texels(png_around(packed, file), file);
                ASSERT_TRUE(read) << width << ' ' << channels;
                EXPECT_EQ(samples(*read), samples(rows, file)) << width << ' ' << channels;
                EXPECT_EQ(samples(decoded(png_around(packed, file), "x.png").picture()), samples(rows, file));
            }
        }
    }
}

TEST_F(PngTexels, WithEachFilterInAllRows)
{
    PngFile const file{40, 200, 3};
    std::vector<Bytes> const rows = random_rows(file);
    for (unsigned filter = 0; filter < 5; ++filter) {
        auto const read = texels(
            png_around(zlib_stream(filtered(rows, 3, [=](std::size_t) { return filter; })), file), file);
        ASSERT_TRUE(read) << filter;
        EXPECT_EQ(samples(*read), samples(rows, file)) << filter;
    }
}

TEST_F(PngTexels, AreNotTakenFromAStreamThatIsOdd)
{
    PngFile const file{20, 10, 3};
    std::vector<Bytes> const rows = random_rows(file);
    Bytes const right = filtered(rows, 3, [](std::size_t y) { return y % 5; });
    ASSERT_TRUE(texels(png_around(zlib_stream(right), file), file));

    Bytes longer = right;
    longer.insert(longer.end(), 61, 0);
    Bytes shorter = right;
    shorter.pop_back();
    Bytes no_filter = right;
    no_filter[61 * 4] = 5;
    for (Bytes const& wrong : {longer, shorter, no_filter}) {
        EXPECT_FALSE(texels(png_around(zlib_stream(wrong), file), file)) << wrong.size();
    }
    Bytes const stream = zlib_stream(right);
    for (std::size_t i = 0; i < stream.size(); ++i) { // also its head and its check sum
        for (unsigned bit = 0; bit < 8; bit += 3) {
            Bytes damaged = stream;
            damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ 1U << bit);
            Bytes unpacked(right.size());
            uLongf size = unpacked.size();
            bool const zlib_takes_it =
                uncompress(unpacked.data(), &size, damaged.data(), damaged.size()) == Z_OK;
            auto const read = texels(png_around(damaged, file), file);
            // A check sum can be right by chance, and libdeflate asks less of codes that are not used.
            EXPECT_TRUE(!read || zlib_takes_it || samples(*read) == samples(rows, file)) << i << ' ' << bit;
        }
    }
    Bytes behind = stream;
    behind.push_back(0);
    EXPECT_FALSE(texels(png_around(behind, file), file));
}

TEST_F(PngTexels, AreNotTakenFromAFileThatIsDamaged)
{
    PngFile const file{20, 10, 3, SampleType::kUint8, 40};
    Bytes const png =
        png_around(zlib_stream(filtered(random_rows(file), 3, [](std::size_t) { return 4; })), file);
    constexpr std::size_t kEnd = 12; // length, name and check sum of the last chunk, which nothing looks at
    for (std::size_t i = kBeforeData; i < png.size() - kEnd; ++i) {
        Bytes damaged = png;
        damaged[i] ^= 4U;
        EXPECT_FALSE(texels(damaged, file)) << i;
        damaged.resize(i);
        EXPECT_FALSE(texels(damaged, file)) << i;
    }
}

TEST_F(PngTexels, LeaveToLibpngWhatItTakesNevertheless)
{
    PngFile const file{20, 10, 3};
    std::vector<Bytes> const rows = random_rows(file);
    Bytes longer = filtered(rows, 3, [](std::size_t) { return 2; });
    longer.insert(longer.end(), 61, 0);
    EXPECT_EQ(samples(decoded(png_around(zlib_stream(longer), file), "x.png").picture()),
              samples(rows, file));
}

} // namespace
} // namespace umbrixlib::test
