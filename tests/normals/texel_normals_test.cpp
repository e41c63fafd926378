// SPDX-License-Identifier: MIT
#include "normals/texel_normals.h"

#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <numbers>

namespace {

using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::same_bits;
using umbrixlib::test::Values;

constexpr double kPi = std::numbers::pi;

float n(double e)
{
    return static_cast<float>(e);
}

testing::AssertionResult same(float3 expected, float3 actual)
{
    return same_bits(&expected.x, &actual.x, 3);
}

/// The table of the bisection, each row on its own, its number in @p row.
double angle(float p, float q, float c, int& row)
{
    float const dp = n(double(p) - double(c));
    float const dq = n(double(q) - double(c));
    float const ip = n(1.0 / double(n(std::sqrt(double(n(1.0 + double(dp) * double(dp)))))));
    float const iq = n(1.0 / double(n(std::sqrt(double(n(1.0 + double(dq) * double(dq)))))));
    float const sp = n(double(ip) * double(dp));
    float const sq = n(double(iq) * double(dq));
    double const tp = double(n(std::acos(double(ip))));
    double const tq = double(n(std::acos(double(iq))));
    double const m = (double(p) + double(q)) * 0.5;
    double const centre = double(c);
    bool const holds[] = {m > centre && sq >= 0 && sp >= 0,
                          centre >= m && sq <= 0 && sp <= 0,
                          centre == m && sq > 0 && sp < 0,
                          centre == m && sq < 0 && sp > 0,
                          m > centre && sq > 0 && sp<0, centre> m && sq < 0 && sp > 0,
                          m > centre && sq < 0 && sp > 0,
                          centre > m && sq > 0 && sp < 0};
    double const angles[] = {(kPi - (tq + tp)) * 0.5 + tp, kPi - ((kPi - (tq + tp)) * 0.5 + tp),
                             1.5707963267948966 - tp,      tp + 1.5707963267948966,
                             (kPi - tq + tp) * 0.5 - tp,   kPi - ((kPi - tq + tp) * 0.5 - tp),
                             (kPi - tp + tq) * 0.5 + tp,   kPi - ((kPi - tp + tq) * 0.5 + tp)};
    for (row = 1; row <= 8; ++row) {
        if (holds[row - 1]) {
            return angles[row - 1];
        }
    }
    return 0.0;
}

TEST(GetNormal, TheCentralDifferenceEqualsItsFormulaBitForBit)
{
    auto const heights = random_image<float>(4000, 1, Values::kHostile);
    for (std::size_t i = 0; i < heights.size(); i += 4) {
        float const* const h = heights.data() + i;
        float const x = n(double(h[3]) - double(h[2]));
        float const y = n(double(h[0]) - double(h[1]));
        float const len = n(std::sqrt(double(n(double(y) * double(y) + double(x) * double(x) + 1.0))));
        float const inv = n(1.0 / double(len));
        ASSERT_TRUE(same({n(double(inv) * double(x)), n(double(inv) * double(y)), inv},
                         GetNormal(h[0], h[1], h[2], h[3])));
    }
}

TEST(GetNormal, TheCentralDifferenceIsNotHalved)
{
    EXPECT_TRUE(same({0.0f, 0.0f, 1.0f}, GetNormal(0.25f, 0.25f, 0.25f, 0.25f)));
    float3 const slope = GetNormal(0.0f, 0.0f, 1.0f, -1.0f);
    EXPECT_FLOAT_EQ(slope.x / slope.z, -2.0f);
    EXPECT_EQ(slope.y, 0.0f);
    EXPECT_LT(GetNormal(0.0f, 1.0f, 0.0f, 0.0f).y, 0.0f) << "rising towards plus tilts towards minus";
}

TEST(GetNormal, BisectionOnFlatGroundPointsUpWithALengthOfTwo)
{
    float3 const up = GetNormal(0.5f, 0.5f, 0.5f, 0.5f, 0.5f);
    EXPECT_EQ(up.x, n(std::cos(kPi / 2)));
    EXPECT_EQ(up.y, n(std::cos(kPi / 2)));
    EXPECT_EQ(up.z, 2.0f);
}

TEST(GetNormal, BisectionOnAStraightSlope)
{
    float3 const v = GetNormal(0.0f, 0.0f, 1.0f, -1.0f, 0.0f);
    EXPECT_NEAR(double(v.x), -std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(double(v.y), 0.0, 1e-6);
    EXPECT_NEAR(double(v.z), 1.0 + std::sqrt(0.5), 1e-6);
}

TEST(GetNormal, ARidgeAndAValleyAreMirrorImages)
{
    float3 const valley = GetNormal(1.0f, 1.0f, 1.0f, 1.0f, 0.0f);
    float3 const ridge = GetNormal(-1.0f, -1.0f, -1.0f, -1.0f, 0.0f);
    EXPECT_NEAR(double(valley.x), 0.0, 1e-7);
    EXPECT_NEAR(double(ridge.x), 0.0, 1e-7);
    EXPECT_NEAR(double(valley.z), 2.0, 1e-6);
    EXPECT_NEAR(double(ridge.z), 2.0, 1e-6);
}

struct Row {
    int number;
    float plus, minus, centre;
    bool leans_to_plus; ///< A positive component: the ground falls towards plus.
};

class GetNormalRows : public testing::TestWithParam<Row> {};

INSTANTIATE_TEST_SUITE_P(Table, GetNormalRows,
                         testing::Values(Row{1, 0.5f, 1.5f, 0.0f, true}, Row{1, 1.5f, 0.0f, 0.0f, false},
                                         Row{2, -0.5f, -1.5f, 0.0f, false}, Row{2, -1.5f, 0.0f, 0.0f, true},
                                         Row{3, -0.5f, 0.5f, 0.0f, true}, Row{4, 0.5f, -0.5f, 0.0f, false},
                                         Row{5, -0.5f, 2.0f, 0.0f, true}, Row{6, 0.5f, -2.0f, 0.0f, false},
                                         Row{7, 2.0f, -0.5f, 0.0f, false}, Row{8, -2.0f, 0.5f, 0.0f, true}));

TEST_P(GetNormalRows, GivesTheBisectorOfTheTangents)
{
    Row const& row = GetParam();
    int taken = 0;
    double const a = angle(row.plus, row.minus, row.centre, taken);
    ASSERT_EQ(taken, row.number);
    // The bisector in real numbers: halfway between the directions of (1, plus) and (-1, minus).
    double const bisector = (std::atan2(double(row.plus), 1.0) + std::atan2(double(row.minus), -1.0)) / 2;
    double const upward = std::sin(bisector) < 0 ? bisector + kPi : bisector;
    EXPECT_NEAR(a, upward, 1e-6);
    EXPECT_EQ(std::cos(a) > 0, row.leans_to_plus);
    float3 const along_x = GetNormal(0.0f, 0.0f, row.plus, row.minus, row.centre);
    float3 const along_y = GetNormal(row.minus, row.plus, 0.0f, 0.0f, row.centre);
    float const flat = n(std::cos(kPi - ((kPi - 0.0) * 0.5)));
    EXPECT_TRUE(same({n(std::cos(a)), flat, n(std::sin(kPi / 2) + std::sin(a))}, along_x));
    EXPECT_TRUE(same({flat, n(std::cos(a)), n(std::sin(a) + std::sin(kPi / 2))}, along_y));
}

TEST(GetNormal, BisectionEqualsItsTableBitForBit)
{
    auto const heights = random_image<float>(20000, 1, Values::kHostile);
    int seen[10] = {};
    for (std::size_t i = 0; i < heights.size(); i += 5) {
        float const* const h = heights.data() + i;
        int row = 0;
        double const a = angle(h[2], h[3], h[4], row);
        ++seen[row];
        double const b = angle(h[1], h[0], h[4], row);
        ASSERT_TRUE(same({n(std::cos(a)), n(std::cos(b)), n(std::sin(b) + std::sin(a))},
                         GetNormal(h[0], h[1], h[2], h[3], h[4])));
    }
    for (int const row : {1, 2, 5, 6, 7, 8, 9}) {
        EXPECT_GT(seen[row], 10) << "row " << row << ", 9 standing for none";
    }
}

TEST(GetNormal, NaNLeavesTheAngleOfItsAxisAtZero)
{
    float3 const x_lost = GetNormal(0.0f, 0.0f, kNaN, 0.0f, 0.0f);
    EXPECT_EQ(x_lost.x, 1.0f);
    EXPECT_EQ(x_lost.z, 1.0f) << "the sine of the other axis alone";
    float3 const both_lost = GetNormal(0.0f, 0.0f, 0.0f, 0.0f, kNaN);
    EXPECT_TRUE(same({1.0f, 1.0f, 0.0f}, both_lost));
}

} // namespace
