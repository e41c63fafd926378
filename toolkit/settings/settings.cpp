// SPDX-License-Identifier: MIT
#include "toolkit/settings/settings.h"

#include <cmath>

namespace umbrixlib::toolkit {

namespace {

calc_type calc_type_of(Settings const& settings)
{
    if (!settings.occlusion) {
        return calc_type_light;
    }
    return settings.light ? calc_type_light_occlusion : calc_type_occlusion;
}

float root(double value)
{
    return static_cast<float>(std::sqrt(value));
}

} // namespace

float h_scale_of(Settings const& settings)
{
    return settings.h_scale.value_or(settings.relief);
}

float n_scale_of(Settings const& settings, int width)
{
    return settings.n_scale.value_or(h_scale_of(settings) * static_cast<float>(width) / 2.0f);
}

HeightReading height_reading_of(Settings const& settings)
{
    return {settings.height_from, settings.replace_invalid, settings.height_range, settings.invert};
}

Borders borders_of(Settings const& settings)
{
    return {settings.tile && settings.h_tile, settings.tile && settings.v_tile};
}

umbrix_options options_for(Settings const& settings, Kind kind, int width)
{
    bool const heights = kind == Kind::kHeightMap;
    umbrix_options options{};
    options.calc_type = calc_type_of(settings);
    options.multi_thread = true;
    options.quiet = true;
    options.preserve = settings.height_in_alpha;
    options.no_normal = !settings.light;
    options.rays = settings.rays;
    options.radius = settings.radius;
    options.h_scale = h_scale_of(settings);
    options.alpha_limit = settings.alpha_limit;
    options.theta_limit = settings.theta_limit;
    options.contrast = settings.contrast;
    options.h_contrast = settings.h_contrast;
    options.brightness = settings.brightness;
    options.h_brightness = settings.h_brightness;
    options.smooth = settings.smooth;
    options.h_smooth = settings.h_smooth;
    options.b_radius = settings.b_radius;
    options.max = static_cast<unsigned char>(settings.max);
    options.h_max = static_cast<unsigned char>(settings.h_max);
    options.min = static_cast<unsigned char>(settings.min);
    options.h_min = static_cast<unsigned char>(settings.h_min);
    options.tile = settings.tile;
    options.h_tile = settings.h_tile;
    options.v_tile = settings.v_tile;
    options.UmbrixMode = settings.mode;
    options.height_map = heights;
    options.generate_normal = settings.light && (heights || settings.generate_normal);
    options.n_scale = n_scale_of(settings, width);
    options.gaussian = settings.gaussian;
    options.L_Detail = settings.detail;
    options.basis_a = {-root(1.0 / 6.0), root(1.0 / 2.0), root(1.0 / 3.0)};
    options.basis_b = {-root(1.0 / 6.0), -root(1.0 / 2.0), root(1.0 / 3.0)};
    options.basis_c = {root(3.0 / 2.0), 0.0f, root(1.0 / 3.0)};
    // The tool writes the alpha itself, from the heights as they were read.
    options.keep_buffers = settings.height_in_alpha;
    return options;
}

} // namespace umbrixlib::toolkit
