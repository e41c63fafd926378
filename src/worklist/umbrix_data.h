// SPDX-License-Identifier: MIT
#pragma once

#include "umbrix/umbrix_options.h"
#include "worklist/saved_fields.h"

#include <cstddef>
#include <type_traits>

inline namespace umbrix_v0 {

/// The plain part of a job: the first 34 fields of `umbrix_options`, with the same names, order and widths,
/// so that it can be copied over the head of an option record with `memcpy`. What a field means to a run is
/// told there; a work list only stores it.
struct umbrix_data {
    enum calc_type calc_type = calc_type_light; ///< 2 and 5 switch the occlusion stage on.
    bool multi_thread = false;                  ///< For the front end.
    bool quiet = false;                         ///< For the front end.
    bool preserve = false;                      ///< Keep the height in the result's alpha.
    bool no_normal = false;                     ///< Skip the light term.
    int rays = 0;                               ///< Rays per band.
    float radius = 0;                           ///< Reach of the rays, widths of the picture.
    float h_scale = 0;                          ///< A height of 1 in widths of the picture.
    float alpha_limit = 0;                      ///< Width of the elevation bands, degrees.
    float theta_limit = 0;                      ///< Width of the azimuth jitter, degrees.
    float contrast = 0;                         ///< Of the map, -1..1.
    float h_contrast = 0;                       ///< Of the heights, -1..1.
    float brightness = 0;                       ///< Of the map, -1..1.
    float h_brightness = 0;                     ///< Of the heights, -1..1.
    float smooth = 0;                           ///< Sigma of the map's blur, texels.
    float h_smooth = 0;                         ///< Sigma of the heights' blur, texels.
    float b_radius = 0;                         ///< Radius of the bilateral filter on the heights, texels.
    unsigned char max = 0;                      ///< Upper limit of the map.
    unsigned char h_max = 0;                    ///< Upper limit of the heights.
    unsigned char min = 0;                      ///< Lower limit of the map.
    unsigned char h_min = 0;                    ///< Lower limit of the heights.
    bool tile = false;                          ///< Master switch of wrapping.
    bool h_tile = false;                        ///< Rays wrap over columns.
    bool v_tile = false;                        ///< Rays wrap over rows.
    bool blend_height = false;                  ///< Heights come from the layers.
    Modes UmbrixMode = Modes_Projection;        ///< Mode of the normal conversion.
    bool height_map = false;                    ///< The source is a height map, otherwise a normal map.
    bool generate_normal = false;               ///< Make the normals from the heights.
    bool normal_flag_1 = false;                 ///< Holds its place for the option record; no accessors.
    float n_scale = 0;                          ///< Scale of the generated normals.
    float gaussian = 0;                         ///< Sigma of the blur before normal generation, texels.
    float L_Detail = 0;                         ///< Bilateral radius in normal generation, texels.
    bool normal_flag_2 = false;                 ///< As `normal_flag_1`.
    int mode = 0;                               ///< Handed to `HeightToNormal`, which does not read it.
};

static_assert(std::is_trivially_copyable_v<umbrix_data> && std::is_standard_layout_v<umbrix_data>);
#define UMBRIX_PIN(type, name, offset)                                                                       \
    static_assert(std::is_same_v<decltype(umbrix_data::name), decltype(umbrix_options::name)> &&             \
                      offsetof(umbrix_data, name) == offsetof(umbrix_options, name),                         \
                  #name);
UMBRIX_DATA_FIELDS(UMBRIX_PIN, UMBRIX_PIN)
#undef UMBRIX_PIN

} // namespace umbrix_v0
