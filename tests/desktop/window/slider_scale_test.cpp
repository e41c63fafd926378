// SPDX-License-Identifier: MIT
#include "panels/slider_scale.h"

#include "toolkit/settings/setting_text.h"

#include <gtest/gtest.h>

namespace {

using umbrix_desktop::SliderScale;
using umbrixlib::toolkit::setting_called;
using umbrixlib::toolkit::setting_table;
using umbrixlib::toolkit::SettingRow;

SliderScale scale_of(char const* name)
{
    return SliderScale::of(setting_called(name));
}

TEST(SliderScale, EndsAreThoseOfTheRange)
{
    for (SettingRow const& row : setting_table()) {
        if (row.minimum < row.maximum) {
            SliderScale const scale = SliderScale::of(row);
            EXPECT_EQ(scale.number_at(0), row.minimum) << row.name;
            EXPECT_EQ(scale.number_at(SliderScale::kPlaces), row.maximum) << row.name;
            EXPECT_EQ(scale.place_of(row.minimum), 0) << row.name;
            EXPECT_EQ(scale.place_of(row.maximum), SliderScale::kPlaces) << row.name;
        }
    }
}

TEST(SliderScale, LeadsEachPlaceToANumberThatLeadsBack)
{
    for (char const* const name : {"relief", "alpha-limit", "h-contrast", "h-scale"}) {
        SliderScale const scale = scale_of(name);
        for (int place = 200; place <= SliderScale::kPlaces; place += 50) {
            EXPECT_NEAR(scale.place_of(scale.number_at(place)), place, 1) << name;
        }
    }
}

TEST(SliderScale, IsFineWhereUsualValuesAre)
{
    EXPECT_EQ(scale_of("relief").place_of(0.05), 171); // of 10: evenly it would be 5
    EXPECT_EQ(scale_of("alpha-limit").place_of(90), 500);
    EXPECT_EQ(scale_of("h-min").place_of(51), 200);
}

TEST(SliderScale, HasZeroInTheMiddleOfTwoSides)
{
    EXPECT_EQ(scale_of("n-scale").place_of(0), 500);
    EXPECT_EQ(scale_of("n-scale").number_at(500), 0);
    EXPECT_EQ(scale_of("n-scale").number_at(400), -8000);
    EXPECT_EQ(scale_of("contrast").number_at(500), 0);
}

TEST(SliderScale, GivesNumbersThatOneWouldType)
{
    EXPECT_EQ(scale_of("relief").number_at(171), 0.05);
    EXPECT_EQ(scale_of("relief").number_at(333), 0.369);
    EXPECT_EQ(scale_of("rays").number_at(233), 127);
}

} // namespace
