// SPDX-License-Identifier: MIT
// The arithmetic of blended normals on every instruction set, bit for bit against the formulas written out.
#include "layers/normal_slopes.h"

#include "every_target.h"
#include "nlayers_reference.h"
#include "random_image.h"
#include "same_bits.h"

#include <cmath>
#include <functional>
#include <random>

namespace {

using namespace umbrixlib::detail;
using namespace umbrixlib::test;

constexpr std::size_t kCounts[] = {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 1000};
constexpr float kFraction = 0.37f;

struct Inputs {
    std::vector<float3> blend, layer;
    std::vector<float> blend_heights, layer_heights;
};

Inputs inputs(std::size_t count, Values values)
{
    return {random_image<float3>(count, 1, values), random_image<float3>(count, 2, values),
            random_image<float>(count, 3, values), random_image<float>(count, 4, values)};
}

using Texel = std::function<float3(Inputs const&, std::size_t)>;
using Run = std::function<void(Inputs&)>;

/// Runs @p run on every instruction set and compares what is in `blend` afterwards with @p texel.
void expect_equal(Texel const& texel, Run const& run)
{
    for_every_target([&](char const* target) {
        for (std::size_t const count : kCounts) {
            for (Values const values : {Values::kSigned, Values::kHostile}) {
                Inputs in = inputs(count, values);
                std::vector<float3> expected(count);
                for (std::size_t i = 0; i < count; ++i) {
                    expected[i] = texel(in, i);
                }
                run(in);
                ASSERT_TRUE(same_bits(expected, in.blend)) << target << ", " << count;
            }
        }
    });
}

float3 slope(float3 v)
{
    return {float(double(v.x) / double(v.z)), float(double(v.y) / double(v.z)), 1.0f};
}

float saturated(float v)
{
    return v > 1.0f ? 1.0f : (0.0f > v ? 0.0f : v);
}

float faded(double second, float a)
{
    return float(second * double(kFraction) + double(a) * (1.0 - double(kFraction)));
}

TEST(NormalSlopes, DivideByZ)
{
    expect_equal([](Inputs const& in, std::size_t i) { return slope(in.blend[i]); },
                 [](Inputs& in) { normals_to_slopes(in.blend.data(), in.blend.size()); });
}

TEST(NormalSlopes, BecomeUnitVectors)
{
    expect_equal([](Inputs const& in, std::size_t i) { return reference_unit(in.blend[i]); },
                 [](Inputs& in) { slopes_to_normals(in.blend.data(), in.blend.size()); });
}

TEST(NormalSlopes, BecomeColours)
{
    expect_equal(
        [](Inputs const& in, std::size_t i) {
            auto const colour = [](float c) { return saturated(float((double(c) + 1.0) * 0.5)); };
            return float3{colour(in.layer[i].x), colour(in.layer[i].y), colour(in.layer[i].z)};
        },
        [](Inputs& in) { normals_to_colours(in.layer.data(), in.blend.data(), in.blend.size()); });
}

TEST(NormalSlopes, ComeBackFromColours)
{
    expect_equal(
        [](Inputs const& in, std::size_t i) {
            auto const component = [](float c) { return float(double(saturated(c)) * 2.0 - 1.0); };
            return reference_unit(
                {component(in.layer[i].x), component(in.layer[i].y), component(in.layer[i].z)});
        },
        [](Inputs& in) { colours_to_normals(in.layer.data(), in.blend.data(), in.blend.size()); });
}

TEST(NormalSlopes, MultiplyByTheHeights)
{
    expect_equal(
        [](Inputs const& in, std::size_t i) {
            float3 const a = slope(in.blend[i]);
            float3 const l = in.layer[i];
            double const base = double(in.blend_heights[i]);
            double const height = double(in.layer_heights[i]);
            return reference_unit({faded((double(l.x) / double(l.z)) * base + height * double(a.x), a.x),
                                   faded((double(l.y) / double(l.z)) * base + height * double(a.y), a.y),
                                   1.0f});
        },
        [](Inputs& in) {
            SlopeStep const step{in.layer.data(), in.layer_heights.data(), kFraction};
            join_slopes(&step, 1, in.blend.data(), in.blend_heights.data(), in.blend.data(), 0,
                        in.blend.size());
        });
}

TEST(NormalSlopes, Add)
{
    expect_equal(
        [](Inputs const& in, std::size_t i) {
            float3 const a = slope(in.blend[i]);
            float3 const l = in.layer[i];
            return reference_unit({faded(double(l.x) / double(l.z) + double(a.x), a.x),
                                   faded(double(l.y) / double(l.z) + double(a.y), a.y), 1.0f});
        },
        [](Inputs& in) {
            SlopeStep const step{in.layer.data(), nullptr, kFraction};
            join_slopes(&step, 1, in.blend.data(), nullptr, in.blend.data(), 0, in.blend.size());
        });
}

TEST(NormalSlopes, JoinInTurn)
{
    // The steps are done a register at a time; one after the other over all vectors is the same.
    for_every_target([&](char const* target) {
        for (std::size_t const count : kCounts) {
            Inputs in = inputs(count + 5, Values::kHostile);
            auto const third = random_image<float3>(count + 5, 9, Values::kSigned);
            SlopeStep const steps[] = {{in.layer.data(), nullptr, 0.37f},
                                       {third.data(), in.layer_heights.data(), 0.8f},
                                       {in.layer.data(), nullptr, 1.5f}};
            std::vector<float3> expected = in.blend;
            for (SlopeStep const& step : steps) {
                join_slopes(&step, 1, expected.data(), in.blend_heights.data(), expected.data(), 5, count);
            }
            std::vector<float3> joined = in.blend;
            join_slopes(steps, 3, in.blend.data(), in.blend_heights.data(), joined.data(), 5, count);
            ASSERT_TRUE(same_bits(expected, joined)) << target << ", " << count;
        }
    });
}

TEST(NormalSlopes, TheQuotientInDoubleIsExactToTheLastBit)
{
    // The blend has the slope that takes away the quotient's first bits, so that the sum shows its last ones.
    constexpr std::size_t kCount = 20000;
    std::mt19937 generator(5);
    auto const any = [&] {
        auto const mantissa = static_cast<float>(generator() >> 8) * (1.0f / 16777216.0f) + 1.0f;
        float const size = std::ldexp(mantissa, static_cast<int>(generator() % 41) - 20);
        return generator() % 2 == 0 ? size : -size;
    };
    std::vector<float3> blend(kCount), layer(kCount), expected(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        layer[i] = {any(), any(), any()};
        double const x = double(layer[i].x) / double(layer[i].z);
        double const y = double(layer[i].y) / double(layer[i].z);
        blend[i] = {-float(x), -float(y), 1.0f};
        expected[i] = reference_unit({float(x + double(blend[i].x)), float(y + double(blend[i].y)), 1.0f});
    }
    for_every_target([&](char const* target) {
        std::vector<float3> joined(kCount);
        SlopeStep const step{layer.data(), nullptr, 1.0f};
        join_slopes(&step, 1, blend.data(), nullptr, joined.data(), 0, kCount);
        EXPECT_TRUE(same_bits(expected, joined)) << target;
    });
}

} // namespace
