// SPDX-License-Identifier: MIT
/// Textures of pictures: levels, edges of blocks, samples, the same bytes everywhere.
#include "toolkit/textures/texture.h"

#include "every_target.h"
#include "toolkit/pictures/formats/textures/block_texels.h"
#include "toolkit/textures/mode_six.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <omp.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

Picture random_picture(int width, int height, int channels, PictureKind kind)
{
    std::mt19937 random(21);
    std::uniform_int_distribution<int> any(0, 255);
    Picture picture = make_picture(width, height, channels);
    for (std::uint8_t& each : picture.bytes) {
        each = static_cast<std::uint8_t>(any(random));
    }
    picture.kind = kind;
    return picture;
}

TEST(Textures, HaveTheSizeOfTheirForm)
{
    struct Row {
        TextureFormat format;
        int channels;
        std::vector<std::size_t> sizes; ///< Of the levels of 9 x 5, 4 x 2, 2 x 1 and 1 x 1 texels.
    };
    for (Row const& row :
         {Row{TextureFormat::kBc4, 1, {48, 8, 8, 8}}, Row{TextureFormat::kBc5, 3, {96, 16, 16, 16}},
          Row{TextureFormat::kBc7, 3, {96, 16, 16, 16}}, Row{TextureFormat::k8, 1, {45, 8, 2, 1}},
          Row{TextureFormat::k8, 3, {180, 32, 8, 4}}, Row{TextureFormat::k16, 4, {360, 64, 16, 8}},
          Row{TextureFormat::kHalf, 1, {90, 16, 4, 2}}}) {
        auto const texture =
            make_texture(random_picture(9, 5, row.channels, PictureKind::kUnknown), row.format, kAllLevels);
        ASSERT_TRUE(texture);
        std::vector<std::size_t> sizes;
        for (auto const& level : texture->levels) {
            sizes.push_back(level.size());
        }
        EXPECT_EQ(sizes, row.sizes) << texture->form.name;
        EXPECT_EQ(make_texture(random_picture(9, 5, row.channels, PictureKind::kUnknown), row.format, 2)
                      ->levels.size(),
                  2U);
    }
}

TEST(Textures, RepeatTheLastTexelsInBlocks)
{
    // One texel of a picture fills its block: it is exact, as a flat one is.
    Picture one = make_picture(1, 1, 3);
    one.bytes = {17, 201, 90};
    auto const grey = make_texture(random_picture(1, 1, 1, PictureKind::kHeights), TextureFormat::kBc4, 1);
    std::uint8_t const byte = random_picture(1, 1, 1, PictureKind::kHeights).bytes[0];
    for (std::uint8_t const texel : channel_block(grey->levels[0])) {
        EXPECT_EQ(texel, byte);
    }
    auto const texture = make_texture(one, TextureFormat::kBc7, 1);
    for (auto const& texel : read_mode_six(texture->levels[0])) {
        EXPECT_EQ(texel, (std::array<int, 4>{17, 201, 90, 255}));
    }
}

TEST(Textures, HaveTheTopRowFirst)
{
    Picture picture = make_picture(1, 2, 1);
    picture.bytes = {10, 200}; // the bottom row first
    EXPECT_EQ(make_texture(picture, TextureFormat::k8, 1)->levels[0], (std::vector<std::uint8_t>{200, 10}));
    EXPECT_EQ(make_texture(picture, TextureFormat::k16, 1)->levels[0],
              (std::vector<std::uint8_t>{200, 200, 10, 10}));
}

TEST(Textures, KeepTheSamplesOfTheLargestLevel)
{
    for (PictureKind const kind : {PictureKind::kUnknown, PictureKind::kNormals}) {
        Picture picture = make_picture(16, 16, 4);
        for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
            picture.bytes[i] = static_cast<std::uint8_t>(i * 7);
        }
        picture.kind = kind;
        EXPECT_EQ(make_texture(picture, TextureFormat::k8, kAllLevels)->levels[0],
                  upside_down(picture).bytes);
        Picture words = make_picture(256, 256, 4, SampleType::kUint16);
        for (std::size_t i = 0; i < words.samples<std::uint16_t>().size(); ++i) {
            words.samples<std::uint16_t>()[i] = static_cast<std::uint16_t>(i);
        }
        words.kind = kind;
        EXPECT_EQ(make_texture(words, TextureFormat::k16, 1)->levels[0], upside_down(words).bytes);
    }
}

TEST(Textures, StoreNormalsAsVectorsInHalfFloats)
{
    Picture flat = make_picture(2, 2, 3, SampleType::kUint16);
    for (std::size_t i = 0; i < flat.texels(); ++i) {
        auto const texel = flat.samples<std::uint16_t>().subspan(3 * i, 3);
        texel[0] = 0;
        texel[1] = 65535;
        texel[2] = 65535;
    }
    flat.kind = PictureKind::kNormals;
    auto const texture = make_texture(flat, TextureFormat::kHalf, kAllLevels);
    auto const half_at = [](std::vector<std::uint8_t> const& level, std::size_t i) {
        Half half{};
        std::memcpy(&half, &level[2 * i], 2);
        return to_float(half);
    };
    EXPECT_EQ(half_at(texture->levels[0], 0), -1.0f); // as it was
    EXPECT_EQ(half_at(texture->levels[0], 3), 1.0f);  // the alpha that it has not
    float const unit = to_float(to_half(0.57735027f));
    EXPECT_EQ(half_at(texture->levels[1], 0), -unit);
    EXPECT_EQ(half_at(texture->levels[1], 1), unit);
    EXPECT_EQ(half_at(texture->levels[1], 2), unit);
    EXPECT_EQ(half_at(texture->levels[1], 3), 1.0f);
}

TEST(Textures, CutWhatWholeNumbersDoNotHold)
{
    Picture floats = make_picture(4, 1, 1, SampleType::kFloat);
    auto const samples = floats.samples<float>();
    samples[0] = -3.0f;
    samples[1] = 0.5f;
    samples[2] = 7.0f;
    samples[3] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(make_texture(floats, TextureFormat::k8, 1)->levels[0],
              (std::vector<std::uint8_t>{0, 128, 255, 0}));
}

TEST(Textures, TellHowFarTheyAreAndStop)
{
    Picture const picture = random_picture(40, 30, 3, PictureKind::kNormals);
    RunControl whole;
    ASSERT_TRUE(make_texture(picture, TextureFormat::kBc5, kAllLevels, &whole));
    EXPECT_EQ(whole.permille(), 1000);
    RunControl stopped;
    stopped.stop();
    EXPECT_FALSE(make_texture(picture, TextureFormat::kBc5, kAllLevels, &stopped));
}

TEST(Textures, AreTheSameWithAnyNumberOfThreadsAndEveryInstructionSet)
{
    int const all = omp_get_max_threads();
    for (TextureFormat const format : {TextureFormat::kBc4, TextureFormat::kBc5, TextureFormat::kBc7,
                                       TextureFormat::k8, TextureFormat::k16, TextureFormat::kHalf}) {
        Picture const picture =
            random_picture(83, 47, format == TextureFormat::kBc4 ? 1 : 3,
                           format == TextureFormat::kBc4 ? PictureKind::kHeights : PictureKind::kNormals);
        auto const expected = make_texture(picture, format, kAllLevels)->levels;
        for (int const threads : {1, 2, 5}) {
            omp_set_num_threads(threads);
            EXPECT_EQ(make_texture(picture, format, kAllLevels)->levels, expected);
        }
        omp_set_num_threads(all);
        for_every_target([&](char const* name) {
            EXPECT_EQ(make_texture(picture, format, kAllLevels)->levels, expected) << name;
        });
    }
}

} // namespace
} // namespace umbrixlib::test
