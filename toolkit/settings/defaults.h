// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/settings/settings.h"

namespace umbrixlib::toolkit {

/// What a run does unless told otherwise. The values are those of a fresh work list item, except where such a
/// run would show a first-time user a poor picture; those lines say which value they replace and why.
inline constexpr Settings kDefaults{
    .kind = std::nullopt,
    .normal_y = NormalY::kUp,

    .height_from = HeightChannel::kMean,
    .replace_invalid = {},
    .height_range = {},
    .invert = false,

    .light = true,
    // Instead of light only: occlusion is what sets an Umbrix map apart from a normal map.
    .occlusion = true,
    .generate_normal = false,
    // As in a work list. Flat ground is the same 0.577 in all channels, and slopes that face a basis
    // direction have room above it; the mode that gives flat ground full light cuts them all off at white.
    .mode = Modes_Projection,
    .height_in_alpha = false,

    // Instead of a height scale of 1, a relief as deep as the picture is wide. Photo-scanned materials fit
    // reliefs of 0.01 to 0.08 of the width.
    .relief = 0.05f,
    .h_scale = std::nullopt,
    // Instead of 1, so that normals and occlusion describe the same relief.
    .n_scale = std::nullopt,
    .gaussian = 0.0f,
    .detail = 1.0f,

    // Instead of 300, for less than half of the time.
    .rays = 128,
    // Instead of 1: on a relief of 0.05 what lies further off than a quarter of the width hides no sky.
    .radius = 0.25f,
    .alpha_limit = 120.0f,
    .theta_limit = 120.0f,
    .tile = true,
    .h_tile = true,
    .v_tile = true,

    // A tenth of a degree and a thousandth of the sky from what any more of them give.
    .directions = 32,

    .curvature_part = CurvaturePart::kAll,
    .curvature_radius = std::nullopt,

    // Instead of 10: the filter wipes out the fine relief that most height maps are made for.
    .b_radius = 0.0f,
    .h_contrast = 0.0f,
    .h_min = 0,
    .h_max = 255,
    .h_brightness = 0.0f,
    .h_smooth = 0.0f,

    .contrast = 0.0f,
    .min = 0,
    .max = 255,
    .brightness = 0.0f,
    .smooth = 0.0f,

    .save_depth = std::nullopt,
};

} // namespace umbrixlib::toolkit
