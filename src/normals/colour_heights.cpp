// SPDX-License-Identifier: MIT
#include "normals/colour_heights_internal.h"

#include "boundary/texture_kernels.h"
#include "filters/recursive_gaussian.h"

#include <cstddef>

namespace umbrixlib::detail {

TexelArray<float3> fetch_colours(PictureSamples const& source, int height, int width)
{
    auto const texels = static_cast<std::ptrdiff_t>(height) * width;
    auto image = make_texel_array<float3>(static_cast<std::size_t>(texels));
    source.visit([&](auto const& samples) {
#pragma omp parallel for schedule(static)
        for (std::ptrdiff_t i = 0; i < texels; ++i) {
            image[i] = samples.colour(i);
        }
    });
    return image;
}

void turn_into_normals(float3* image, int height, int width, float n_scale, float gaussian,
                       RunReport const& report)
{
    if (gaussian > 0.0f && !report.stopping()) {
        auto const texels = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
        auto const scratch = make_texel_array<float3>(texels);
        gaussianFilterRGBA(image, image, scratch.get(), width, height, gaussian);
    }
    if (!report.stopping()) {
        Height2Normal(image, height, width, n_scale);
    }
}

} // namespace umbrixlib::detail
