// SPDX-License-Identifier: MIT
#include "common/rounding.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

using umbrixlib::detail::to_byte;
using umbrixlib::detail::to_int;

TEST(Rounding, ToIntTruncatesTowardsZero)
{
    EXPECT_EQ(to_int(2.9), 2);
    EXPECT_EQ(to_int(-2.9), -2);
    EXPECT_EQ(to_int(-0.0), 0);
}

TEST(Rounding, ToIntKeepsTheWholeRangeOfInt)
{
    EXPECT_EQ(to_int(2147483647.0), INT_MAX);
    EXPECT_EQ(to_int(2147483647.9), INT_MAX);
    EXPECT_EQ(to_int(-2147483648.0), INT_MIN);
    EXPECT_EQ(to_int(-2147483648.9), INT_MIN);
}

TEST(Rounding, ToIntGivesTheIndefiniteValueForWhatDoesNotFit)
{
    EXPECT_EQ(to_int(2147483648.0), INT_MIN);
    EXPECT_EQ(to_int(-2147483649.0), INT_MIN);
    EXPECT_EQ(to_int(std::numeric_limits<double>::infinity()), INT_MIN);
    EXPECT_EQ(to_int(std::numeric_limits<double>::quiet_NaN()), INT_MIN);
}

TEST(Rounding, ToByteKeepsTheLowEightBits)
{
    EXPECT_EQ(to_byte(255.9), 255);
    EXPECT_EQ(to_byte(256.0), 0);
    EXPECT_EQ(to_byte(-1.0), 255);
    EXPECT_EQ(to_byte(std::numeric_limits<double>::quiet_NaN()), 0);
}

} // namespace
