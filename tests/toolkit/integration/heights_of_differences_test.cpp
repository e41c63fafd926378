// SPDX-License-Identifier: MIT
/// Heights of their central differences, against surfaces that are known and against least squares written
/// out as a dense system of equations.
#include "toolkit/integration/heights_of_differences.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <omp.h>
#include <random>
#include <utility>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr Borders kAllBorders[] = {{true, true}, {false, true}, {true, false}, {false, false}};

struct Size {
    int width;
    int height;
};

std::size_t texels(Size size)
{
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

std::size_t place(Size size, int x, int y)
{
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) + static_cast<std::size_t>(x);
}

/// The two texels whose difference is that at @p at, and how often it counts: beyond a border that does not
/// repeat, a slope goes on.
struct Neighbours {
    int before;
    int behind;
    double times;
};

Neighbours neighbours(int at, int length, bool repeats)
{
    if (repeats) {
        return {(at + length - 1) % length, (at + 1) % length, 1.0};
    }
    bool const border = at == 0 || at == length - 1;
    return {std::max(at - 1, 0), std::min(at + 1, length - 1), border ? 2.0 : 1.0};
}

/// One equation of the least squares: times * (height[behind] - height[before]) = right, of some weight.
struct Equation {
    std::size_t before;
    std::size_t behind;
    double times;
    double weight;
};

/// Those of the differences along rows, then of those across them.
std::vector<Equation> equations(Size size, Borders const& borders)
{
    std::vector<Equation> all;
    for (bool const along : {true, false}) {
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                Neighbours const next = along ? neighbours(x, size.width, borders.h_tile)
                                              : neighbours(y, size.height, borders.v_tile);
                auto const at = [&](int other) {
                    return along ? place(size, other, y) : place(size, x, other);
                };
                all.push_back(
                    {at(next.before), at(next.behind), next.times, 1.0 / (next.times * next.times)});
            }
        }
    }
    return all;
}

CentralDifferences differences_of(std::vector<double> const& heights, Size size, Borders const& borders)
{
    CentralDifferences made{size.width, size.height, {}, {}};
    for (Equation const& each : equations(size, borders)) {
        auto const value = static_cast<float>(each.times * (heights[each.behind] - heights[each.before]));
        (made.along_rows.size() < heights.size() ? made.along_rows : made.across_rows).push_back(value);
    }
    return made;
}

/// What the central difference does not see, one plane for each: ones, stripes and the chessboard.
std::vector<std::vector<double>> unseen(Size size, Borders const& borders)
{
    std::vector<std::vector<double>> planes;
    bool const stripes_x = borders.h_tile && size.width % 2 == 0;
    bool const stripes_y = borders.v_tile && size.height % 2 == 0;
    for (int const by_x : {0, 1}) {
        for (int const by_y : {0, 1}) {
            if ((by_x == 1 && !stripes_x) || (by_y == 1 && !stripes_y)) {
                continue;
            }
            std::vector<double> plane;
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    plane.push_back((by_x * x + by_y * y) % 2 == 0 ? 1.0 : -1.0);
                }
            }
            planes.push_back(std::move(plane));
        }
    }
    return planes;
}

double product(std::vector<double> const& a, std::vector<double> const& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// @p heights without what the central difference does not see.
std::vector<double> seen_part(std::vector<double> heights, Size size, Borders const& borders)
{
    for (std::vector<double> const& plane : unseen(size, borders)) {
        double const share = product(heights, plane) / static_cast<double>(heights.size());
        for (std::size_t i = 0; i < heights.size(); ++i) {
            heights[i] -= share * plane[i];
        }
    }
    return heights;
}

/// Gauss elimination with the largest pivot of a column.
std::vector<double> solve(std::vector<std::vector<double>> rows, std::vector<double> right)
{
    std::size_t const count = rows.size();
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t pivot = i;
        for (std::size_t row = i + 1; row < count; ++row) {
            pivot = std::abs(rows[row][i]) > std::abs(rows[pivot][i]) ? row : pivot;
        }
        std::swap(rows[i], rows[pivot]);
        std::swap(right[i], right[pivot]);
        for (std::size_t row = i + 1; row < count; ++row) {
            double const by = rows[row][i] / rows[i][i];
            for (std::size_t k = i; k < count; ++k) {
                rows[row][k] -= by * rows[i][k];
            }
            right[row] -= by * right[i];
        }
    }
    for (std::size_t i = count; i-- > 0;) {
        for (std::size_t k = i + 1; k < count; ++k) {
            right[i] -= rows[i][k] * right[k];
        }
        right[i] /= rows[i][i];
    }
    return right;
}

/// The least squares from the normal equations as a full matrix; what is not seen is held at 0.
std::vector<double> dense_heights(CentralDifferences const& differences, Size size, Borders const& borders)
{
    std::size_t const count = texels(size);
    std::vector<std::vector<double>> rows(count, std::vector<double>(count));
    std::vector<double> right(count);
    std::size_t number = 0;
    for (Equation const& each : equations(size, borders)) {
        double const wanted = static_cast<double>(number < count ? differences.along_rows[number]
                                                                 : differences.across_rows[number - count]);
        ++number;
        double const weight = each.weight * each.times;
        rows[each.behind][each.behind] += weight * each.times;
        rows[each.before][each.before] += weight * each.times;
        rows[each.behind][each.before] -= weight * each.times;
        rows[each.before][each.behind] -= weight * each.times;
        right[each.behind] += weight * wanted;
        right[each.before] -= weight * wanted;
    }
    for (std::vector<double> const& plane : unseen(size, borders)) {
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t k = 0; k < count; ++k) {
                rows[i][k] += plane[i] * plane[k];
            }
        }
    }
    return solve(std::move(rows), std::move(right));
}

double largest_error(std::vector<float> const& heights, std::vector<double> const& wanted)
{
    double largest = heights.size() == wanted.size() ? 0.0 : 1e9;
    for (std::size_t i = 0; i < std::min(heights.size(), wanted.size()); ++i) {
        largest = std::max(largest, std::abs(static_cast<double>(heights[i]) - wanted[i]));
    }
    return largest;
}

std::vector<double> random_heights(Size size, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> spread(0.0, 1.0);
    std::vector<double> heights(texels(size));
    std::ranges::generate(heights, [&] { return spread(random); });
    return heights;
}

CentralDifferences random_differences(Size size)
{
    auto const in_floats = [&](unsigned seed) {
        std::vector<double> const numbers = random_heights(size, seed);
        return std::vector<float>(numbers.begin(), numbers.end());
    };
    return {size.width, size.height, in_floats(5), in_floats(6)};
}

TEST(HeightsOfDifferences, AreThoseOfDenseLeastSquares)
{
    for (Size const size : {Size{4, 4}, {6, 5}, {5, 6}, {7, 3}, {8, 2}, {2, 8}, {3, 1}, {1, 4}, {2, 2}}) {
        for (Borders const& borders : kAllBorders) {
            CentralDifferences const differences = random_differences(size);
            auto const heights = heights_of_differences(differences, borders);
            EXPECT_LT(largest_error(*heights, dense_heights(differences, size, borders)), 3e-6)
                << size.width << " x " << size.height << ' ' << borders.h_tile << borders.v_tile;
        }
    }
}

TEST(HeightsOfDifferences, AreTheHeightsThatTheyAreOf)
{
    for (Size const size : {Size{64, 48}, {45, 75}, {101, 37}, {1, 9}, {9, 1}, {1, 1}, {17, 130}}) {
        for (Borders const& borders : kAllBorders) {
            std::vector<double> const heights = random_heights(size, 9);
            auto const made = heights_of_differences(differences_of(heights, size, borders), borders);
            EXPECT_LT(largest_error(*made, seen_part(heights, size, borders)), 2e-5)
                << size.width << " x " << size.height << ' ' << borders.h_tile << borders.v_tile;
        }
    }
}

/// Slopes straight from a formula; the surface is that of the formula but for how a difference is less than
/// a slope: by sin(w) / w of a wave that turns by w a texel.
TEST(HeightsOfDifferences, AreAnAnalyticSurface)
{
    constexpr Size kSize{60, 40};
    constexpr double kTurnX = 2.0 * std::numbers::pi * 3.0 / kSize.width;
    constexpr double kTurnY = 2.0 * std::numbers::pi * 2.0 / kSize.height;
    CentralDifferences differences{kSize.width, kSize.height, {}, {}};
    std::vector<double> wanted;
    for (int y = 0; y < kSize.height; ++y) {
        for (int x = 0; x < kSize.width; ++x) {
            differences.along_rows.push_back(static_cast<float>(2.0 * kTurnX * std::cos(kTurnX * x)));
            differences.across_rows.push_back(static_cast<float>(-2.0 * kTurnY * std::sin(kTurnY * y)));
            wanted.push_back(kTurnX / std::sin(kTurnX) * std::sin(kTurnX * x) +
                             kTurnY / std::sin(kTurnY) * std::cos(kTurnY * y));
        }
    }
    EXPECT_LT(largest_error(*heights_of_differences(differences, {true, true}), wanted), 1e-5);
}

TEST(HeightsOfDifferences, OfASlopingPlaneAreThePlaneWhereBordersDoNotRepeat)
{
    constexpr Size kSize{31, 20};
    CentralDifferences const differences{kSize.width, kSize.height, std::vector<float>(texels(kSize), 0.5f),
                                         std::vector<float>(texels(kSize), -0.25f)};
    std::vector<double> plane;
    for (int y = 0; y < kSize.height; ++y) {
        for (int x = 0; x < kSize.width; ++x) {
            plane.push_back(0.25 * x - 0.125 * y);
        }
    }
    EXPECT_LT(largest_error(*heights_of_differences(differences, {false, false}),
                            seen_part(plane, kSize, {false, false})),
              2e-5);
    std::vector<double> const flat(texels(kSize));
    EXPECT_LT(largest_error(*heights_of_differences(differences, {true, true}), flat), 1e-6);
}

TEST(HeightsOfDifferences, AreTheSameForEachNumberOfThreads)
{
    int const threads = omp_get_max_threads();
    for (Borders const& borders : kAllBorders) {
        CentralDifferences const differences = random_differences({150, 94});
        omp_set_num_threads(1);
        auto const alone = heights_of_differences(differences, borders);
        for (int const count : {2, 3, 7}) {
            omp_set_num_threads(count);
            EXPECT_EQ(heights_of_differences(differences, borders), alone) << count;
        }
        omp_set_num_threads(threads);
    }
}

TEST(HeightsOfDifferences, TellHowFarTheyAre)
{
    RunControl control;
    EXPECT_TRUE(heights_of_differences(random_differences({70, 20}), {}, &control).has_value());
    EXPECT_EQ(control.permille(), 1000);
}

TEST(HeightsOfDifferences, AreNotMadeByAStoppedRun)
{
    RunControl control;
    control.stop();
    EXPECT_EQ(heights_of_differences(random_differences({20, 20}), {}, &control), std::nullopt);
}

} // namespace
} // namespace umbrixlib::test
