// SPDX-License-Identifier: MIT
#pragma once

#include "toolkit/base/kind.h"
#include "toolkit/pictures/heights/height_reading.h"

#include <optional>
#include <umbrixlib.h>

namespace umbrixlib::toolkit {

/// What of the curvature a curvature map shows.
enum class CurvaturePart {
    kAll,    ///< Flat ground is the middle, ridges are lighter, hollows darker.
    kCavity, ///< Flat ground and ridges are 1, hollows darker.
    kRidges, ///< Flat ground and hollows are 0, ridges lighter.
};

/// What a run can be told on the command line and in a preset, in the library's units. An empty number is
/// worked out from the others, an empty kind from the input.
///
/// Of the library's record it leaves out what no run on a picture reads (the threads, the silence, the mode
/// and the flags of normals), what is a run's own (sizes, buffers, the stop flag), what a command decides
/// (layers, folders), and the basis vectors: the occlusion looks along fixed directions whatever they are,
/// and who reads a map counts on the usual ones.
struct Settings {
    std::optional<Kind> kind;
    NormalY normal_y;

    HeightChannel height_from;
    InvalidTexels replace_invalid;
    HeightRange height_range;
    bool invert;

    bool light;
    bool occlusion;
    bool generate_normal;
    Modes mode;
    bool height_in_alpha;

    float relief;
    std::optional<float> h_scale;
    std::optional<float> n_scale;
    float gaussian;
    float detail;

    int rays;
    float radius;
    float alpha_limit;
    float theta_limit;
    bool tile;
    bool h_tile;
    bool v_tile;

    int directions;

    CurvaturePart curvature_part;
    std::optional<float> curvature_radius;

    float b_radius;
    float h_contrast;
    int h_min;
    int h_max;
    float h_brightness;
    float h_smooth;

    float contrast;
    int min;
    int max;
    float brightness;
    float smooth;

    std::optional<SampleType> save_depth; ///< Empty: what the format holds as a rule.

    bool operator==(Settings const&) const = default;
};

/// Height scale of the occlusion: `h_scale`, or the relief.
float h_scale_of(Settings const& settings);

/// Strength of the normals: `n_scale`, or the one that fits the height scale. A height of 1 reaches h_scale
/// image widths, and the normal's difference spans two texels: h_scale * width / 2.
float n_scale_of(Settings const& settings, int width);

/// How heights are read.
HeightReading height_reading_of(Settings const& settings);

/// How heights go on beyond the borders where normals are made of them.
Borders borders_of(Settings const& settings);

/// The library's record for a run on a picture of that kind and width, every field set.
umbrix_options options_for(Settings const& settings, Kind kind, int width);

} // namespace umbrixlib::toolkit
