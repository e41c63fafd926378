// SPDX-License-Identifier: MIT
#include "texels/ray_directions_internal.h"

#include "boundary/platform.h"
#include "umbrix_test_options.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace umbrixlib::detail;

double degrees(double radians)
{
    return radians * 180.0 / 3.141592653589793;
}

double elevation(float3 d)
{
    return degrees(std::atan2(double(d.z), std::hypot(double(d.x), double(d.y))));
}

/// Azimuth of @p d from @p centre on, -180 to 180.
double azimuth_from(double centre, float3 d)
{
    return std::remainder(degrees(std::atan2(double(d.y), double(d.x))) - centre, 360.0);
}

TEST(RayDirections, BandsAreCutOffAtTheHorizonAndTheZenith)
{
    Elevations const band(kUpperElevation, 20.0f);
    EXPECT_FLOAT_EQ(band.lowest, 25.264339f);
    EXPECT_FLOAT_EQ(band.highest, 45.264339f);
    EXPECT_EQ(Elevations(kLowerElevation, 60.0f).lowest, 0.0f);
    EXPECT_EQ(Elevations(kUpperElevation, 120.0f).highest, 90.0f);
}

TEST(RayDirections, AStepAdvancesOneTexelInX)
{
    float const inv_width = 1.0f / 64.0f;
    float3 const forward = step_vector({0.5f, 0.25f, 1.0f}, inv_width);
    EXPECT_EQ(forward.x, inv_width);
    EXPECT_EQ(forward.y, 0.5f / 64.0f);
    EXPECT_EQ(forward.z, 2.0f / 64.0f);
    float3 const backward = step_vector({-0.5f, 0.25f, 1.0f}, inv_width);
    EXPECT_EQ(backward.x, -inv_width);
    EXPECT_EQ(backward.y, 0.5f / 64.0f);
    EXPECT_EQ(backward.z, 2.0f / 64.0f);
}

TEST(RayDirections, ABasisWithoutXStepsToInfinity)
{
    float3 const step = step_vector({0.0f, 0.5f, 0.5f}, 0.25f);
    EXPECT_EQ(step.x, -0.25f);
    EXPECT_TRUE(std::isinf(step.y));
    EXPECT_TRUE(std::isinf(step.z));
}

TEST(RayDirections, StayWithinTheirLimits)
{
    platform::seed_random(5);
    Elevations const upper(kUpperElevation, 30.0f);
    Elevations const lower(kLowerElevation, 30.0f);
    for (int i = 0; i < 500; ++i) {
        ThreeBands const d = jittered_directions(upper, lower, 40.0f);
        EXPECT_NEAR(elevation(d.a), kUpperElevation, 15.001);
        EXPECT_NEAR(elevation(d.b), kUpperElevation, 15.001);
        EXPECT_NEAR(elevation(d.c), kLowerElevation, 15.001);
        EXPECT_NEAR(azimuth_from(120.0, d.a), 0.0, 20.001);
        EXPECT_NEAR(azimuth_from(240.0, d.b), 0.0, 20.001);
        EXPECT_NEAR(azimuth_from(0.0, d.c), 0.0, 20.001);
        EXPECT_NEAR(azimuth_from(120.0, d.a), azimuth_from(0.0, d.c), 0.001) << "one jitter for all bands";
    }
}

TEST(RayDirections, ShareOneElevationWhileTheLowerBandAllowsIt)
{
    platform::seed_random(9);
    Elevations const band(30.0, 20.0f);
    for (int i = 0; i < 100; ++i) {
        ThreeBands const d = jittered_directions(band, band, 10.0f);
        EXPECT_NEAR(elevation(d.a), elevation(d.c), 0.001);
    }
}

TEST(RayDirections, LowerDirectionsAreAsLongAsTheirBasis)
{
    ThreeBands const d = jittered_directions({30.0, 0.0f}, {30.0, 0.0f}, 0.0f);
    EXPECT_NEAR(d.c.x * d.c.x + d.c.y * d.c.y + d.c.z * d.c.z, 11.0f / 6.0f, 1e-5f);
    EXPECT_NEAR(d.a.x * d.a.x + d.a.y * d.a.y + d.a.z * d.a.z, 1.0f, 1e-5f);
}

} // namespace
