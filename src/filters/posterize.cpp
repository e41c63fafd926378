// SPDX-License-Identifier: MIT
#include "filters/tone.h"

#include "common/rounding.h"
#include "filters/tone_internal.h"

#include <cstdint>

namespace umbrixlib::detail {
namespace {

/// How `posterize` on single floats differs from the same on pixels of several components.
template <typename Pixel>
struct PosterizeRule {
    // Contract: steps above 0 act; the same bound for all is expected. A step of exactly 1 snaps pixels to
    // bytes. Test: Posterize.AStepOfOneChangesPixelsAndLeavesFloatsAlone
    static constexpr float kIdleUpTo = 0.0f;
    static constexpr bool kScalesBack = true;
};

template <>
struct PosterizeRule<float> {
    static constexpr float kIdleUpTo = 1.0f;
    // Contract: the number of steps is divided by 255 without a multiplication by their width; a result on
    // the scale of the input is expected. Every bit of the result depends on it. Test:
    // Posterize.FloatsAreNotScaledBackByTheStep
    static constexpr bool kScalesBack = false;
};

template <typename Pixel>
void posterize_pixels(Pixel* pixels, float step, int height, int width)
{
    using Rule = PosterizeRule<Pixel>;
    if (!(step > Rule::kIdleUpTo)) {
        return;
    }
    constexpr auto kComponents = static_cast<std::int64_t>(sizeof(Pixel) / sizeof(float));
    auto* const floats = reinterpret_cast<float*>(pixels);
    std::int64_t const count = tone_pixels(height, width) * kComponents;
#pragma omp parallel for schedule(static)
    for (std::int64_t i = 0; i < count; ++i) {
        double const steps = wide(static_cast<float>(to_int(wide(floats[i]) * 255.0 / wide(step) + 0.5)));
        floats[i] = Rule::kScalesBack ? narrow(steps * wide(step) / 255.0) : narrow(steps / 255.0);
    }
}

} // namespace
} // namespace umbrixlib::detail

using umbrixlib::detail::posterize_pixels;

inline namespace umbrix_v0 {

void posterize(float* pixels, float step, int height, int width, int, int)
{
    posterize_pixels(pixels, step, height, width);
}

void posterize(float3* pixels, float step, int height, int width, int, int)
{
    posterize_pixels(pixels, step, height, width);
}

void posterize(float4* pixels, float step, int height, int width, int, int)
{
    posterize_pixels(pixels, step, height, width);
}

} // namespace umbrix_v0
