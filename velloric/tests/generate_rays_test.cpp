// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "same_bits.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

struct Bundles {
    std::vector<ray> a;
    std::vector<ray> b;
    std::vector<ray> c;
};

constexpr ray kUntouchedRay = {-7.0f, -8.0f, -9.0f};

Bundles generated(int height, int width, int rays, float theta_limit, float alpha_limit)
{
    auto const room = static_cast<std::size_t>(2 * std::max(rays, 1));
    Bundles bundles{std::vector<ray>(room, kUntouchedRay), std::vector<ray>(room, kUntouchedRay),
                    std::vector<ray>(room, kUntouchedRay)};
    ray* a = bundles.a.data();
    ray* b = bundles.b.data();
    ray* c = bundles.c.data();
    GenerateRays(height, width, a, b, c, rays, theta_limit, alpha_limit);
    EXPECT_EQ(a, bundles.a.data()) << "the arrays stay where they are";
    return bundles;
}

bool same(ray const& first, ray const& second)
{
    return static_cast<bool>(umbrixlib::test::same_bits(&first.x, &second.x, 1)) &&
           static_cast<bool>(umbrixlib::test::same_bits(&first.y, &second.y, 1)) &&
           static_cast<bool>(umbrixlib::test::same_bits(&first.z, &second.z, 1));
}

bool same(std::vector<ray> const& first, std::vector<ray> const& second)
{
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (!same(first[i], second[i])) {
            return false;
        }
    }
    return first.size() == second.size();
}

constexpr double kDegrees = 180.0 / 3.141592653589793;

/// Azimuth of a step in degrees, 0 to 360. A step is a direction divided by its x, so it has lost nothing.
double azimuth(ray const& step)
{
    double const angle = std::atan2(static_cast<double>(step.y), static_cast<double>(step.x)) * kDegrees;
    return angle < 0 ? angle + 360.0 : angle;
}

double elevation(ray const& step)
{
    double const flat = std::hypot(static_cast<double>(step.x), static_cast<double>(step.y));
    return std::atan2(static_cast<double>(step.z), flat) * kDegrees;
}

/// Distance of two azimuths, up to 180.
double turn_between(double first, double second)
{
    double const turn = std::fmod(std::fabs(first - second), 360.0);
    return turn > 180.0 ? 360.0 - turn : turn;
}

TEST(GenerateRays, RayZeroIsTheStepAlongTheBasisDirection)
{
    for (int const width : {1, 3, 512, 1000}) {
        Bundles const made = generated(77, width, 4, 60.0f, 60.0f);
        float const texel = static_cast<float>(1.0 / static_cast<double>(static_cast<float>(width)));
        auto const step = [](float s, float x, float y, float z) {
            auto const divided = [&](float v) {
                return static_cast<float>(static_cast<double>(v) * static_cast<double>(s) /
                                          static_cast<double>(x));
            };
            return ray{s, divided(y), divided(z)};
        };
        auto const third = static_cast<float>(1.0 / std::sqrt(3.0));
        auto const half = static_cast<float>(1.0 / std::sqrt(2.0));
        auto const sixth = static_cast<float>(1.0 / std::sqrt(6.0));
        EXPECT_TRUE(same(made.a[0], step(-texel, -sixth, half, third)));
        EXPECT_TRUE(same(made.b[0], step(-texel, -sixth, -half, third)));
        EXPECT_TRUE(same(made.c[0], step(texel, static_cast<float>(std::sqrt(1.5)), 0.0f, third)));
    }
}

TEST(GenerateRays, EveryStepPassesOneTexelInX)
{
    Bundles const made = generated(10, 640, 200, 50.0f, 90.0f);
    auto const texel = static_cast<float>(1.0 / 640.0);
    for (std::size_t i = 0; i < 200; ++i) {
        EXPECT_EQ(made.a[i].x, -texel);
        EXPECT_EQ(made.b[i].x, -texel);
        EXPECT_EQ(made.c[i].x, texel);
    }
}

TEST(GenerateRays, AzimuthsStayWithinHalfTheLimitOfTheirBand)
{
    for (float const limit : {0.0f, 10.0f, 59.0f, 120.0f}) {
        Bundles const made = generated(64, 64, 500, limit, 40.0f);
        double widest = 0;
        for (std::size_t i = 0; i < 500; ++i) {
            double const half = static_cast<double>(limit) / 2 + 1e-4;
            EXPECT_LE(turn_between(azimuth(made.a[i]), 120.0), half);
            EXPECT_LE(turn_between(azimuth(made.b[i]), 240.0), half);
            EXPECT_LE(turn_between(azimuth(made.c[i]), 0.0), half);
            widest = std::max(widest, turn_between(azimuth(made.a[i]), 120.0));
        }
        EXPECT_GE(widest, static_cast<double>(limit) * 0.49) << "the whole limit is used";
    }
}

TEST(GenerateRays, ElevationsStayInTheirBandsAndAboveTheHorizon)
{
    for (float const limit : {0.0f, 8.0f, 40.0f, 120.0f}) {
        Bundles const made = generated(64, 64, 500, 30.0f, limit);
        double const half = static_cast<double>(limit) / 2;
        double lowest = 90;
        double highest = 0;
        for (std::size_t i = 1; i < 500; ++i) {
            for (ray const& upper : {made.a[i], made.b[i]}) {
                EXPECT_GE(elevation(upper), std::max(35.264339447021484 - half, 0.0) - 1e-4);
                EXPECT_LE(elevation(upper), std::min(35.264339447021484 + half, 90.0) + 1e-4);
            }
            EXPECT_GE(elevation(made.c[i]), std::max(25.23944091796875 - half, 0.0) - 1e-4);
            EXPECT_LE(elevation(made.c[i]), std::min(25.23944091796875 + half, 90.0) + 1e-4);
            EXPECT_GE(made.c[i].z, 0.0f);
            lowest = std::min(lowest, elevation(made.a[i]));
            highest = std::max(highest, elevation(made.a[i]));
        }
        double const range =
            std::min(35.264339447021484 + half, 90.0) - std::max(35.264339447021484 - half, 0.0);
        EXPECT_GE(highest - lowest, range * 0.98 - 1e-4) << "the whole band is used";
    }
}

TEST(GenerateRays, AllBandsShareAnElevationThatFitsThemAll)
{
    Bundles const made = generated(64, 64, 100, 30.0f, 40.0f);
    int shared = 0;
    for (std::size_t i = 1; i < 100; ++i) {
        EXPECT_NEAR(elevation(made.a[i]), elevation(made.b[i]), 1e-4);
        bool const fits = elevation(made.a[i]) < 25.23944091796875 + 20.0;
        if (fits) {
            EXPECT_NEAR(elevation(made.a[i]), elevation(made.c[i]), 1e-4);
            ++shared;
        }
    }
    EXPECT_GT(shared, 50);
}

TEST(GenerateRays, RaysSpreadEvenlyOverAzimuthAndElevation)
{
    constexpr int kCells = 8;
    constexpr int kRays = 64 * 16 + 1;
    Bundles const made = generated(64, 64, kRays, 40.0f, 40.0f);
    std::array<int, kCells * kCells> counts{};
    for (std::size_t i = 1; i < kRays; ++i) {
        double const across = (azimuth(made.a[i]) - 100.0) / 40.0;
        double const up = (elevation(made.a[i]) - 15.264339447021484) / 40.0;
        auto const cell = [](double share) { return std::min(static_cast<int>(share * kCells), kCells - 1); };
        ++counts[static_cast<std::size_t>(cell(up) * kCells + cell(across))];
    }
    for (int const count : counts) {
        EXPECT_GE(count, 10);
        EXPECT_LE(count, 22);
    }
}

TEST(GenerateRays, TheSameArgumentsGiveTheSameRays)
{
    Bundles const first = generated(300, 200, 128, 33.0f, 70.0f);
    Bundles const second = generated(300, 200, 128, 33.0f, 70.0f);
    EXPECT_TRUE(same(first.a, second.a) && same(first.b, second.b) && same(first.c, second.c));
    EXPECT_FALSE(same(first.a[1], first.a[2]));
}

TEST(GenerateRays, FewerRaysAreTheFirstOfMore)
{
    Bundles const few = generated(300, 200, 5, 33.0f, 70.0f);
    Bundles const many = generated(300, 200, 50, 33.0f, 70.0f);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_TRUE(same(few.a[i], many.a[i]) && same(few.b[i], many.b[i]) && same(few.c[i], many.c[i]));
    }
}

TEST(GenerateRays, OnlyTheAskedNumberOfRecordsIsWritten)
{
    Bundles const made = generated(30, 20, 7, 33.0f, 70.0f);
    for (std::size_t i = 0; i < 14; ++i) {
        for (std::vector<ray> const* bundle : {&made.a, &made.b, &made.c}) {
            EXPECT_EQ(same((*bundle)[i], kUntouchedRay), i >= 7) << i;
        }
    }
}

TEST(GenerateRays, NoRaysOrNoTexelsWriteNothing)
{
    struct Case {
        int height;
        int width;
        int rays;
    };
    for (Case const& each : {Case{8, 8, 0}, Case{8, 8, -3}, Case{0, 8, 2}, Case{8, 0, 2}}) {
        Bundles const made = generated(each.height, each.width, each.rays, 10.0f, 10.0f);
        for (std::vector<ray> const* bundle : {&made.a, &made.b, &made.c}) {
            for (ray const& record : *bundle) {
                EXPECT_TRUE(same(record, kUntouchedRay));
            }
        }
    }
}

/// Worked out by another road: the formulas in long double, from the recurrence with its constants to 25
/// digits.
TEST(GenerateRays, TheSecondRayHasTheValuesOfTheFirstPointOfTheSequence)
{
    Bundles const made = generated(100, 100, 2, 60.0f, 40.0f);
    long double const up = 0.6710436067037892084168157L + 0.5L - 1;
    long double const across = 0.5497004779019702669448697L + 0.5L - 1;
    EXPECT_NEAR(elevation(made.a[1]), static_cast<double>(15.264339447021484L + up * 40), 1e-4);
    EXPECT_NEAR(azimuth(made.a[1]), static_cast<double>(120 - 30 + across * 60), 1e-4);
    EXPECT_NEAR(azimuth(made.b[1]), static_cast<double>(240 - 30 + across * 60), 1e-4);
    EXPECT_NEAR(turn_between(azimuth(made.c[1]), static_cast<double>(330 + across * 60)), 0.0, 1e-4);
}

} // namespace
