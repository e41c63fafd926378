// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// The fields of a job and of a layer that a list file holds, each told once: type, name, offset in its block
/// of the file. The accessors of `umbrix_list`, the file's reader and writer, and whoever shows or translates
/// a whole record are made of these tables.

/// The fields of `umbrix_data` in declared order. @p FIELD is applied to those with accessors, @p FLAG to the
/// two without.
#define UMBRIX_DATA_FIELDS(FIELD, FLAG)                                                                      \
    FIELD(calc_type, calc_type, 0)                                                                           \
    FIELD(bool, multi_thread, 4)                                                                             \
    FIELD(bool, quiet, 5)                                                                                    \
    FIELD(bool, preserve, 6)                                                                                 \
    FIELD(bool, no_normal, 7)                                                                                \
    FIELD(int, rays, 8)                                                                                      \
    FIELD(float, radius, 12)                                                                                 \
    FIELD(float, h_scale, 16)                                                                                \
    FIELD(float, alpha_limit, 20)                                                                            \
    FIELD(float, theta_limit, 24)                                                                            \
    FIELD(float, contrast, 28)                                                                               \
    FIELD(float, h_contrast, 32)                                                                             \
    FIELD(float, brightness, 36)                                                                             \
    FIELD(float, h_brightness, 40)                                                                           \
    FIELD(float, smooth, 44)                                                                                 \
    FIELD(float, h_smooth, 48)                                                                               \
    FIELD(float, b_radius, 52)                                                                               \
    FIELD(unsigned char, max, 56)                                                                            \
    FIELD(unsigned char, h_max, 57)                                                                          \
    FIELD(unsigned char, min, 58)                                                                            \
    FIELD(unsigned char, h_min, 59)                                                                          \
    FIELD(bool, tile, 60)                                                                                    \
    FIELD(bool, h_tile, 61)                                                                                  \
    FIELD(bool, v_tile, 62)                                                                                  \
    FIELD(bool, blend_height, 63)                                                                            \
    FIELD(Modes, UmbrixMode, 64)                                                                             \
    FIELD(bool, height_map, 68)                                                                              \
    FIELD(bool, generate_normal, 69)                                                                         \
    FLAG(bool, normal_flag_1, 70)                                                                            \
    FIELD(float, n_scale, 72)                                                                                \
    FIELD(float, gaussian, 76)                                                                               \
    FIELD(float, L_Detail, 80)                                                                               \
    FLAG(bool, normal_flag_2, 84)                                                                            \
    FIELD(int, mode, 88)

/// The fields of `n_layer` that are numbers and are saved.
#define UMBRIX_LAYER_FIELDS(FIELD)                                                                           \
    FIELD(int, blend_mode, 0)                                                                                \
    FIELD(float, opacity, 4)                                                                                 \
    FIELD(float, n_scale, 8)                                                                                 \
    FIELD(float, L_Detail, 12)                                                                               \
    FIELD(float, gaussian, 16)                                                                               \
    FIELD(float, depth, 20)                                                                                  \
    FIELD(float, normal_scale, 24)                                                                           \
    FIELD(float, edge_a, 28)                                                                                 \
    FIELD(float, edge_b, 32)                                                                                 \
    FIELD(bool, spare_flag, 36)
