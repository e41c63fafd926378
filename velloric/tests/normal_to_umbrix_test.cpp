// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/basis.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using umbrixlib::detail::kBasisA;
using umbrixlib::detail::kBasisB;
using umbrixlib::detail::kBasisC;
using umbrixlib::test::kNaN;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;

constexpr float kRootOf2Over11 = 0.426401433f;
constexpr float3 kUnitBasisC = {0.904534034f, 0.0f, kRootOf2Over11};

using Image = std::vector<float3>;

Image converted(Image image, Modes mode, int threads = 1)
{
    for (int thread = threads - 1; thread >= 0; --thread) {
        Normal2Umbrix(image.data(), 1, static_cast<int>(image.size()), mode, thread, threads);
    }
    return image;
}

/// The dot product as the vector functions define it: y, x, z, in double.
double light(float3 const& normal, float3 const& basis)
{
    return static_cast<double>(normal.y) * static_cast<double>(basis.y) +
           static_cast<double>(normal.x) * static_cast<double>(basis.x) +
           static_cast<double>(normal.z) * static_cast<double>(basis.z);
}

/// @p response of the light from each basis, in the order of the channels.
template <typename Response>
Image expected(Image const& normals, float3 const& basis_c, Response response)
{
    Image result;
    for (float3 const& normal : normals) {
        auto const channel = [&](float3 const& basis) {
            return static_cast<float>(response(light(normal, basis), static_cast<double>(basis.z)));
        };
        result.push_back({channel(basis_c), channel(kBasisB), channel(kBasisA)});
    }
    return result;
}

double as_it_is(double value, double)
{
    return value;
}

/// Normals of any kind, among them long ones whose products cancel, so that the order of the sum shows.
Image normals()
{
    auto result = random_image<float3>(400, 1, Values::kSigned);
    for (auto const& hostile : random_image<float3>(400, 2, Values::kHostile)) {
        result.push_back(hostile);
    }
    for (auto const& any : random_image<float3>(400, 3, Values::kSigned)) {
        result.push_back({any.x * 1e20f, any.y * 1.0f, any.x * 1.0001e20f});
        result.push_back({any.x * 1e20f, any.x * 5.7735027e19f, any.z});
    }
    return result;
}

TEST(Normal2UmbrixKernel, PlainModeIsTheDotProductsWithTheBasisAsItIs)
{
    EXPECT_SAME_BITS(expected(normals(), kBasisC, as_it_is), converted(normals(), Modes_Projection));
}

TEST(Normal2UmbrixKernel, TheBasisSetHasItsStatedLengthsAndDirections)
{
    EXPECT_FLOAT_EQ(kBasisC.x, std::sqrt(1.5f));
    EXPECT_EQ(kBasisC.y, 0.0f);
    for (float const z : {kBasisA.z, kBasisB.z, kBasisC.z}) {
        EXPECT_FLOAT_EQ(z, 1.0f / std::sqrt(3.0f));
    }
    for (float3 const& basis : {kBasisA, kBasisB}) {
        EXPECT_NEAR(light(basis, basis), 1.0, 1e-7);
        EXPECT_FLOAT_EQ(basis.x, -1.0f / std::sqrt(6.0f));
    }
    EXPECT_GT(kBasisA.y, 0.0f); // azimuth 120
    EXPECT_LT(kBasisB.y, 0.0f); // azimuth 240
}

TEST(Normal2UmbrixKernel, AFlatNormalGivesTheHeightsOfTheBasis)
{
    EXPECT_SAME_BITS((Image{{kBasisC.z, kBasisB.z, kBasisA.z}}),
                     converted({{0.0f, 0.0f, 1.0f}}, Modes_Projection));
    EXPECT_SAME_BITS((Image{{kRootOf2Over11, kBasisB.z, kBasisA.z}}),
                     converted({{0.0f, 0.0f, 1.0f}}, Modes_UnitBasis));
}

TEST(Normal2UmbrixKernel, TheBasisDirectionsLightTheirChannelMost)
{
    Image const result = converted({kUnitBasisC, kBasisB, kBasisA}, Modes_UnitBasis);
    EXPECT_FLOAT_EQ(result[0].x, 1.0f);
    EXPECT_FLOAT_EQ(result[1].y, 1.0f);
    EXPECT_FLOAT_EQ(result[2].z, 1.0f);
}

TEST(Normal2UmbrixKernel, UnitModeHasAThirdBasisOfUnitLength)
{
    EXPECT_NEAR(light(kUnitBasisC, kUnitBasisC), 1.0, 1e-7);
    EXPECT_SAME_BITS(expected(normals(), kUnitBasisC, as_it_is), converted(normals(), Modes_UnitBasis));
}

TEST(Normal2UmbrixKernel, FlatModeIsExactlyOneOnFlatGroundAndCutsNegativeLight)
{
    EXPECT_SAME_BITS((Image{{1.0f, 1.0f, 1.0f}}), converted({{0.0f, 0.0f, 1.0f}}, Modes_FlatIsFull));
    EXPECT_SAME_BITS((Image{{0.0f, 0.0f, 0.0f}}), converted({{0.0f, 0.0f, -1.0f}}, Modes_FlatIsFull));
    auto const cut_and_scaled = [](double value, double z) { return (value < 0.0 ? 0.0 : value) / z; };
    EXPECT_SAME_BITS(expected(normals(), kUnitBasisC, cut_and_scaled),
                     converted(normals(), Modes_FlatIsFull));
}

TEST(Normal2UmbrixKernel, SquaredModeCutsNegativeLightFirst)
{
    EXPECT_SAME_BITS((Image{{0.0f, 0.0f, 0.0f}}), converted({{0.0f, 0.0f, -1.0f}}, Modes_Squared));
    auto const cut_and_squared = [](double value, double) { return value < 0.0 ? 0.0 : value * value; };
    EXPECT_SAME_BITS(expected(normals(), kUnitBasisC, cut_and_squared), converted(normals(), Modes_Squared));
}

TEST(Normal2UmbrixKernel, AnyOtherModeIsPlain)
{
    for (int const mode : {4, 99, -1, std::numeric_limits<int>::min()}) {
        EXPECT_SAME_BITS(converted(normals(), Modes_Projection),
                         converted(normals(), static_cast<Modes>(mode)));
    }
}

TEST(Normal2UmbrixKernel, NaNPassesInEveryMode)
{
    for (Modes const mode : {Modes_Projection, Modes_UnitBasis, Modes_FlatIsFull, Modes_Squared}) {
        Image const result = converted({{0.0f, 0.0f, kNaN}}, mode);
        EXPECT_TRUE(std::isnan(result[0].x) && std::isnan(result[0].y) && std::isnan(result[0].z));
    }
}

TEST(Normal2UmbrixKernel, SlicesTogetherConvertEveryTexelOnce)
{
    for (Modes const mode : {Modes_Projection, Modes_FlatIsFull}) {
        Image const whole = converted(normals(), mode);
        for (int const threads : {2, 3, 5000}) {
            EXPECT_SAME_BITS(whole, converted(normals(), mode, threads));
        }
    }
}

TEST(Normal2UmbrixKernel, ASliceIsTheTexelsOfItsThread)
{
    Image const source = random_image<float3>(5 * 7, 4);
    Image const whole = converted(source, Modes_Squared);
    Image slice = source;
    Normal2Umbrix(slice.data(), 5, 7, Modes_Squared, 1, 3);
    for (std::size_t i = 0; i < 35; ++i) {
        EXPECT_EQ(slice[i].x, (i % 3 == 1 ? whole : source)[i].x);
    }
}

TEST(Normal2UmbrixKernel, NoSizeNoWork)
{
    Normal2Umbrix(nullptr, 0, 5, Modes_Projection, 0, 1);
    Normal2Umbrix(nullptr, 5, -1, Modes_Squared, 0, 1);
}

TEST(Normal2UmbrixKernel, AThreadThatIsNoneOfThemHasNoShare)
{
    Image const source = random_image<float3>(5 * 7, 4);
    for (int const thread : {-1, 3, 4, 34}) {
        Image slice = source;
        Normal2Umbrix(slice.data(), 5, 7, Modes_Squared, thread, 3);
        EXPECT_SAME_BITS(source, slice);
    }
}

} // namespace
