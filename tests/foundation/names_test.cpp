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
    char text[] = "rock_n.tga";
    EXPECT_EQ(toupper(text), "ROCK_N.TGA");
    EXPECT_EQ(strrpos(text, '.'), 6);
    int size = 0;
    delete[] fill_array(size, 3, 1.0f);
    EXPECT_EQ(size, 3);
    float weight = 0.0f;
    blur(&weight, &weight, 1, 1, 1.0f, true);
    EXPECT_EQ(weight, 0.0f);
    EXPECT_FALSE(UmbrixFolder("/missing folder", "*.tga", options, &layers, nullptr, nullptr, nullptr));
    EXPECT_FALSE(FolderToNormal("/missing folder", "*.tga", 1.0f, 0.0f, false, 0, 0.0f, false, layers, false,
                                false, nullptr, nullptr, nullptr));
    umbrix_list list;
    EXPECT_EQ(list.get_rays(0), umbrix_data().rays);
    EXPECT_EQ(list.get_node(0).filename, umbrix_node().filename);
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
