// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_settings.h"

#include "toolkit/settings/defaults.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

/// The options that decide a field. Most fields have the one that is called like them.
std::vector<std::string> options_of(std::string_view field)
{
    struct Row {
        std::string_view field;
        std::vector<std::string> options;
    };
    static std::vector<Row> const rows{
        {"calc_type", {"light", "occlusion"}},
        {"no_normal", {"light"}},
        {"generate_normal", {"generate-normal", "light", "height-map", "normal-map"}},
        {"height_map", {"height-map", "normal-map"}},
        {"preserve", {"height-in-alpha"}},
        {"UmbrixMode", {"mode"}},
        {"L_Detail", {"detail"}},
        {"h_scale", {"relief", "h-scale"}},
        {"mode", {}},
    };
    for (Row const& row : rows) {
        if (row.field == field) {
            return row.options;
        }
    }
    std::string option(field);
    std::replace(option.begin(), option.end(), '_', '-');
    return {option};
}

bool is_given(std::string_view field, std::set<std::string> const& given)
{
    std::vector<std::string> const options = options_of(field);
    return std::any_of(options.begin(), options.end(),
                       [&](std::string const& option) { return given.contains(option); });
}

} // namespace

umbrix_data data_for(Settings const& settings, Kind kind, int width)
{
    umbrix_options const options = options_for(settings, kind, width);
    umbrix_data data;
#define UMBRIX_COPY(type, name, offset) data.name = options.name;
    UMBRIX_DATA_FIELDS(UMBRIX_COPY, UMBRIX_COPY)
#undef UMBRIX_COPY
    if (!settings.n_scale && width == 0) {
        data.n_scale = 1.0f; // as in a fresh job of a list; it counts once normals are made
    }
    return data;
}

Settings settings_of(umbrix_data const& data)
{
    return {
        .kind = kind_of(data),
        .normal_y = NormalY::kUp,
        .height_from = kDefaults.height_from,
        .replace_invalid = kDefaults.replace_invalid,
        .height_range = kDefaults.height_range,
        .invert = kDefaults.invert,
        .light = !data.no_normal,
        .occlusion = data.calc_type == calc_type_light_occlusion || data.calc_type == calc_type_occlusion,
        .generate_normal = data.generate_normal,
        .mode = data.UmbrixMode,
        .height_in_alpha = data.preserve,
        .relief = data.h_scale,
        .h_scale = data.h_scale,
        .n_scale = data.n_scale,
        .gaussian = data.gaussian,
        .detail = data.L_Detail,
        .rays = data.rays,
        .radius = data.radius,
        .alpha_limit = data.alpha_limit,
        .theta_limit = data.theta_limit,
        .tile = data.tile,
        .h_tile = data.h_tile,
        .v_tile = data.v_tile,
        .directions = kDefaults.directions,
        .curvature_part = kDefaults.curvature_part,
        .curvature_radius = kDefaults.curvature_radius,
        .b_radius = data.b_radius,
        .h_contrast = data.h_contrast,
        .h_min = data.h_min,
        .h_max = data.h_max,
        .h_brightness = data.h_brightness,
        .h_smooth = data.h_smooth,
        .contrast = data.contrast,
        .min = data.min,
        .max = data.max,
        .brightness = data.brightness,
        .smooth = data.smooth,
        .save_depth = std::nullopt,
    };
}

Kind kind_of(umbrix_data const& data)
{
    return data.height_map ? Kind::kHeightMap : Kind::kNormalMap;
}

bool makes_normals(Settings const& settings, Kind kind)
{
    return data_for(settings, kind, 0).generate_normal;
}

void copy_given(umbrix_data const& from, std::set<std::string> const& given, umbrix_data& to)
{
#define UMBRIX_COPY(type, name, offset)                                                                      \
    if (is_given(#name, given)) {                                                                            \
        to.name = from.name;                                                                                 \
    }
    UMBRIX_DATA_FIELDS(UMBRIX_COPY, UMBRIX_COPY)
#undef UMBRIX_COPY
}

} // namespace umbrixlib::toolkit
