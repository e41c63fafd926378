// SPDX-License-Identifier: MIT
#pragma once

#include "common/vector_types.h"
#include "foundation/picture_view.h"
#include "foundation/run_report_internal.h"

namespace umbrixlib::detail {

/// What `HeightToNormal` reads of its arguments.
struct NormalSettings {
    float n_scale;
    float gaussian;
    float depth;
    float L_Detail;
    float edge_a;
    float edge_b;
};

/// `HeightToNormal` on a buffer, with borders that it does not have. If the run is stopped, the contents of
/// @p destination are undefined.
void make_normals_of(float const* source, float3* destination, int height, int width,
                     NormalSettings const& settings, RunReport& report, Borders const& borders = {});

} // namespace umbrixlib::detail
