// SPDX-License-Identifier: MIT
#pragma once

#include "boundary/texel_array.h"
#include "common/export.h"
#include "common/vector_types.h"
#include "foundation/picture_view.h"
#include "foundation/run_control.h"

namespace umbrixlib {

/// What `make_normals` is asked for.
struct NormalsRequest {
    PictureView heights;           ///< The mean of the colours is the height; alpha is not read.
    float n_scale = 1.0f;          ///< Strength: a height difference of 1 over two texels, as a slope.
    float gaussian = 0.0f;         ///< Sigma of the blur before, texels; 0 or less means none.
    Borders borders{};             ///< How the heights go on beyond the picture.
    RunControl* control = nullptr; ///< Watches and stops the run; null for none.
};

/// What `make_normals` gives.
struct NormalsResult {
    Outcome outcome = Outcome::kInvalid; ///< Without kDone there are no normals.
    int rows = 0;                        ///< That of the source.
    int cols = 0;                        ///< As `rows`.
    TexelArray<float3> normals;          ///< rows * cols unit vectors, the bottom row first.
};

/// Makes a tangent-space normal map of a picture of heights in memory: `HeightToNormal` from file to file,
/// without the files. `normals_to_bytes` makes the bytes that it stores, of pictures of bytes to the bit; but
/// for borders that do not repeat, which files do not have.
///
/// Errors: std::bad_alloc leaves the call. Threads: as for `make_map`.
UMBRIX_API NormalsResult make_normals(NormalsRequest const& request);

} // namespace umbrixlib
