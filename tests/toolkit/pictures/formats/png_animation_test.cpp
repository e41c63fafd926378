// SPDX-License-Identifier: MIT
/// Animated PNG: each frame taken out of it is the picture that it was made of.
#include "decoding.h"
#include "toolkit/pictures/png_bytes.h"

#include <gtest/gtest.h>

namespace umbrixlib::test {
namespace {

struct Chunk {
    std::string name;
    Bytes content;
};

std::size_t number_at(Bytes const& bytes, std::size_t at, std::size_t size)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        number = number << 8U | bytes.at(at + i);
    }
    return number;
}

/// All chunks, whose check sums have to be right.
std::vector<Chunk> chunks_of(Bytes const& file)
{
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at < file.size();) {
        std::size_t const size = number_at(file, at, 4);
        auto const from = file.begin() + static_cast<std::ptrdiff_t>(at);
        auto const to = from + static_cast<std::ptrdiff_t>(8 + size);
        chunks.push_back({{from + 4, from + 8}, {from + 8, to}});
        EXPECT_EQ(number_at(file, at + 8 + size, 4), png_detail::crc_of({from + 4, to}));
        at += size + 12;
    }
    return chunks;
}

Picture frame(int number, int channels, SampleType type)
{
    Picture picture = toolkit::make_picture(67, 43, channels, type);
    for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
        picture.bytes[i] = static_cast<std::uint8_t>(i * static_cast<std::size_t>(number + 3) / 7);
    }
    return picture;
}

class PngAnimation : public Decoding {};

TEST_F(PngAnimation, HoldsItsFrames)
{
    for (int const channels : {1, 3, 4}) {
        for (SampleType const type : {SampleType::kUint8, SampleType::kUint16}) {
            std::vector<Picture> frames;
            for (int i = 0; i < 3; ++i) {
                frames.push_back(frame(i, channels, type));
            }
            frames.front().attributes = {{"umbrix", "a test"}};
            Bytes const file = toolkit::animated_png_bytes(frames, 0.25, toolkit::Compression::kDefault);
            DecodedImage const shown = decoded(file, "a.png");
            EXPECT_EQ(shown.picture().bytes, frames[0].bytes);
            EXPECT_EQ(shown.picture().attributes, frames[0].attributes);

            Bytes head(file.begin(), file.begin() + 8);
            std::vector<Bytes> each;
            std::size_t number = 0;
            for (Chunk const& chunk : chunks_of(file)) {
                if (chunk.name == "IHDR") {
                    png_detail::append_chunk(head, "IHDR", chunk.content);
                } else if (chunk.name == "acTL") {
                    EXPECT_EQ(number_at(chunk.content, 0, 4), 3U);
                    EXPECT_EQ(number_at(chunk.content, 4, 4), 0U);
                    EXPECT_TRUE(each.empty());
                } else if (chunk.name == "fcTL") {
                    ASSERT_EQ(chunk.content.size(), 26U);
                    EXPECT_EQ(number_at(chunk.content, 0, 4), number++);
                    EXPECT_EQ(number_at(chunk.content, 4, 4), 67U);
                    EXPECT_EQ(number_at(chunk.content, 8, 4), 43U);
                    EXPECT_EQ(number_at(chunk.content, 20, 2) * 1000 / number_at(chunk.content, 22, 2), 250U);
                    each.push_back(head);
                } else if (chunk.name == "IDAT") {
                    ASSERT_EQ(each.size(), 1U);
                    png_detail::append_chunk(each.back(), "IDAT", chunk.content);
                } else if (chunk.name == "fdAT") {
                    ASSERT_GT(each.size(), 1U);
                    EXPECT_EQ(number_at(chunk.content, 0, 4), number++);
                    png_detail::append_chunk(each.back(), "IDAT",
                                             {chunk.content.begin() + 4, chunk.content.end()});
                }
            }
            EXPECT_EQ(chunks_of(file).back().name, "IEND");
            ASSERT_EQ(each.size(), frames.size());
            for (std::size_t i = 0; i < each.size(); ++i) {
                png_detail::append_chunk(each[i], "IEND", {});
                EXPECT_EQ(decoded(each[i], "frame.png").picture().bytes, frames[i].bytes) << i;
            }
        }
    }
}

} // namespace
} // namespace umbrixlib::test
