// SPDX-License-Identifier: MIT
#pragma once

#include <string>

inline namespace umbrix_v0 {

/// Describes one layer of a stack: where its image comes from, how it is filtered and how it is blended. The
/// front end fills it; the library has no default values, and a fresh record has zeros.
struct n_layer {
    std::string name;     ///< Free text for the front end; stored, never read.
    std::string filename; ///< The layer's image. Empty stands for a blank layer.
    /// How the layer after this one is combined: 0 blend, 1 overlay, 2 multiply, else add.
    int blend_mode = 0;
    float opacity = 0;       ///< Strength of that combination, per cent.
    float n_scale = 0;       ///< Factor on the layer's heights.
    float L_Detail = 0;      ///< Radius of the bilateral filter, texels; at most 1 means none.
    float gaussian = 0;      ///< Standard deviation of the blur, texels; 0 or less means none.
    float depth = 0;         ///< First value for `ChangeDepth`; exactly 0 means no call.
    float normal_scale = 0;  ///< Strength of the blended normals; only the first record's value counts.
    float edge_a = 0;        ///< First value for `NormalEdges`.
    float edge_b = 0;        ///< Second value for `NormalEdges`.
    bool spare_flag = false; ///< Handed to `HeightToNormal`, which does not read it.
    bool regenerate = false; ///< The layer's normals are stale. The only field that a stack writes.
};

} // namespace umbrix_v0
