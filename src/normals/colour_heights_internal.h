// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"
#include "common/vector_types.h"
#include "foundation/picture_samples_internal.h"
#include "foundation/run_report_internal.h"

namespace umbrixlib::detail {

/// The colours of a picture as floats.
TexelArray<float3> fetch_colours(PictureSamples const& source, int height, int width);

/// Turns colours, whose mean is the height, into normals in place: blur, then `Height2Normal`. If the run is
/// stopped, the contents of @p image are undefined.
void turn_into_normals(float3* image, int height, int width, float n_scale, float gaussian,
                       RunReport const& report);

} // namespace umbrixlib::detail
