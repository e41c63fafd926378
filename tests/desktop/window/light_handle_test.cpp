// SPDX-License-Identifier: MIT
#include "views/light_handle.h"

#include <gtest/gtest.h>

namespace {

using umbrix_desktop::light_at;
using umbrix_desktop::place_of_light;
using umbrixlib::toolkit::Light;

constexpr QRectF kPane(100, 50, 200, 400); // its circle has a radius of 80 around 200, 250

TEST(LightHandle, StandsTowardsTheLight)
{
    EXPECT_EQ(place_of_light({0, 0}, kPane), QPointF(280, 250));
    EXPECT_NEAR(place_of_light({90, 0}, kPane).y(), 170, 1e-9);
    EXPECT_NEAR(place_of_light({180, 60}, kPane).x(), 160, 1e-9);
    EXPECT_NEAR(place_of_light({45, 90}, kPane).x(), 200, 1e-9);
}

TEST(LightHandle, LeadsBackToItsLight)
{
    for (double azimuth : {0.0, 45.0, 135.0, 270.0, 359.0}) {
        for (double elevation : {1.0, 30.0, 45.0, 89.0}) {
            EXPECT_EQ(light_at(place_of_light({azimuth, elevation}, kPane), kPane),
                      (Light{azimuth, elevation}));
        }
    }
}

TEST(LightHandle, BeyondItsCircleIsLevel)
{
    EXPECT_EQ(light_at({1000, 250}, kPane), (Light{0, 0}));
    EXPECT_EQ(light_at({200, 1000}, kPane), (Light{270, 0}));
}

TEST(LightHandle, InTheMiddleIsStraightAbove)
{
    EXPECT_EQ(light_at({200, 250}, kPane).elevation_degrees, 90);
}

} // namespace
