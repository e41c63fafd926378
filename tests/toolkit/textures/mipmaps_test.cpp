// SPDX-License-Identifier: MIT
/// Smaller levels: the mean over the area that a texel covers.
#include "toolkit/textures/mipmaps.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

TextureLevel random_level(int width, int height, int channels)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<float> any(-1.0f, 1.0f);
    TextureLevel level{width, height, channels, {}};
    level.texels.resize(level.row_size() * static_cast<std::size_t>(height));
    std::ranges::generate(level.texels, [&] { return any(random); });
    return level;
}

/// How much of a texel that is 1 wide lies between two places.
double overlap(int texel, double from, double to)
{
    return std::max(0.0, std::min(to, texel + 1.0) - std::max(from, static_cast<double>(texel)));
}

/// By the areas themselves.
double mean_over(TextureLevel const& level, int x, int y, std::size_t channel)
{
    double const wide = static_cast<double>(level.width) / std::max(level.width / 2, 1);
    double const high = static_cast<double>(level.height) / std::max(level.height / 2, 1);
    double sum = 0.0;
    for (int row = 0; row < level.height; ++row) {
        for (int column = 0; column < level.width; ++column) {
            double const area =
                overlap(column, x * wide, (x + 1) * wide) * overlap(row, y * high, (y + 1) * high);
            std::size_t const at = static_cast<std::size_t>(row) * level.row_size() +
                                   static_cast<std::size_t>(column * level.channels) + channel;
            sum += area * static_cast<double>(level.texels[at]);
        }
    }
    return sum / (wide * high);
}

TEST(Mipmaps, AreTheMeansOverAreas)
{
    for (auto const& [width, height] : {std::pair{8, 4}, {7, 5}, {1, 6}, {9, 1}, {3, 3}, {2, 13}, {1, 1}}) {
        TextureLevel const level = random_level(width, height, 3);
        TextureLevel const smaller = smaller_level(level);
        ASSERT_EQ(smaller.width, std::max(width / 2, 1));
        ASSERT_EQ(smaller.height, std::max(height / 2, 1));
        ASSERT_EQ(smaller.channels, 3);
        for (int y = 0; y < smaller.height; ++y) {
            for (int x = 0; x < smaller.width; ++x) {
                for (std::size_t c = 0; c < 3; ++c) {
                    std::size_t const at = static_cast<std::size_t>(y) * smaller.row_size() +
                                           static_cast<std::size_t>(x) * 3 + c;
                    EXPECT_NEAR(static_cast<double>(smaller.texels[at]), mean_over(level, x, y, c), 1e-6)
                        << width << " x " << height << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST(Mipmaps, GoDownToOneTexel)
{
    EXPECT_EQ(all_levels(1, 1), 1);
    EXPECT_EQ(all_levels(2, 1), 2);
    EXPECT_EQ(all_levels(1024, 1024), 11);
    EXPECT_EQ(all_levels(1023, 5), 10);
    TextureLevel level = random_level(37, 12, 1);
    for (int i = 1; i < all_levels(37, 12); ++i) {
        level = smaller_level(level);
    }
    EXPECT_EQ(level.width, 1);
    EXPECT_EQ(level.height, 1);
}

TEST(Mipmaps, HaveVectorsOfUnitLength)
{
    TextureLevel level = random_level(6, 6, 4);
    std::fill_n(level.texels.begin(), 3, 0.0f);
    float const alpha = level.texels[7];
    level = with_unit_vectors(level);
    for (std::size_t i = 0; i < 36; ++i) {
        float const* const vector = &level.texels[4 * i];
        EXPECT_NEAR(std::hypot(vector[0], vector[1], vector[2]), 1.0f, 1e-6f);
    }
    EXPECT_EQ(level.texels[2], 1.0f); // what has no direction points straight up
    EXPECT_EQ(level.texels[7], alpha);
}

TEST(Mipmaps, BeginWithThePictureFromTheTop)
{
    Picture picture = make_picture(1, 2, 3);
    picture.bytes = {0, 51, 255, 255, 255, 0}; // the bottom row first
    EXPECT_EQ(first_level(picture).texels, (std::vector<float>{1.0f, 1.0f, 0.0f, 0.0f, 0.2f, 1.0f}));
    picture.kind = PictureKind::kNormals;
    EXPECT_EQ(first_level(picture).texels, (std::vector<float>{1.0f, 1.0f, -1.0f, -1.0f, -0.6f, 1.0f}));
}

TEST(Mipmaps, AreTheSameWithAnyNumberOfThreads)
{
    TextureLevel const level = random_level(301, 203, 4);
    std::vector<float> const expected = smaller_level(level).texels;
    int const all = omp_get_max_threads();
    for (int const threads : {1, 2, 5}) {
        omp_set_num_threads(threads);
        EXPECT_EQ(smaller_level(level).texels, expected);
    }
    omp_set_num_threads(all);
}

} // namespace
} // namespace umbrixlib::test
