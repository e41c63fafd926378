// SPDX-License-Identifier: MIT
#include "normals/open_borders_internal.h"

#include "common/rounding.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace umbrixlib::detail {

namespace {

/// A place beside the picture, as the two texels that give its value: 2 * border - inner.
struct Mirrored {
    std::ptrdiff_t border;
    std::ptrdiff_t inner;
};

Mirrored mirrored(std::ptrdiff_t at, std::ptrdiff_t count)
{
    if (at < 0) {
        return {0, -at};
    }
    return at < count ? Mirrored{at, at} : Mirrored{count - 1, 2 * (count - 1) - at};
}

float carried_on(float border, float inner)
{
    return narrow(2.0 * wide(border) - wide(inner));
}

float3 carried_on(float3 const& border, float3 const& inner)
{
    return {carried_on(border.x, inner.x), carried_on(border.y, inner.y), carried_on(border.z, inner.z)};
}

template <typename Texel>
LargeArray<Texel> extended(Texel const* picture, int height, int width, Margins const& margins)
{
    std::ptrdiff_t const rows = height + 2 * std::ptrdiff_t{margins.rows};
    std::ptrdiff_t const columns = width + 2 * std::ptrdiff_t{margins.columns};
    auto result = make_large_array<Texel>(static_cast<std::size_t>(rows * columns));
#pragma omp parallel
    {
#pragma omp for schedule(static)
        for (std::ptrdiff_t y = 0; y < height; ++y) {
            Texel const* const from = picture + y * width;
            Texel* const to = &result[(y + margins.rows) * columns];
            for (std::ptrdiff_t x = 0; x < columns; ++x) {
                auto const [border, inner] = mirrored(x - margins.columns, width);
                to[x] = border == inner ? from[border] : carried_on(from[border], from[inner]);
            }
        }
#pragma omp for schedule(static)
        for (std::ptrdiff_t y = 0; y < rows; ++y) {
            auto const [border, inner] = mirrored(y - margins.rows, height);
            if (border != inner) {
                Texel const* const borders = &result[(border + margins.rows) * columns];
                Texel const* const inners = &result[(inner + margins.rows) * columns];
                for (std::ptrdiff_t x = 0; x < columns; ++x) {
                    result[y * columns + x] = carried_on(borders[x], inners[x]);
                }
            }
        }
    }
    return result;
}

} // namespace

Margins margins_for(Borders const& borders, int height, int width, double reach)
{
    auto const margin = [reach](bool repeats, int side) {
        return repeats ? 0 : static_cast<int>(std::min(reach, std::max(side - 1.0, 0.0)));
    };
    return {margin(borders.h_tile, width), margin(borders.v_tile, height)};
}

double reach_of(float gaussian, float bilateral_radius)
{
    constexpr double kSigmas = 6.0; // the recursive blur has longer tails than a Gaussian: 0.04 of its peak at 3
    auto const part = [](double texels) { return texels > 0.0 ? std::ceil(texels) : 0.0; };
    return 1.0 + part(kSigmas * wide(gaussian)) + part(wide(bilateral_radius));
}

LargeArray<float> with_margins(float const* picture, int height, int width, Margins const& margins)
{
    return extended(picture, height, width, margins);
}

LargeArray<float3> with_margins(float3 const* picture, int height, int width, Margins const& margins)
{
    return extended(picture, height, width, margins);
}

void copy_without_margins(float3 const* extended, float3* picture, int height, int width,
                          Margins const& margins)
{
    std::ptrdiff_t const columns = width + 2 * std::ptrdiff_t{margins.columns};
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t y = 0; y < height; ++y) {
        std::copy_n(extended + (y + margins.rows) * columns + margins.columns, width, picture + y * width);
    }
}

} // namespace umbrixlib::detail
