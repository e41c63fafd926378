// SPDX-License-Identifier: MIT
// The overlay of heights on every instruction set, bit for bit against the formula written out.
#include "layers/height_overlay.h"

#include "every_target.h"
#include "random_image.h"
#include "same_bits.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace umbrixlib::test;

float overlaid(float blend, float layer, float fraction)
{
    double const b = double(blend);
    double const l = double(layer);
    double const t = double(fraction);
    float const screen = float(1.0 - (1.0 - l) * (1.0 - b));
    float const product = float(l * b);
    float const overlay = float(double(screen) * b + double(product) * (1.0 - b));
    return float(double(overlay) * t + b * (1.0 - t));
}

TEST(HeightOverlay, EqualsTheFormula)
{
    for_every_target([](char const* target) {
        for (std::size_t const count : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 1000U}) {
            for (Values const values : {Values::kUnit, Values::kSigned, Values::kHostile}) {
                for (float const fraction : {0.0f, 0.37f, 1.0f}) {
                    auto blend = random_image<float>(count, 1, values);
                    auto const layer = random_image<float>(count, 2, values);
                    std::vector<float> expected;
                    for (std::size_t i = 0; i < count; ++i) {
                        expected.push_back(overlaid(blend[i], layer[i], fraction));
                    }
                    umbrixlib::detail::overlay_heights(blend.data(), layer.data(), fraction, count);
                    ASSERT_TRUE(same_bits(expected, blend)) << target << ", " << count << ", " << fraction;
                }
            }
        }
    });
}

} // namespace
