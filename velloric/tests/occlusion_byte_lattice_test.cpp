// SPDX-License-Identifier: MIT

/// Which maps are compared in 8-bit levels. That the results do not show it is the business of the kernel's
/// own tests.

#include "occlusion/byte_lattice.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <vector>

namespace {

using velloric::ByteLattice;

/// A map of 4 rows.
std::optional<ByteLattice> lattice_of(std::vector<float> const& heights)
{
    umbrixlib::detail::Relief relief{};
    relief.heights = heights.data();
    relief.rows = 4;
    relief.cols = static_cast<int>(heights.size()) / 4;
    umbrixlib::detail::survey(relief);
    return ByteLattice::of(relief);
}

/// @p texels texels of a picture with @p levels levels, scaled and moved.
std::vector<float> picture(int texels, int levels, float scale, float base)
{
    std::vector<float> heights;
    for (int i = 0; i < texels; ++i) {
        int const level = i * 37 % levels;
        heights.push_back(base + scale * (static_cast<float>(level) / 255.0f));
    }
    return heights;
}

TEST(ByteLattice, TakesPictures)
{
    for (float const scale : {1.0f, 0.1f, 0.02f, 7.3f, 1e-30f}) {
        for (int const levels : {2, 3, 17, 200, 255, 256}) {
            std::optional<ByteLattice> const lattice = lattice_of(picture(4096, levels, scale, 0.0f));
            ASSERT_TRUE(lattice) << levels << " levels, scale " << scale;
            EXPECT_EQ(lattice->top(), levels - 1);
            EXPECT_EQ(lattice->most_climb(), levels - 2);
            for (int level = 0; level < levels; ++level) {
                EXPECT_EQ(lattice->height(scale * (static_cast<float>(level) / 255.0f)), level);
            }
        }
    }
}

TEST(ByteLattice, TakesNegativeHeightsAndHoles)
{
    std::vector<float> heights = picture(4096, 100, 1.0f, -0.25f);
    heights[5] = heights[77] = std::numeric_limits<float>::quiet_NaN();
    std::optional<ByteLattice> const lattice = lattice_of(heights);
    ASSERT_TRUE(lattice);
    EXPECT_EQ(lattice->top(), 99);
    EXPECT_EQ(lattice->height(heights[5]), ByteLattice::kNever);
}

TEST(ByteLattice, FindsALevelThatOneTexelHas)
{
    std::vector<float> heights = picture(400000, 100, 1.0f, 0.0f);
    for (float& h : heights) {
        h = std::round(h * 255.0f) / 255.0f;
        h = std::fmod(std::round(h * 255.0f), 2.0f) == 0.0f ? h : 0.0f; // even levels
    }
    ASSERT_TRUE(lattice_of(heights));
    EXPECT_EQ(lattice_of(heights)->top(), 49);
    heights[123457] = 33.0f / 255.0f;
    ASSERT_TRUE(lattice_of(heights));
    EXPECT_EQ(lattice_of(heights)->top(), 98);
    heights[200001] = 33.5f / 255.0f;
    ASSERT_TRUE(lattice_of(heights));
    EXPECT_EQ(lattice_of(heights)->top(), 196);
    heights[300003] = 33.3f / 255.0f;
    EXPECT_FALSE(lattice_of(heights));
}

TEST(ByteLattice, TakesNoOtherMaps)
{
    EXPECT_FALSE(lattice_of(picture(4096, 257, 1.0f, 0.0f))) << "too many levels";
    EXPECT_FALSE(lattice_of(picture(4096, 200, 1e-6f, 1000.0f))) << "rounding moves the heights";
    std::vector<float> heights = picture(4096, 200, 1.0f, 0.0f);
    heights[1000] += 0.01f / 255.0f;
    EXPECT_FALSE(lattice_of(heights)) << "a height between two levels";
    for (std::size_t i = 0; i < heights.size(); ++i) {
        heights[i] = static_cast<float>(i);
    }
    EXPECT_FALSE(lattice_of(heights)) << "too many heights";
}

TEST(ByteLattice, IsNotCertainNearWholeLevels)
{
    ByteLattice const lattice = *lattice_of(picture(4096, 256, 1.0f, 0.0f));
    EXPECT_FALSE(lattice.certain(0.0f));
    EXPECT_FALSE(lattice.certain(17.0f / 255.0f));
    EXPECT_FALSE(lattice.certain(16.99999f / 255.0f));
    EXPECT_FALSE(lattice.certain(1.0f)) << "the whole range";
    EXPECT_TRUE(lattice.certain(17.001f / 255.0f));
    EXPECT_TRUE(lattice.certain(16.999f / 255.0f));
    EXPECT_TRUE(lattice.certain(2.0f));
    EXPECT_TRUE(lattice.certain(std::numeric_limits<float>::infinity()));
    EXPECT_EQ(lattice.climb(17.5f / 255.0f), 17);
    EXPECT_GT(lattice.climb(std::numeric_limits<float>::infinity()), lattice.most_climb());
}

} // namespace
