// SPDX-License-Identifier: MIT

/// Kernels that look at one texel at a time: rows and columns do not show.

#include "boundary/texture_kernels.h"
#include "kernel_shapes.h"
#include "random_image.h"
#include "same_bits.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using umbrixlib::test::random_image;
using velloric::test::Size;

/// Single lines, a rectangle of as many texels, and one texel.
constexpr Size kShapes[] = {{1, 12}, {12, 1}, {3, 4}, {1, 1}};

/// Runs @p kernel on the first texels of an image in every shape, and once on all of it as a row.
template <typename Texel, typename Kernel>
void expect_no_shape(std::vector<Texel> const& image, Kernel&& kernel)
{
    std::vector<Texel> row = image;
    kernel(row.data(), 1, static_cast<int>(row.size()));
    for (Size const size : kShapes) {
        std::vector<Texel> expected = image;
        std::copy_n(row.begin(), size.texels(), expected.begin());
        std::vector<Texel> actual = image;
        kernel(actual.data(), size.height, size.width);
        EXPECT_SAME_BITS(expected, actual) << size.height << " x " << size.width;
    }
}

TEST(FlatKernels, LinesAndOneTexelAreDoneWholeAndNothingBehindThem)
{
    auto const heights = random_image<float>(15, 1);
    auto const normals = random_image<float3>(15, 2);
    auto other = random_image<float3>(15, 3);
    expect_no_shape(heights,
                    [](float* h, int height, int width) { ChangeDepth(h, height, width, 0.5f, 2.0f); });
    expect_no_shape(normals, [](float3* n, int height, int width) { NormalScale(n, height, width, 3.0f); });
    expect_no_shape(normals, [](float3* n, int height, int width) {
        Normal2Umbrix(n, height, width, Modes_FlatIsFull, 0, 2);
        Normal2Umbrix(n, height, width, Modes_FlatIsFull, 1, 2);
    });
    expect_no_shape(normals, [&](float3* n, int height, int width) {
        BlendNormal(30.0f, other.data(), n, n, height, width);
    });
    for (BlendType const type : {BlendType_Blend, BlendType_Overlay}) {
        expect_no_shape(normals, [&](float3* n, int height, int width) {
            Blend(type, 30.0f, n, other.data(), n, height, width);
        });
        expect_no_shape(normals, [&](float3* n, int height, int width) {
            Blend(type, 30.0f, n, other.data(), n, height, width, 0, 2);
            Blend(type, 30.0f, n, other.data(), n, height, width, 1, 2);
        });
    }
}

} // namespace
