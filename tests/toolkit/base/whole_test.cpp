// SPDX-License-Identifier: MIT
#include "toolkit/base/whole.h"

#include <gtest/gtest.h>
#include <limits>

namespace umbrixlib::test {
namespace {

using toolkit::is_whole;

TEST(WholeNumbers, HaveNothingBehindThePoint)
{
    for (double const whole : {0.0, 1.0, 3.0, -7.0, 1e300}) {
        EXPECT_TRUE(is_whole(whole)) << whole;
    }
    for (double const other : {0.5, 1.25, -2.75, 1e-300, 2147483647.5}) {
        EXPECT_FALSE(is_whole(other)) << other;
    }
    EXPECT_FALSE(is_whole(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(is_whole(std::numeric_limits<double>::quiet_NaN()));
}

} // namespace
} // namespace umbrixlib::test
