// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The tone operators on floats that lie in one piece, any selection of them in one sweep. Written once,
/// compiled for every instruction set.

#include <cstddef>

namespace umbrixlib::detail {

/// Which operators to run, always in this order, each rounding to float before the next.
struct ToneSteps {
    bool changes_contrast = false;
    bool limits = false;
    bool brightens = false;
    float contrast = 0;   ///< In -1..1.
    float low = 0;        ///< In 0..1, as @p high.
    float high = 1;       ///< What 1 becomes; @p low is what 0 becomes.
    float brightness = 0; ///< In -1..1.

    bool any() const { return changes_contrast || limits || brightens; }
};

/// Runs @p steps over @p count floats.
void sweep_tone(float* floats, std::size_t count, ToneSteps const& steps);

/// The same over @p count floats of four-component pixels, every fourth of which stays as it is.
void sweep_tone_keeping_alpha(float* floats, std::size_t count, ToneSteps const& steps);

} // namespace umbrixlib::detail
