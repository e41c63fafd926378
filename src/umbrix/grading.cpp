// SPDX-License-Identifier: MIT
#include "umbrix/grading_internal.h"

#include "boundary/texel_array.h"
#include "filters/recursive_gaussian.h"
#include "filters/tone_internal.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <omp.h>

namespace umbrixlib::detail {
namespace {

/// The fields of one side of the options.
struct Grading {
    float contrast;
    int min, max;
    float brightness;
    float smooth;
};

ToneSteps tone_steps(Grading const& grading)
{
    ToneSteps steps;
    steps.changes_contrast = grading.contrast != 0.0f;
    steps.contrast = tone_amount(grading.contrast);
    steps.limits = grading.min != 0 || grading.max < 255;
    steps.low = tone_level(grading.min);
    steps.high = tone_level(grading.max);
    steps.brightens = grading.brightness != 0.0f;
    steps.brightness = tone_amount(grading.brightness);
    return steps;
}

Grading map_grading(umbrix_options const& options)
{
    return {options.contrast, options.min, options.max, options.brightness, options.smooth};
}

Grading height_grading(umbrix_options const& options)
{
    return {options.h_contrast, options.h_min, options.h_max, options.h_brightness, options.h_smooth};
}

/// `change_contrast`, `limit_color` and `brighten` on one share, in one sweep: a texel's steps depend on no
/// other texel, and each rounds to float as if it had been stored.
template <typename Pixel>
void tone_share(Pixel* pixels, int rows, int cols, ToneSteps const& steps, Share share)
{
    std::int64_t const graded = std::max<std::int64_t>(tone_pixels(rows, cols), 0);
    std::int64_t const brightened = std::max<std::int64_t>(brightened_pixels<Pixel>(rows, cols), 0);
    std::int64_t const both = std::min(graded, brightened);
    ToneSteps not_brightened = steps;
    not_brightened.brightens = false;
    ToneSteps only_brightened;
    only_brightened.brightens = steps.brightens;
    only_brightened.brightness = steps.brightness;
    sweep_share(pixels, 0, both, steps, share);
    sweep_share(pixels, both, graded, not_brightened, share);
    sweep_share(pixels, both, brightened, only_brightened, share);
}

/// Who takes the shares of the tone steps.
enum class Takers {
    kOneEach, ///< Thread i takes share i, if there is such a thread.
    kTeam,    ///< The team takes all, whatever its size.
};

template <typename Pixel>
void grade(Pixel* pixels, int rows, int cols, Grading const& grading, Takers takers)
{
    if (rows < 1 || cols < 1) {
        return; // brightness on floats counts rows alone, and there are none to read
    }
    ToneSteps const steps = tone_steps(grading);
    if (steps.any()) {
        // Contract: as many shares as processors, whatever the size of the team; the size of the team is
        // expected. With a smaller team the other shares stay as they are.
        // Test: Grading.ASmallerTeamLeavesTheOtherShares
        int const shares = omp_get_num_procs();
#pragma omp parallel
        {
            int const step = takers == Takers::kTeam ? omp_get_num_threads() : shares;
            for (int share = omp_get_thread_num(); share < shares; share += step) {
                tone_share(pixels, rows, cols, steps, {share, shares});
            }
        }
    }
    if (grading.smooth != 0.0f) {
        auto const count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
        auto const scratch = make_texel_array<Pixel>(count);
        gaussianFilterRGBA(pixels, pixels, scratch.get(), cols, rows, grading.smooth);
    }
}

} // namespace

void grade_heights(float* heights, int rows, int cols, umbrix_options const& options)
{
    grade(heights, rows, cols, height_grading(options), Takers::kTeam);
}

void grade_map(float4* map, int rows, int cols, umbrix_options const& options)
{
    grade(map, rows, cols, map_grading(options), Takers::kTeam);
}

bool grades_map(umbrix_options const& options)
{
    Grading const grading = map_grading(options);
    return tone_steps(grading).any() || grading.smooth != 0.0f;
}

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

bool PreProcess(float* heights, int rows, int cols, umbrix_options& options)
{
    grade(heights, rows, cols, height_grading(options), Takers::kOneEach);
    return true;
}

bool PostProcess(float3* map, int rows, int cols, umbrix_options& options)
{
    grade(map, rows, cols, map_grading(options), Takers::kOneEach);
    return true;
}

bool PostProcess(float4* map, int rows, int cols, umbrix_options& options)
{
    grade(map, rows, cols, map_grading(options), Takers::kOneEach);
    return true;
}

} // namespace umbrix_v0
