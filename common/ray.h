// SPDX-License-Identifier: MIT
#pragma once

inline namespace umbrix_v0 {

/// One ray of the occlusion kernel: the step vector along which the ray advances by one texel in x. Belongs
/// to the kernels; the pipelines only allocate arrays of it.
struct ray {
    float x; ///< Plus or minus 1 / width.
    float y; ///< Rows passed per step, as a fraction of the image's height.
    float z; ///< Height gained per step, in image widths.
};
static_assert(sizeof(ray) == 12, "the ray arrays cross the library border");

} // namespace umbrix_v0
