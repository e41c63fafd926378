// SPDX-License-Identifier: MIT
// Every exported name is reachable without a qualifier, also for users who bring in the standard library's
// names.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <math.h>

using namespace std; // NOLINT(google-build-using-namespace)

#include <umbrixlib.h>

#include <gtest/gtest.h>
#include <type_traits>

namespace {

TEST(Names, AreReachableUnqualified)
{
    float3 v = {3.0f, 4.0f, 0.0f};
    EXPECT_EQ(length(&v.x), 5.0f);
    EXPECT_EQ(length(3.0f, 4.0f, 0.0f), 5.0f);
    normalize(&v.x);
    EXPECT_EQ(saturate(2.0f), 1.0f);
    EXPECT_EQ(rsqrt(4.0f), 0.5f);
    EXPECT_EQ(max_num(1.0f, 2.0f), 2.0f);
    EXPECT_EQ(torad(180.0f), 3.14159274f);
    umbrix_options options = {};
    options.calc_type = calc_type_light_occlusion;
    options.UmbrixMode = Modes_FlatIsFull;
    EXPECT_EQ(options.calc_type, 2);
    LinkedList<n_layer> layers;
    EXPECT_EQ(layers.count, 0);
    ray step = {1.0f, 0.0f, 0.0f};
    EXPECT_EQ(step.x, 1.0f);
    EXPECT_EQ(BlendType_Overlay, 1);
    float4 pixel = {0.5f, 0.5f, 0.5f, 1.0f};
    brighten(&pixel, 1, 1, 0.25f);
    EXPECT_EQ(pixel.x, 0.75f);
    EXPECT_GE(DeviceCount(), 1);
}

TEST(Names, LeaveTheOverloadsOfTheStandardLibraryAlone)
{
    static_assert(is_same_v<decltype(fabs(1.0f)), float>);
    static_assert(is_same_v<decltype(ceil(1.0f)), float>);
    static_assert(is_same_v<decltype(exp(1.0f)), float>);
    EXPECT_EQ(fabs(-1.5f), 1.5f);
    EXPECT_EQ(tolower('A'), 'a');
    EXPECT_EQ(toupper('a'), 'A');
}

} // namespace
