// SPDX-License-Identifier: MIT
/// Mean curvature of normals, against surfaces whose curvature is known and the sum from the definition.
#include "toolkit/relief/curvature.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <omp.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr Borders kEachBorders[] = {{true, true}, {false, true}, {true, false}, {false, false}};

/// A picture of normals that @p normal_at gives for each x and y.
template <typename NormalAt>
std::vector<float3> normals_at(int width, int height, NormalAt const& normal_at)
{
    std::vector<float3> normals;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            normals.push_back(normal_at(x, y));
        }
    }
    return normals;
}

float3 unit(double x, double y, double z)
{
    double const length = std::sqrt(x * x + y * y + z * z);
    return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

std::vector<float3> random_normals(int width, int height)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> slope(-3.0, 3.0);
    return normals_at(width, height, [&](int, int) { return unit(slope(random), slope(random), 1.0); });
}

TEST(Curvature, OfGroundThatIsFlatOrTiltedIsNone)
{
    for (float3 const normal : {float3{0.0f, 0.0f, 1.0f}, unit(0.3, -2.0, 1.0)}) {
        for (Borders const& borders : kEachBorders) {
            auto const normals = normals_at(9, 7, [&](int, int) { return normal; });
            for (float const each : mean_curvature(normals.data(), 9, 7, borders)) {
                EXPECT_EQ(each, 0.0f);
            }
        }
    }
}

TEST(Curvature, OfABallIsOneByItsRadius)
{
    constexpr int kSide = 65;
    constexpr double kRadius = 80.0;
    for (double const sign : {1.0, -1.0}) { // a cap, and a bowl
        auto const normals = normals_at(kSide, kSide, [&](int x, int y) {
            double const from_x = x - 32.0;
            double const from_y = y - 32.0;
            return unit(sign * from_x, sign * from_y,
                        std::sqrt(kRadius * kRadius - from_x * from_x - from_y * from_y));
        });
        for (float const each : mean_curvature(normals.data(), kSide, kSide, {false, false})) {
            EXPECT_NEAR(each, sign / kRadius, 1e-7);
        }
    }
}

TEST(Curvature, OfACylinderIsHalfOfOneByItsRadius)
{
    constexpr double kRadius = 50.0;
    auto const normals = normals_at(41, 8, [&](int x, int) {
        return unit(x - 20.0, 0.0, std::sqrt(kRadius * kRadius - (x - 20.0) * (x - 20.0)));
    });
    for (float const each : mean_curvature(normals.data(), 41, 8, {false, true})) {
        EXPECT_NEAR(each, 0.5 / kRadius, 1e-7);
    }
}

/// Waves that repeat: the slope of the normal's component, worked out from the difference over two texels.
TEST(Curvature, OfWavesRepeatsWithThem)
{
    constexpr int kSide = 32;
    double const turn = 2.0 * std::numbers::pi / kSide;
    auto const wave = [&](double at) {
        double const slope = 0.8 * std::sin(turn * at);
        return slope / std::sqrt(slope * slope + 1.0);
    };
    auto const normals =
        normals_at(kSide, 4, [&](int x, int) { return unit(0.8 * std::sin(turn * x), 0.0, 1.0); });
    std::vector<float> const curvatures = mean_curvature(normals.data(), kSide, 4, {});
    for (int x = 0; x < kSide; ++x) {
        double const wanted = (wave(x + 1) - wave(x - 1)) / 4.0;
        EXPECT_NEAR(curvatures[static_cast<std::size_t>(x)], wanted, 1e-7);
    }
}

/// Bit for bit, at each border.
TEST(Curvature, EqualsItsDefinition)
{
    struct Side {
        int width;
        int height;
    };
    for (auto const [width, height] : {Side{1, 1}, {2, 1}, {1, 2}, {2, 2}, {3, 2}, {5, 4}, {64, 33}}) {
        auto const normals = random_normals(width, height);
        for (Borders const& borders : kEachBorders) {
            std::vector<float> const made = mean_curvature(normals.data(), width, height, borders);
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    auto const at = [&](int to_y, int to_x) {
                        int const row = (to_y + height) % height;
                        int const column = (to_x + width) % width;
                        return normals[static_cast<std::size_t>(row * width + column)];
                    };
                    // The inner neighbour stands for a texel on a border that does not repeat.
                    auto const inner = [](int place, int length, bool repeats) {
                        bool const is_border = place == 0 || place == length - 1;
                        return repeats || !is_border ? place : place == 0 ? 1 : length - 2;
                    };
                    int const in_x = inner(x, width, borders.h_tile);
                    int const in_y = inner(y, height, borders.v_tile);
                    float along = at(y, in_x + 1).x - at(y, in_x - 1).x;
                    float across = at(in_y + 1, x).y - at(in_y - 1, x).y;
                    if (!borders.h_tile && width < 3) {
                        along = at(y, width - 1).x - at(y, 0).x;
                    }
                    if (!borders.v_tile && height < 3) {
                        across = at(height - 1, x).y - at(0, x).y;
                    }
                    EXPECT_EQ(made[static_cast<std::size_t>(y * width + x)], (along + across) / 4.0f)
                        << width << ' ' << height << ' ' << x << ' ' << y;
                }
            }
        }
    }
}

TEST(Curvature, IsTheSameForEachNumberOfThreads)
{
    auto const normals = random_normals(70, 51);
    int const threads = omp_get_max_threads();
    omp_set_num_threads(1);
    auto const one = mean_curvature(normals.data(), 70, 51, {});
    omp_set_num_threads(7);
    auto const seven = mean_curvature(normals.data(), 70, 51, {});
    omp_set_num_threads(threads);
    EXPECT_EQ(one, seven);
}

TEST(Curvature, StopsOnDemand)
{
    auto const normals = random_normals(8, 8);
    RunControl control;
    control.stop();
    EXPECT_EQ(mean_curvature(normals.data(), 8, 8, {}, &control), std::vector<float>(64));
}

TEST(Curvature, IsCommonUpToAHundredth)
{
    std::vector<float> curvatures;
    for (int i = 0; i <= 100; ++i) {
        curvatures.push_back(static_cast<float>(i % 2 == 0 ? i : -i));
    }
    EXPECT_EQ(common_curvature(curvatures), 99.0);
    EXPECT_EQ(common_curvature({-3.0f}), 3.0);
    EXPECT_EQ(common_curvature({}), 0.0);
}

} // namespace
} // namespace umbrixlib::test
