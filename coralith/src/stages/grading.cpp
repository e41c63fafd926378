// SPDX-License-Identifier: MIT
#include "stages/grading.h"

#include "kernels/tone.h"
#include "stages/gaussian_blur.h"

namespace coralith {
namespace {

/// Limited to -1..1; NaN stays.
float tone_amount(float amount)
{
    float const capped = amount > 1.0f ? 1.0f : amount;
    return capped < -1.0f ? -1.0f : capped;
}

/// The level that @p value steps of 1/255 stand for. The options hold them in bytes.
float tone_level(int value)
{
    return static_cast<float>(static_cast<double>(value) / 255.0);
}

int tone_steps(Grading const& grading)
{
    int steps = 0;
    if (grading.contrast != 0.0f) {
        steps |= kernels::kChangesContrast;
    }
    if (grading.min != 0 || grading.max < 255) {
        steps |= kernels::kLimits;
    }
    if (grading.brightness != 0.0f) {
        steps |= kernels::kBrightens;
    }
    return steps;
}

bool change_tone(Backend& backend, DeviceArray const& map, Shape shape, int components,
                 Grading const& grading)
{
    int const steps = tone_steps(grading);
    if (steps == 0) {
        return true;
    }
    Index const count = shape.texels() * components;
    // Contract: brightness reaches the first `rows` heights only, as `PreProcess` has it; all of them are
    // expected. Test: CoralithStages.HeightBrightnessReachesTheFirstRowsElementsOnly
    Index const brightened = components == 1 ? shape.rows : count;
    int const keeps_alpha = components == 4 ? 1 : 0;
    return backend.launch(Kernel::kChangeTone, count,
                          {map, count, brightened, keeps_alpha, steps, tone_amount(grading.contrast),
                           tone_level(grading.min), tone_level(grading.max),
                           tone_amount(grading.brightness)});
}

} // namespace

Grading Grading::of_heights(umbrix_options const& options)
{
    return {options.h_contrast, options.h_min, options.h_max, options.h_brightness, options.h_smooth};
}

Grading Grading::of_map(umbrix_options const& options)
{
    return {options.contrast, options.min, options.max, options.brightness, options.smooth};
}

bool grade(Backend& backend, Shape shape, int components, Grading const& grading, float const* in, float* out)
{
    DeviceArray map(backend);
    return map.fill(in, static_cast<std::size_t>(shape.texels() * components)) &&
           change_tone(backend, map, shape, components, grading) &&
           (grading.smooth == 0.0f || gaussian_blur(backend, map, shape, components, grading.smooth)) &&
           backend.finish() && backend.download(map.memory(), out, shape.bytes(components));
}

} // namespace coralith
