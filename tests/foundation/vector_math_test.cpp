// SPDX-License-Identifier: MIT
// Rounding is part of the contract: floats are compared bit for bit on purpose.
#include "foundation/vector_math.h"

#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using umbrixlib::test::kInfinity;
using umbrixlib::test::kNaN;

std::vector<float3> vectors()
{
    return umbrixlib::test::random_image<float3>(2000, 7, umbrixlib::test::Values::kSigned);
}

float3 crossed(float3 a, float3 b)
{
    float* const r = cross(&a.x, &b.x);
    float3 const result = {r[0], r[1], r[2]};
    delete r;
    return result;
}

void expect_equal(float3 expected, float3 actual)
{
    EXPECT_EQ(actual.x, expected.x);
    EXPECT_EQ(actual.y, expected.y);
    EXPECT_EQ(actual.z, expected.z);
}

TEST(VectorMath, CrossOfTwoAxesIsTheThird)
{
    constexpr float3 kX{1.0f, 0.0f, 0.0f};
    constexpr float3 kY{0.0f, 1.0f, 0.0f};
    constexpr float3 kZ{0.0f, 0.0f, 1.0f};
    expect_equal(kZ, crossed(kX, kY));
    expect_equal(kX, crossed(kY, kZ));
    expect_equal(kY, crossed(kZ, kX));
    expect_equal({0.0f, -1.0f, 0.0f}, crossed(kX, kZ));
}

TEST(VectorMath, CrossIsFreedAsOneObject)
{
    float a[] = {1.0f, 2.0f, 3.0f};
    float b[] = {4.0f, 5.0f, 6.0f};
    delete cross(a, b); // by this file's flags without a size; an array would make address sanitizer end it
    ::operator delete(static_cast<void*>(cross(a, b)));
}

TEST(VectorMath, CrossOfParallelVectorsIsThreeZerosInABlockOfItsOwn)
{
    float a[] = {0.1f, 0.2f, 0.3f};
    float b[] = {0.1f, 0.2f, 0.3f};
    float* const r = cross(a, b);
    EXPECT_NE(r, nullptr);
    EXPECT_EQ(r[0], 0.0f);
    EXPECT_EQ(r[1], 0.0f);
    EXPECT_EQ(r[2], 0.0f);
    delete r;
}

TEST(VectorMath, CrossRoundsTheDifferenceOnce)
{
    auto v = vectors();
    for (std::size_t i = 1; i < v.size(); ++i) {
        float3& a = v[i - 1];
        float3& b = v[i];
        float* const r = cross(&a.x, &b.x);
        double const x = double(a.y) * double(b.z) - double(a.z) * double(b.y);
        double const y = double(a.z) * double(b.x) - double(a.x) * double(b.z);
        double const z = double(b.y) * double(a.x) - double(b.x) * double(a.y);
        EXPECT_EQ(r[0], float(x));
        EXPECT_EQ(r[1], float(y));
        EXPECT_EQ(r[2], float(z));
        delete r;
    }
}

TEST(VectorMath, DotAddsTheZTermLast)
{
    // The 1 is lost against 2^60 unless the two large terms have cancelled before it is added.
    constexpr float kLarge = 1073741824.0f;
    float a[] = {-kLarge, kLarge, 1.0f};
    float b[] = {kLarge, kLarge, 1.0f};
    EXPECT_EQ(dot(a, b), 1.0f);
    float c[] = {1.0f, kLarge, -kLarge};
    float d[] = {1.0f, kLarge, kLarge};
    EXPECT_EQ(dot(c, d), 0.0f);
    float e[] = {kLarge, 1.0f, -kLarge};
    float f[] = {kLarge, 1.0f, kLarge};
    EXPECT_EQ(dot(e, f), 0.0f);
}

TEST(VectorMath, LengthsAgreeAndRoundTheSumBeforeTheRoot)
{
    for (float3& v : vectors()) {
        double const square =
            double(v.y) * double(v.y) + double(v.x) * double(v.x) + double(v.z) * double(v.z);
        auto const expected = float(std::sqrt(double(float(square))));
        EXPECT_EQ(length(&v.x), expected);
        EXPECT_EQ(length(v.x, v.y, v.z), expected);
    }
}

TEST(VectorMath, DistanceTakesItsCoordinatesInterleaved)
{
    EXPECT_EQ(length(4.0f, 1.0f, 2.0f, 2.0f, 9.0f, 5.0f), 5.0f);
    float a[] = {4.0f, 2.0f, 9.0f};
    float b[] = {1.0f, 2.0f, 5.0f};
    EXPECT_EQ(length(a, b), 5.0f);
}

TEST(VectorMath, DistanceRoundsTheDifferencesToFloat)
{
    auto v = vectors();
    for (std::size_t i = 1; i < v.size(); ++i) {
        float3& a = v[i - 1];
        float3& b = v[i];
        float const dx = b.x - a.x;
        float const dy = b.y - a.y;
        float const dz = b.z - a.z;
        double const square = double(dx) * double(dx) + double(dy) * double(dy) + double(dz) * double(dz);
        auto const expected = float(std::sqrt(double(float(square))));
        EXPECT_EQ(length(&a.x, &b.x), expected);
        EXPECT_EQ(length(b.x, a.x, b.y, a.y, b.z, a.z), expected);
    }
}

TEST(VectorMath, NormalizeDividesByTheRoundedLength)
{
    for (float3 v : vectors()) {
        float const len = length(&v.x);
        float3 unit = v;
        normalize(&unit.x);
        EXPECT_EQ(unit.x, v.x / len);
        EXPECT_EQ(unit.y, v.y / len);
        EXPECT_EQ(unit.z, v.z / len);
    }
}

TEST(VectorMath, NormalizeTurnsTheZeroVectorIntoNaN)
{
    float v[] = {0.0f, 0.0f, 0.0f};
    normalize(v);
    EXPECT_TRUE(std::isnan(v[0]));
    EXPECT_TRUE(std::isnan(v[1]));
    EXPECT_TRUE(std::isnan(v[2]));
}

TEST(VectorMath, RsqrtIsATrueQuotient)
{
    EXPECT_EQ(rsqrt(0.0f), kInfinity);
    EXPECT_TRUE(std::isnan(rsqrt(-1.0f)));
    EXPECT_EQ(rsqrt(4.0f), 0.5f);
}

TEST(VectorMath, RsqrtRoundsTheRootBeforeTheQuotient)
{
    int shown = 0;
    for (float3 const& v : vectors()) {
        float const x = std::fabs(v.x);
        double const root = std::sqrt(double(x));
        EXPECT_EQ(rsqrt(x), float(1.0 / double(float(root))));
        shown += float(1.0 / root) != float(1.0 / double(float(root))) ? 1 : 0;
    }
    EXPECT_GT(shown, 100) << "values that show the rounding";
}

TEST(VectorMath, SaturateLimitsToTheUnitRangeAndLetsNaNThrough)
{
    EXPECT_EQ(saturate(1.5f), 1.0f);
    EXPECT_EQ(saturate(-0.5f), 0.0f);
    EXPECT_EQ(saturate(0.25f), 0.25f);
    EXPECT_TRUE(std::isnan(saturate(kNaN)));
}

TEST(VectorMath, MaxNumGivesItsSecondOperandOnAnUnorderedPair)
{
    EXPECT_EQ(max_num(2.0f, 1.0f), 2.0f);
    EXPECT_EQ(max_num(kNaN, 1.0f), 1.0f);
    EXPECT_TRUE(std::isnan(max_num(1.0f, kNaN)));
}

TEST(VectorMath, ToradMultipliesBeforeItDivides)
{
    for (int degrees = -720; degrees <= 720; ++degrees) {
        EXPECT_EQ(torad(float(degrees)), float(double(degrees) * 3.141592653589793 / 180.0));
    }
}

TEST(VectorMath, IncrementLeavesItsOperandAlone)
{
    float3 v = {1.0f, 20.0f, 300.0f};
    expect_equal({2.0f, 21.0f, 301.0f}, ++v);
    expect_equal({0.0f, 19.0f, 299.0f}, --v);
    expect_equal({1.0f, 20.0f, 300.0f}, v);
}

template <typename T>
T wrapped(T value, T limit)
{
    limit_num(value, limit);
    return value;
}

TEST(VectorMath, LimitNumWrapsAndIncludesBothEnds)
{
    EXPECT_EQ(wrapped(720, 360), 360);
    EXPECT_EQ(wrapped(721, 360), 1);
    EXPECT_EQ(wrapped(-360, 360), 0);
    EXPECT_EQ(wrapped(-1, 360), 359);
    EXPECT_EQ(wrapped(0, 360), 0);
    EXPECT_EQ(wrapped(360, 360), 360);
    EXPECT_EQ(wrapped(720.0f, 360.0f), 360.0f);
    EXPECT_EQ(wrapped(-360.0f, 360.0f), 0.0f);
    EXPECT_EQ(wrapped(360.0f, 360.0f), 360.0f);
}

TEST(VectorMath, LimitNumLeavesAValueInRangeAsItIs)
{
    for (int const value : {0, 1, 359, 360}) {
        EXPECT_EQ(wrapped(value, 360), value);
    }
    for (float const value : {0.0f, -0.0f, 1e-40f, 0.1f, 359.9f, 360.0f}) {
        float const after = wrapped(value, 360.0f);
        EXPECT_TRUE(umbrixlib::test::same_bits(&value, &after, 1)) << value;
    }
}

TEST(VectorMath, LimitNumEqualsTheStepwiseWalkOnIntegers)
{
    for (int limit : {1, 2, 3, 7, 360}) {
        for (int value = -1000; value <= 1000; ++value) {
            int expected = value;
            if (expected > limit) {
                while (expected > limit) {
                    expected -= limit;
                }
            } else {
                while (expected < 0) {
                    expected += limit;
                }
            }
            EXPECT_EQ(wrapped(value, limit), expected) << value << " " << limit;
        }
    }
}

TEST(VectorMath, LimitNumRoundsEachStepToFloat)
{
    float expected = 10.0f;
    while (expected > 0.3f) {
        expected = float(double(expected) - double(0.3f));
    }
    EXPECT_EQ(wrapped(10.0f, 0.3f), expected);
}

TEST(VectorMath, LimitNumEndsWhereNoStepLeadsIntoTheRange)
{
    EXPECT_EQ(wrapped(5, 0), 5);
    EXPECT_EQ(wrapped(5, -3), 5);
    EXPECT_EQ(wrapped(5.0f, 0.0f), 5.0f);
    EXPECT_EQ(wrapped(1e10f, 1.0f), 1e10f);
    EXPECT_TRUE(std::isnan(wrapped(kNaN, 1.0f)));
    EXPECT_EQ(wrapped(std::numeric_limits<int>::max(), 1), 1);
}

} // namespace
