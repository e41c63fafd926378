// SPDX-License-Identifier: MIT
#include "texels/texel_umbrix.h"

#include "random_image.h"
#include "umbrix_test_options.h"

#include <gtest/gtest.h>

namespace {

using umbrixlib::test::neutral_options;

TEST(Normal2Umbrix, AFlatNormalGivesTheHeightsOfTheBases)
{
    umbrix_options options = neutral_options();
    options.basis_a.z = 0.1f;
    options.basis_b.z = 0.2f;
    options.basis_c.z = 0.3f;
    float3 out = {};
    EXPECT_TRUE(normal2umbrix({0.0f, 0.0f, 1.0f}, out, options));
    EXPECT_EQ(out.x, 0.3f);
    EXPECT_EQ(out.y, 0.2f);
    EXPECT_EQ(out.z, 0.1f);
}

TEST(Normal2Umbrix, SumsInDoubleAndRoundsOnce)
{
    umbrix_options options = neutral_options();
    for (float3 const n : umbrixlib::test::random_image<float3>(1000, 5, umbrixlib::test::Values::kSigned)) {
        float3 out = {};
        normal2umbrix(n, out, options);
        auto const expected = [&n](float3 b) {
            return float(double(n.y) * double(b.y) + double(n.x) * double(b.x) + double(n.z) * double(b.z));
        };
        EXPECT_EQ(out.x, expected(options.basis_c));
        EXPECT_EQ(out.y, expected(options.basis_b));
        EXPECT_EQ(out.z, expected(options.basis_a));
    }
}

TEST(Normal2Umbrix, KeepsNegativeValues)
{
    umbrix_options options = neutral_options();
    float3 out = {};
    normal2umbrix({-1.0f, 0.0f, 0.0f}, out, options);
    EXPECT_EQ(out.x, -options.basis_c.x);
}

TEST(Normal2Umbrix, MayRunOnManyThreads)
{
    umbrix_options options = neutral_options();
    std::vector<float3> out(2000);
#pragma omp parallel for num_threads(4)
    for (int i = 0; i < 2000; ++i) {
        normal2umbrix({0.0f, 0.0f, float(i)}, out[static_cast<std::size_t>(i)], options);
    }
    EXPECT_EQ(out[1999].y, float(1999.0 * double(options.basis_b.z)));
}

} // namespace
