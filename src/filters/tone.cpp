// SPDX-License-Identifier: MIT
#include "filters/tone.h"

#include "filters/tone_internal.h"

namespace umbrixlib::detail {
namespace {

ToneSteps brightening(float amount)
{
    ToneSteps steps;
    steps.brightens = true;
    steps.brightness = tone_amount(amount);
    return steps;
}

ToneSteps contrast_change(float amount)
{
    ToneSteps steps;
    steps.changes_contrast = true;
    steps.contrast = tone_amount(amount);
    return steps;
}

ToneSteps limitation(int low, int high)
{
    ToneSteps steps;
    steps.limits = true;
    steps.low = tone_level(low);
    steps.high = tone_level(high);
    return steps;
}

} // namespace
} // namespace umbrixlib::detail

using namespace umbrixlib::detail;

inline namespace umbrix_v0 {

// The exported overloads of one pixel type.
#define UMBRIX_TONE_OPERATORS(Pixel)                                                                         \
    void brighten(Pixel* pixels, int height, int width, float amount)                                        \
    {                                                                                                        \
        sweep_image(pixels, brightened_pixels<Pixel>(height, width), brightening(amount));                   \
    }                                                                                                        \
    void brighten(Pixel* pixels, int height, int width, float amount, int thread, int threads)               \
    {                                                                                                        \
        sweep_share(pixels, 0, brightened_pixels<Pixel>(height, width), brightening(amount),                 \
                    {thread, threads});                                                                      \
    }                                                                                                        \
    void change_contrast(Pixel* pixels, int height, int width, float amount)                                 \
    {                                                                                                        \
        sweep_image(pixels, tone_pixels(height, width), contrast_change(amount));                            \
    }                                                                                                        \
    void change_contrast(Pixel* pixels, int height, int width, float amount, int thread, int threads)        \
    {                                                                                                        \
        sweep_share(pixels, 0, tone_pixels(height, width), contrast_change(amount), {thread, threads});      \
    }                                                                                                        \
    void limit_color(Pixel* pixels, int height, int width, int low, int high)                                \
    {                                                                                                        \
        sweep_image(pixels, tone_pixels(height, width), limitation(low, high));                              \
    }                                                                                                        \
    void limit_color(Pixel* pixels, int height, int width, int low, int high, int thread, int threads)       \
    {                                                                                                        \
        sweep_share(pixels, 0, tone_pixels(height, width), limitation(low, high), {thread, threads});        \
    }

UMBRIX_TONE_OPERATORS(float)
UMBRIX_TONE_OPERATORS(float3)
UMBRIX_TONE_OPERATORS(float4)
#undef UMBRIX_TONE_OPERATORS

} // namespace umbrix_v0
