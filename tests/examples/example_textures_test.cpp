// SPDX-License-Identifier: MIT
#include "example_textures.h"
#include "textures_internal.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace umbrixlib::examples {
namespace {

TEST(ExampleTextures, HeightsReachZeroAndOneAndNoFurther)
{
    for (Texture const& each : textures()) {
        SCOPED_TRACE(each.name);
        std::vector<float> const made = heights(each.name, 37);
        ASSERT_EQ(made.size(), 37U * 37U);
        auto const [lowest, highest] = std::ranges::minmax(made);
        EXPECT_EQ(lowest, 0.0f);
        EXPECT_EQ(highest, 1.0f);
    }
}

TEST(ExampleTextures, OneTexelIsZeroHigh)
{
    EXPECT_EQ(heights("cobbles", 1), std::vector<float>{0.0f});
}

TEST(ExampleTextures, UnknownNameAndEmptySideAreRefused)
{
    EXPECT_THROW(heights("marble", 8), std::invalid_argument);
    EXPECT_THROW(texture(""), std::invalid_argument);
    EXPECT_THROW(heights("cobbles", 0), std::invalid_argument);
}

struct Recipe {
    char const* name;
    double (*height)(Point);
};

void PrintTo(Recipe const& recipe, std::ostream* out)
{
    *out << recipe.name;
}

class ExampleTexture : public testing::TestWithParam<Recipe> {};

// Odd multiples of 1/128 are exact, also a tile further, and lie on no edge of a brick or thread.
TEST_P(ExampleTexture, RepeatsAtEverySideOfTheTile)
{
    auto const height = GetParam().height;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            Point const here{(x + 0.5) / 64, (y + 0.5) / 64};
            double const expected = height(here);
            ASSERT_NEAR(height({here.x + 1.0, here.y}), expected, 1e-9) << x << ", " << y;
            ASSERT_NEAR(height({here.x, here.y - 1.0}), expected, 1e-9) << x << ", " << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Recipes, ExampleTexture,
                         testing::Values(Recipe{"cobbles", cobbles}, Recipe{"bricks", bricks},
                                         Recipe{"cloth", cloth}, Recipe{"dunes", dunes},
                                         Recipe{"terrain", terrain}, Recipe{"noise", noise}),
                         [](auto const& each) { return std::string(each.param.name); });

} // namespace
} // namespace umbrixlib::examples
