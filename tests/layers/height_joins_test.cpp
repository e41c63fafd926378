// SPDX-License-Identifier: MIT
// The joins of heights on every instruction set, bit for bit against the formulas written out.
#include "layers/height_joins.h"

#include "every_target.h"
#include "random_image.h"
#include "same_bits.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace umbrixlib::test;
using umbrixlib::detail::HeightJoin;

/// What @p blend fades to.
double second(HeightJoin join, double blend, double layer)
{
    if (join == HeightJoin::kFade) {
        return layer;
    }
    if (join == HeightJoin::kMultiply) {
        return layer * blend;
    }
    if (join == HeightJoin::kAdd) {
        return layer + blend;
    }
    float const screen = float(1.0 - (1.0 - layer) * (1.0 - blend));
    float const product = float(layer * blend);
    return double(float(double(screen) * blend + double(product) * (1.0 - blend)));
}

float joined(HeightJoin join, float blend, float layer, float scale, float fraction)
{
    float const scaled = float(double(layer) * double(scale));
    double const b = double(blend);
    double const t = double(fraction);
    return join == HeightJoin::kStart ? scaled : float(second(join, b, double(scaled)) * t + b * (1.0 - t));
}

class HeightJoins : public testing::TestWithParam<HeightJoin> {};

INSTANTIATE_TEST_SUITE_P(Each, HeightJoins,
                         testing::Values(HeightJoin::kStart, HeightJoin::kFade, HeightJoin::kOverlay,
                                         HeightJoin::kMultiply, HeightJoin::kAdd));

TEST_P(HeightJoins, EqualTheFormulas)
{
    constexpr std::size_t kBefore = 3; // heights of the layer that are passed over
    for_every_target([](char const* target) {
        for (std::size_t const count : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 1000U}) {
            for (Values const values : {Values::kUnit, Values::kSigned, Values::kHostile}) {
                for (float const fraction : {0.0f, 0.37f, 1.0f, 1.5f, -0.25f}) {
                    float const scale = fraction == 0.37f ? 0.7f : 1.0f;
                    auto blend = random_image<float>(count, 1, values);
                    auto const layer = random_image<float>(count + kBefore, 2, values);
                    std::vector<float> expected;
                    for (std::size_t i = 0; i < count; ++i) {
                        expected.push_back(joined(GetParam(), blend[i], layer[kBefore + i], scale, fraction));
                    }
                    umbrixlib::detail::join_heights({GetParam(), layer.data(), scale, fraction}, kBefore,
                                                    blend.data(), count);
                    ASSERT_TRUE(same_bits(expected, blend)) << target << ", " << count << ", " << fraction;
                }
            }
        }
    });
}

} // namespace
