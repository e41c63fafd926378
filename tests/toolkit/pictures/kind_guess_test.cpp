// SPDX-License-Identifier: MIT
/// What a picture is taken for.
#include "toolkit/pictures/analysis/kind_guess.h"

#include <cmath>
#include <gtest/gtest.h>

namespace umbrixlib::toolkit {
namespace {

template <typename Colour>
Picture painted(Colour&& colour_at)
{
    Picture picture = make_picture(20, 20, 3);
    for (std::size_t i = 0; i < picture.texels(); ++i) {
        auto const colour = colour_at(static_cast<double>(i % 20) / 20.0, static_cast<double>(i / 20) / 20.0);
        for (std::size_t c = 0; c < 3; ++c) {
            picture.texel(i)[c] = static_cast<std::uint8_t>(colour[c]);
        }
    }
    return picture;
}

using Rgb = std::array<double, 3>;

Picture waves_of_normals()
{
    return painted([](double x, double y) {
        double const nx = 0.3 * std::sin(6.28 * x);
        double const ny = 0.3 * std::sin(6.28 * y);
        double const nz = std::sqrt(1.0 - nx * nx - ny * ny);
        return Rgb{127.5 * (nx + 1.0), 127.5 * (ny + 1.0), 127.5 * (nz + 1.0)};
    });
}

Picture bricks()
{
    return painted([](double x, double y) { return Rgb{200.0 * x, 90.0, 60.0 * y}; });
}

void expect_guess(Picture const& picture, char const* name, Kind kind, char const* reason)
{
    KindGuess const guess = guess_kind(picture, name);
    EXPECT_EQ(guess.kind, kind) << name;
    EXPECT_EQ(guess.reason, reason) << name;
}

TEST(KindGuess, TakesAPictureWithoutColourForHeights)
{
    Picture const greys = painted([](double x, double) { return Rgb{250 * x, 250 * x + 4, 250 * x}; });
    expect_guess(greys, "a.png", Kind::kHeightMap, "it has no colour");
    expect_guess(greys, "a_normal.png", Kind::kHeightMap, "it has no colour");
}

TEST(KindGuess, TakesUnitVectorsForNormals)
{
    expect_guess(waves_of_normals(), "a.png", Kind::kNormalMap, "its colours are normals");
    expect_guess(waves_of_normals(), "a_height.png", Kind::kNormalMap, "its colours are normals");
}

TEST(KindGuess, GoesByTheNameOfOtherColours)
{
    expect_guess(bricks(), "a.png", Kind::kHeightMap, "its colours are no normals");
    expect_guess(bricks(), "a_Normal.png", Kind::kNormalMap, "its name says 'Normal'");
    expect_guess(bricks(), "a_H.png", Kind::kHeightMap, "its name says 'H'");
}

TEST(KindGuess, TakesABlueSkyForNoNormals)
{
    Picture const sky = painted([](double, double y) { return Rgb{90 + 30 * y, 130 + 20 * y, 235}; });
    expect_guess(sky, "a.png", Kind::kHeightMap, "its colours are no normals");
}

} // namespace
} // namespace umbrixlib::toolkit
