// SPDX-License-Identifier: MIT
/// Bent normals, open shares of the sky and horizons: closed forms, the walk as it is defined, many rays.
#include "toolkit/relief/sky.h"

#include "toolkit/relief/horizon_walk.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <omp.h>
#include <random>

namespace umbrixlib::test {
namespace {

using namespace toolkit;

constexpr Borders kSkyBorders[] = {{true, true}, {false, true}, {true, false}, {false, false}};

/// Heights in texels.
struct Ground {
    int width;
    int height;
    std::vector<float> heights;
    Borders borders{};

    HeightPlane plane() const { return {heights.data(), width, height, borders}; }

    std::size_t place(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }

    /// The height at any place, the repetition's where a side repeats; nothing beyond a border.
    std::optional<float> at(int x, int y) const
    {
        bool const outside_x = x < 0 || x >= width;
        bool const outside_y = y < 0 || y >= height;
        if ((outside_x && !borders.h_tile) || (outside_y && !borders.v_tile)) {
            return std::nullopt;
        }
        return heights[place((x % width + width) % width, (y % height + height) % height)];
    }
};

template <typename HeightAt>
Ground ground_of(int width, int height, HeightAt const& height_at, Borders const& borders = {})
{
    Ground ground{width, height, {}, borders};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            ground.heights.push_back(static_cast<float>(height_at(x, y)));
        }
    }
    return ground;
}

Ground random_ground(int width, int height, Borders const& borders, double most)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> any(0.0, most);
    return ground_of(
        width, height, [&](int, int) { return any(random); }, borders);
}

/// The tangent of the horizon, step by step; in floats, as it is defined.
float tangent_of(Ground const& ground, HorizonWalk const& walk, int x, int y)
{
    float const own = *ground.at(x, y);
    float tangent = 0.0f;
    for (HorizonStep const& step : walk.steps()) {
        auto const first = ground.at(x + step.first_x, y + step.first_y);
        auto const second = ground.at(x + step.second_x, y + step.second_y);
        if (first && (second || step.second_share == 0.0f)) {
            float const height =
                step.second_share > 0.0f ? step.first_share * *first + step.second_share * *second : *first;
            tangent = std::max(tangent, (height - own) * step.by_distance);
        }
    }
    return tangent;
}

struct Vector {
    double x;
    double y;
    double z;
};

double degrees_between(float3 const& made, Vector const& wanted)
{
    double const length = std::sqrt(wanted.x * wanted.x + wanted.y * wanted.y + wanted.z * wanted.z);
    double const cosine = (static_cast<double>(made.x) * wanted.x + static_cast<double>(made.y) * wanted.y +
                           static_cast<double>(made.z) * wanted.z) /
                          length;
    return std::acos(std::clamp(cosine, -1.0, 1.0)) * 180.0 / std::numbers::pi;
}

/// What is free above horizons of those tangents, which are evenly spread around.
struct FreeSky {
    double open = 0.0;
    Vector mean{0.0, 0.0, 0.0};
};

template <typename TangentAt>
FreeSky free_above(TangentAt const& tangent_at, int directions)
{
    FreeSky sky;
    for (int i = 0; i < directions; ++i) {
        double const angle = 2.0 * std::numbers::pi * i / directions;
        double const cosine = 1.0 / std::hypot(1.0, tangent_at(angle, i));
        double const sine = std::sqrt(1.0 - cosine * cosine);
        sky.open += cosine * cosine / directions;
        sky.mean.x += std::cos(angle) * cosine * cosine * cosine;
        sky.mean.y += std::sin(angle) * cosine * cosine * cosine;
        sky.mean.z += 1.0 - sine * sine * sine;
    }
    return sky;
}

TEST(Sky, IsOpenAboveAPlane)
{
    for (Borders const& borders : kSkyBorders) {
        Ground const plane = ground_of(
            70, 20, [](int, int) { return 3.0; }, borders);
        SkyMap const sky = *sky_over(plane.plane(), 25.0, 32);
        for (std::size_t i = 0; i < sky.open.size(); ++i) {
            ASSERT_EQ(sky.open[i], 1.0f);
            ASSERT_NEAR(sky.bent[i].x, 0.0f, 1e-6f);
            ASSERT_NEAR(sky.bent[i].y, 0.0f, 1e-6f);
            ASSERT_EQ(sky.bent[i].z, 1.0f);
        }
    }
}

/// The walk looks between texels, so a slope has the horizon of a slope: its tangent uphill, times the cosine
/// to that. A quarter of what a full turn adds up to is worked out by hand: sums of cos^n.
TEST(Sky, AboveASlopeIsThatOfItsPlane)
{
    constexpr int kSide = 61;
    for (double const slope : {0.25, 1.0, 3.0}) {
        Ground const ground = ground_of(kSide, kSide, [&](int x, int) { return slope * x; }, {false, false});
        SkyMap const sky = *sky_over(ground.plane(), 20.0, 256);
        FreeSky const wanted =
            free_above([&](double angle, int) { return std::max(slope * std::cos(angle), 0.0); }, 100000);
        std::size_t const middle = ground.place(30, 30);
        EXPECT_NEAR(sky.open[middle], wanted.open, 1e-4);
        EXPECT_LT(degrees_between(sky.bent[middle], wanted.mean), 0.02) << slope;
        // Half of the sky is free, and of the other half 1 / sqrt(1 + slope^2), which is its integral.
        EXPECT_NEAR(sky.open[middle], 0.5 + 0.5 / std::sqrt(1.0 + slope * slope), 1e-4);
    }
}

/// The foot of a long wall: what is beyond the wall hides nothing more, and the horizon at an angle to it is
/// that of its edge. A walk along the wall meets it up to a row behind that edge.
TEST(Sky, AtAStepIsThatOfItsEdge)
{
    constexpr int kSide = 401;
    constexpr double kWall = 6.0;
    Ground const ground =
        ground_of(kSide, kSide, [&](int x, int) { return x >= 205 ? kWall : 0.0; }, {false, false});
    SkyMap const sky = *sky_over(ground.plane(), 195.0, 128);
    for (int const distance : {1, 3, 10, 40}) {
        FreeSky const wanted = free_above(
            [&](double angle, int) { return std::max(kWall / distance * std::cos(angle), 0.0); }, 100000);
        std::size_t const at = ground.place(205 - distance, 200);
        EXPECT_NEAR(sky.open[at], wanted.open, 0.008) << distance;
        EXPECT_LT(degrees_between(sky.bent[at], wanted.mean), 0.5) << distance;
        EXPECT_LT(sky.bent[at].x, 0.0f); // away from the wall
    }
    std::size_t const upper = ground.place(205, 200);
    EXPECT_EQ(sky.open[upper], 1.0f);
    EXPECT_EQ(sky.bent[upper].z, 1.0f);
}

/// The middle of a round pit of steep walls: the sky is a cap of 1 / (1 + tangent^2).
TEST(Sky, InAPitIsACap)
{
    constexpr double kRadius = 40.0;
    for (double const depth : {10.0, 40.0, 90.0}) {
        Ground const ground = ground_of(
            129, 129, [&](int x, int y) { return std::hypot(x - 64.0, y - 64.0) < kRadius ? 0.0 : depth; });
        SkyMap const sky = *sky_over(ground.plane(), 60.0, 64);
        double const tangent = depth / kRadius;
        std::size_t const middle = ground.place(64, 64);
        EXPECT_NEAR(sky.open[middle], 1.0 / (1.0 + tangent * tangent), 0.02) << depth;
        EXPECT_LT(degrees_between(sky.bent[middle], {0.0, 0.0, 1.0}), 0.05) << depth;
    }
}

/// On the top of a ball nothing is above the plane. Down its side the horizon is its tangent plane uphill,
/// and over its top the cap ends in the plane that it lies on.
TEST(Sky, OnACapIsThatOfItsTangentPlane)
{
    constexpr double kRadius = 400.0;
    auto const height = [](double x, double y) { return std::sqrt(kRadius * kRadius - x * x - y * y); };
    Ground const ground =
        ground_of(257, 257, [&](int x, int y) { return height(x - 128.0, y - 128.0); }, {false, false});
    SkyMap const sky = *sky_over(ground.plane(), 100.0, 128);
    EXPECT_EQ(sky.open[ground.place(128, 128)], 1.0f);
    for (int const off : {30, 60, 100}) {
        // Along a line the ball bends away, so the steepest place is the nearest; in the limit, the slope.
        double const slope = off / height(off, 0.0);
        FreeSky const wanted =
            free_above([&](double angle, int) { return std::max(-slope * std::cos(angle), 0.0); }, 100000);
        std::size_t const at = ground.place(128 + off, 128);
        EXPECT_NEAR(sky.open[at], wanted.open, 0.002) << off;
        EXPECT_LT(degrees_between(sky.bent[at], wanted.mean), 0.2) << off;
        EXPECT_GT(sky.bent[at].x, 0.0f); // downhill
    }
}

struct Size {
    int width;
    int height;
};

/// Against doubles and the walk one step at a time, which knows nothing of margins, tiles and blocks.
TEST(Sky, EqualsTheWalkOnRandomGround)
{
    for (auto const [width, height] : {Size{1, 1}, {2, 3}, {63, 5}, {64, 16}, {65, 17}, {130, 35}}) {
        for (Borders const& borders : kSkyBorders) {
            for (double const most : {0.5, 30.0}) {
                Ground const ground = random_ground(width, height, borders, most);
                constexpr int kDirections = 12;
                constexpr double kReach = 41.0;
                SkyMap const sky = *sky_over(ground.plane(), kReach, kDirections);
                std::vector<HorizonWalk> walks;
                for (int i = 0; i < kDirections; ++i) {
                    walks.emplace_back(i, kDirections, kReach);
                }
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        FreeSky const wanted = free_above(
                            [&](double, int i) {
                                return static_cast<double>(
                                    tangent_of(ground, walks[static_cast<std::size_t>(i)], x, y));
                            },
                            kDirections);
                        std::size_t const at = ground.place(x, y);
                        ASSERT_NEAR(sky.open[at], wanted.open, 1e-6) << x << ' ' << y;
                        ASSERT_LT(degrees_between(sky.bent[at], wanted.mean), 0.03) << x << ' ' << y;
                    }
                }
            }
        }
    }
}

/// Bit for bit: all places of these walks are texels.
TEST(Horizons, EqualTheWalkOverTexels)
{
    constexpr int kStepsX[] = {1, 1, 0, -1, -1, -1, 0, 1};
    constexpr int kStepsY[] = {0, 1, 1, 1, 0, -1, -1, -1};
    constexpr double kReach = 30.0;
    for (auto const [width, height] : {Size{1, 1}, {2, 3}, {63, 5}, {64, 16}, {65, 17}, {130, 35}}) {
        for (Borders const& borders : kSkyBorders) {
            for (double const most : {0.5, 30.0}) {
                Ground const ground = random_ground(width, height, borders, most);
                for (int const first : {0, 4}) {
                    std::vector<float> const sines = *horizon_sines(ground.plane(), kReach, first);
                    for (int y = 0; y < height; ++y) {
                        for (int x = 0; x < width; ++x) {
                            for (int side = 0; side < 4; ++side) {
                                int const step_x = kStepsX[first + side];
                                int const step_y = kStepsY[first + side];
                                double const length = std::hypot(step_x, step_y);
                                float tangent = 0.0f;
                                for (int i = 1; i * length <= kReach; ++i) {
                                    auto const there = ground.at(x + i * step_x, y + i * step_y);
                                    auto const by =
                                        static_cast<float>(1.0 / std::hypot(i * step_x, i * step_y));
                                    tangent =
                                        there ? std::max(tangent, (*there - *ground.at(x, y)) * by) : tangent;
                                }
                                float const sine = tangent / std::sqrt(1.0f + tangent * tangent);
                                ASSERT_EQ(sines[4 * ground.place(x, y) + static_cast<std::size_t>(side)],
                                          sine)
                                    << width << ' ' << x << ' ' << y << ' ' << first + side;
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(Horizons, OfAWallAreItsSine)
{
    Ground const ground = ground_of(32, 32, [](int x, int) { return x == 20 ? 3.0 : 0.0; });
    std::vector<float> const sines = *horizon_sines(ground.plane(), 16.0, 0);
    std::size_t const at = 4 * ground.place(16, 16);
    EXPECT_NEAR(sines[at], 3.0 / 5.0, 1e-6);                       // 4 texels away
    EXPECT_NEAR(sines[at + 1], 3.0 / std::sqrt(9.0 + 32.0), 1e-6); // along the diagonal
    EXPECT_EQ(sines[at + 2], 0.0f);                                // alongside it
    EXPECT_NEAR(sines[at + 3], 0.0, 1e-6);                         // 28 texels away: too far
    std::vector<float> const others = *horizon_sines(ground.plane(), 28.0, 4);
    EXPECT_NEAR(others[at], 3.0 / std::sqrt(9.0 + 28.0 * 28.0), 1e-6); // in the repetition
}

/// What is called exact is the sum over directions, not over rays: 10,000 of these, spread evenly over the
/// weighted sky, walk over the same ground.
TEST(Sky, IsNearTheMeanOfTenThousandRays)
{
    constexpr int kSide = 96;
    double const turn = 2.0 * std::numbers::pi / kSide;
    Ground ground = ground_of(kSide, kSide, [&](int x, int y) {
        double const waves =
            std::sin(turn * 3 * x) * std::cos(turn * 2 * y) + 0.5 * std::sin(turn * 7 * (x + y));
        return 4.0 * waves + ((x / 16 + y / 16) % 2 == 0 ? 3.0 : 0.0);
    });
    SkyMap const sky = *sky_over(ground.plane(), 24.0, 32);
    constexpr int kAround = 100;
    std::vector<HorizonWalk> walks;
    for (int i = 0; i < kAround; ++i) {
        walks.emplace_back(i, kAround, 24.0);
    }
    double angles = 0.0;
    double differences = 0.0;
    int count = 0;
    for (int y = 5; y < kSide; y += 19) {
        for (int x = 3; x < kSide; x += 7) {
            Vector sum{0.0, 0.0, 0.0};
            int open = 0;
            for (HorizonWalk const& walk : walks) {
                double const tangent = static_cast<double>(tangent_of(ground, walk, x, y));
                for (int i = 0; i < kAround; ++i) {
                    double const square = (i + 0.5) / kAround; // of the cosine of the elevation
                    double const cosine = std::sqrt(square);
                    double const sine = std::sqrt(1.0 - square);
                    if (sine > tangent * cosine) {
                        ++open;
                        sum = {sum.x + walk.x() * cosine, sum.y + walk.y() * cosine, sum.z + sine};
                    }
                }
            }
            std::size_t const at = ground.place(x, y);
            angles += degrees_between(sky.bent[at], sum);
            differences += std::abs(static_cast<double>(sky.open[at]) - open / (1.0 * kAround * kAround));
            ++count;
        }
    }
    EXPECT_LT(angles / count, 0.3);
    EXPECT_LT(differences / count, 0.005);
}

TEST(Sky, IsTheSameForEachNumberOfThreads)
{
    Ground const ground = random_ground(150, 70, {true, false}, 8.0);
    int const threads = omp_get_max_threads();
    omp_set_num_threads(1);
    SkyMap const one = *sky_over(ground.plane(), 20.0, 9);
    omp_set_num_threads(7);
    SkyMap const seven = *sky_over(ground.plane(), 20.0, 9);
    omp_set_num_threads(threads);
    EXPECT_EQ(one.open, seven.open);
    for (std::size_t i = 0; i < one.bent.size(); ++i) {
        ASSERT_TRUE(one.bent[i].x == seven.bent[i].x && one.bent[i].y == seven.bent[i].y &&
                    one.bent[i].z == seven.bent[i].z);
    }
}

TEST(Sky, TellsHowFarItIsAndStopsOnDemand)
{
    Ground const ground = random_ground(80, 40, {}, 8.0);
    RunControl control;
    EXPECT_TRUE(sky_over(ground.plane(), 9.0, 8, &control).has_value());
    EXPECT_EQ(control.permille(), 1000);
    control.stop();
    EXPECT_FALSE(sky_over(ground.plane(), 9.0, 8, &control).has_value());
    EXPECT_FALSE(horizon_sines(ground.plane(), 9.0, 0, &control).has_value());
}

TEST(Sky, IsOpenWhereNothingIsInReach)
{
    Ground const ground = random_ground(20, 20, {}, 8.0);
    SkyMap const sky = *sky_over(ground.plane(), 0.9, 8);
    for (float const each : sky.open) {
        ASSERT_EQ(each, 1.0f);
    }
}

} // namespace
} // namespace umbrixlib::test
