// SPDX-License-Identifier: MIT
#pragma once

#include "common/modes.h"
#include "common/vector_types.h"

#include <cstddef>
#include <cstdint>

inline namespace umbrix_v0 {

/// Kind of work of a run. The pipelines tell only two values from the rest: with 2 and 5 the occlusion stage
/// runs. Any other value, listed or not, leaves it off.
enum calc_type : std::int32_t {
    calc_type_light = 0,           ///< Light only.
    calc_type_light_occlusion = 2, ///< Light and occlusion.
    calc_type_occlusion = 5,       ///< Occlusion; the front end usually sets `no_normal` with it.
};

/// The record of one generation run. The caller sets every field; nothing has a default here. Fields 1 to 34
/// have the order and widths of a work list item on every platform, and the whole record crosses into the
/// graphics library, which is why its order is fixed and its gaps are named.
struct umbrix_options {
    enum calc_type calc_type; ///< 2 and 5 switch the occlusion stage on.
    bool multi_thread;        ///< Stored with a work item; no pipeline reads it.
    bool quiet;               ///< Stored with a work item; no pipeline reads it.
    bool preserve;            ///< Keep the height in the result's alpha; `height_copy` must then be valid.
    bool no_normal;           ///< Skip the light term, unless `generate_normal` asks for it.
    int rays;                 ///< Rays per band.
    float radius;             ///< Reach of the rays as a fraction of the width; also caps their climb.
    float h_scale;            ///< Height scale of the occlusion stage: a height of 1 in image widths.
    float alpha_limit;        ///< Full width of the elevation bands, degrees.
    float theta_limit;        ///< Full width of the azimuth jitter, degrees.
    float contrast;           ///< Map contrast, -1..1; 0 is off.
    float h_contrast;         ///< Height contrast, -1..1; 0 is off.
    float brightness;         ///< Map brightness, -1..1; 0 is off.
    float h_brightness;       ///< Height brightness, -1..1; 0 is off.
    float smooth;             ///< Sigma of the map's blur, texels; 0 is off.
    float h_smooth;           ///< Sigma of the heights' blur, texels; 0 is off.
    float b_radius;           ///< Radius of the bilateral filter on the heights, texels; runs from 1 on.
    unsigned char max;        ///< Upper limit of the map; 255 is off.
    unsigned char h_max;      ///< Upper limit of the heights; 255 is off.
    unsigned char min;        ///< Lower limit of the map; 0 is off.
    unsigned char h_min;      ///< Lower limit of the heights; 0 is off.
    bool tile;                ///< Master switch of wrapping in the ray walk.
    bool h_tile;              ///< Rays wrap over columns.
    bool v_tile;              ///< Rays wrap over rows.
    bool blend_height;        ///< Heights come from the layer stack. The pipelines overwrite it.
    Modes UmbrixMode;         ///< Mode of the normal conversion.
    bool height_map;          ///< The input is a height map; otherwise a normal map with height in alpha.
    bool generate_normal;     ///< Make the normals from the heights.
    bool normal_flag_1;       ///< Handed to `HeightToNormal`, which does not read it.
    float n_scale;            ///< Scale of the generated normals.
    float gaussian;           ///< Sigma of the blur before normal generation, texels; 0 is off.
    float L_Detail;           ///< Radius of the bilateral filter in normal generation; runs above 1.
    bool normal_flag_2;       ///< Handed to `HeightToNormal`, which does not read it.
    int mode;                 ///< Handed to `HeightToNormal`, which does not read it.

    bool recurse;                 ///< A folder batch descends into subfolders.
    bool* cancel;                 ///< Stop flag polled by a folder batch.
    std::uint32_t reserved_37;    ///< Holds its place for the graphics library, as all `reserved` fields do.
    int image_width;              ///< Written by a run: its width.
    int image_height;             ///< Written by a run: its height.
    float3 basis_a;               ///< Basis vector of the band at azimuth 120, output channel z.
    float3 basis_b;               ///< Basis vector of the band at azimuth 240, output channel y.
    float3 basis_c;               ///< Basis vector of the band at azimuth 0, output channel x.
    std::uint32_t reserved_43;    ///< Not read.
    float3** table_a;             ///< Working field of `height2umbrix`, dangling after it returned.
    float3** table_b;             ///< As `table_a`.
    float3** table_c;             ///< As `table_a`.
    float3* dir_a;                ///< As `table_a`.
    float3* dir_b;                ///< As `table_a`.
    float3* dir_c;                ///< As `table_a`.
    std::uint32_t reserved_50;    ///< Not read.
    bool normal_flag_3;           ///< Handed to `HeightToNormal`, which does not read it.
    std::uint32_t reserved_52[2]; ///< Not read.
    bool keep_buffers; ///< Leave the three buffers below to the caller, who frees them with array delete.
    std::uint32_t reserved_54; ///< Not read.
    float3* ao_map;            ///< Occlusion per texel. Dangles after a run without `keep_buffers`.
    float3* normal_map;        ///< Normals per texel, only with `keep_buffers`.
    /// Heights for the caller. `UmbrixFile`: before filtering, only with `keep_buffers` and `preserve`.
    /// `UmbrixFile_GPU`: after every run, filtered; all 1 without `preserve`.
    float* height_copy;
};

#define UMBRIX_PIN(field, offset) static_assert(offsetof(umbrix_options, field) == (offset), #field)
UMBRIX_PIN(calc_type, 0);
UMBRIX_PIN(multi_thread, 4);
UMBRIX_PIN(quiet, 5);
UMBRIX_PIN(preserve, 6);
UMBRIX_PIN(no_normal, 7);
UMBRIX_PIN(rays, 8);
UMBRIX_PIN(radius, 12);
UMBRIX_PIN(h_scale, 16);
UMBRIX_PIN(alpha_limit, 20);
UMBRIX_PIN(theta_limit, 24);
UMBRIX_PIN(contrast, 28);
UMBRIX_PIN(h_contrast, 32);
UMBRIX_PIN(brightness, 36);
UMBRIX_PIN(h_brightness, 40);
UMBRIX_PIN(smooth, 44);
UMBRIX_PIN(h_smooth, 48);
UMBRIX_PIN(b_radius, 52);
UMBRIX_PIN(max, 56);
UMBRIX_PIN(h_max, 57);
UMBRIX_PIN(min, 58);
UMBRIX_PIN(h_min, 59);
UMBRIX_PIN(tile, 60);
UMBRIX_PIN(h_tile, 61);
UMBRIX_PIN(v_tile, 62);
UMBRIX_PIN(blend_height, 63);
UMBRIX_PIN(UmbrixMode, 64);
UMBRIX_PIN(height_map, 68);
UMBRIX_PIN(generate_normal, 69);
UMBRIX_PIN(normal_flag_1, 70);
UMBRIX_PIN(n_scale, 72);
UMBRIX_PIN(gaussian, 76);
UMBRIX_PIN(L_Detail, 80);
UMBRIX_PIN(normal_flag_2, 84);
UMBRIX_PIN(mode, 88);
UMBRIX_PIN(recurse, 92);
#undef UMBRIX_PIN

// The record as the graphics library of a platform with 32-bit pointers sees it.
#define UMBRIX_PIN_32(field, offset)                                                                         \
    static_assert(sizeof(void*) != 4 || offsetof(umbrix_options, field) == (offset), #field)
UMBRIX_PIN_32(cancel, 96);
UMBRIX_PIN_32(reserved_37, 100);
UMBRIX_PIN_32(image_width, 104);
UMBRIX_PIN_32(image_height, 108);
UMBRIX_PIN_32(basis_a, 112);
UMBRIX_PIN_32(basis_b, 124);
UMBRIX_PIN_32(basis_c, 136);
UMBRIX_PIN_32(reserved_43, 148);
UMBRIX_PIN_32(table_a, 152);
UMBRIX_PIN_32(table_b, 156);
UMBRIX_PIN_32(table_c, 160);
UMBRIX_PIN_32(dir_a, 164);
UMBRIX_PIN_32(dir_b, 168);
UMBRIX_PIN_32(dir_c, 172);
UMBRIX_PIN_32(reserved_50, 176);
UMBRIX_PIN_32(normal_flag_3, 180);
UMBRIX_PIN_32(reserved_52, 184);
UMBRIX_PIN_32(keep_buffers, 192);
UMBRIX_PIN_32(reserved_54, 196);
UMBRIX_PIN_32(ao_map, 200);
UMBRIX_PIN_32(normal_map, 204);
UMBRIX_PIN_32(height_copy, 208);
static_assert(sizeof(void*) != 4 || sizeof(umbrix_options) == 212, "the whole record");
#undef UMBRIX_PIN_32

} // namespace umbrix_v0
