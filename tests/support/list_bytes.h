// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// List files byte by byte, written without the code under test.

#include "picture_files.h"

#include <cstdint>
#include <string>

namespace umbrixlib::test {

/// Four bytes, the lowest first.
inline Bytes number_bytes(std::uint32_t value)
{
    return {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8U),
            static_cast<std::uint8_t>(value >> 16U), static_cast<std::uint8_t>(value >> 24U)};
}

inline Bytes joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (Bytes const& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

inline Bytes text_bytes(std::string const& text)
{
    return joined({number_bytes(static_cast<std::uint32_t>(text.size())), Bytes(text.begin(), text.end())});
}

/// The version and the number of jobs.
inline Bytes list_head(std::uint32_t jobs)
{
    return joined({{0x66, 0x66, 0xa6, 0x40}, number_bytes(jobs)});
}

/// The numbers of a job, all different from their defaults: calc_type 5, rays 0x01020304, the limits 11 to
/// 14, the floats 1.5, 2.5, ... in their order, UmbrixMode 2, mode -2, and the bools false, true in turn.
inline Bytes job_block()
{
    return {
        5,    0,    0,    0,    // calc_type
        0,    1,    0,    1,    // multi_thread, quiet, preserve, no_normal
        0x04, 0x03, 0x02, 0x01, // rays
        0x00, 0x00, 0xc0, 0x3f, // radius 1.5
        0x00, 0x00, 0x20, 0x40, // h_scale 2.5
        0x00, 0x00, 0x60, 0x40, // alpha_limit 3.5
        0x00, 0x00, 0x90, 0x40, // theta_limit 4.5
        0x00, 0x00, 0xb0, 0x40, // contrast 5.5
        0x00, 0x00, 0xd0, 0x40, // h_contrast 6.5
        0x00, 0x00, 0xf0, 0x40, // brightness 7.5
        0x00, 0x00, 0x08, 0x41, // h_brightness 8.5
        0x00, 0x00, 0x18, 0x41, // smooth 9.5
        0x00, 0x00, 0x28, 0x41, // h_smooth 10.5
        0x00, 0x00, 0x38, 0x41, // b_radius 11.5
        11,   12,   13,   14,   // max, h_max, min, h_min
        0,    1,    0,    1,    // tile, h_tile, v_tile, blend_height
        2,    0,    0,    0,    // UmbrixMode
        0,    1,    0,    0,    // height_map, generate_normal, normal_flag_1, filler
        0x00, 0x00, 0x48, 0x41, // n_scale 12.5
        0x00, 0x00, 0x58, 0x41, // gaussian 13.5
        0x00, 0x00, 0x68, 0x41, // L_Detail 14.5
        1,    0,    0,    0,    // normal_flag_2, filler
        0xfe, 0xff, 0xff, 0xff, // mode
    };
}

/// The numbers of a layer: blend_mode 3, the floats 0.5, 1.5, ... in their order, spare_flag.
inline Bytes layer_block()
{
    return {
        3,    0,    0,    0,    // blend_mode
        0x00, 0x00, 0x00, 0x3f, // opacity 0.5
        0x00, 0x00, 0xc0, 0x3f, // n_scale 1.5
        0x00, 0x00, 0x20, 0x40, // L_Detail 2.5
        0x00, 0x00, 0x60, 0x40, // gaussian 3.5
        0x00, 0x00, 0x90, 0x40, // depth 4.5
        0x00, 0x00, 0xb0, 0x40, // normal_scale 5.5
        0x00, 0x00, 0xd0, 0x40, // edge_a 6.5
        0x00, 0x00, 0xf0, 0x40, // edge_b 7.5
        1,    0,    0,    0,    // spare_flag, filler
    };
}

/// A list of two jobs: the first with two layers, the second with empty texts and none.
inline Bytes golden_list()
{
    return joined({list_head(2), job_block(), text_bytes("a.tga"), text_bytes("*.tga"), number_bytes(2),
                   text_bytes("low.png"), text_bytes("Low"), layer_block(), text_bytes(""), text_bytes(""),
                   layer_block(), job_block(), text_bytes(""), text_bytes(""), number_bytes(0)});
}

} // namespace umbrixlib::test
