// SPDX-License-Identifier: MIT
#include "normals/open_borders_internal.h"

#include "common/rounding.h"

#include <algorithm>
#include <cmath>

namespace umbrixlib::detail {

namespace {

/// How far the filters look, and the difference after them.
double reach_of(float gaussian, float bilateral_radius)
{
    // The recursive blur has longer tails than a Gaussian: 4 % of its peak at three sigmas, 0.04 % at six.
    constexpr double kSigmas = 6.0;
    auto const part = [](double texels) { return texels > 0.0 ? std::ceil(texels) : 0.0; };
    return 1.0 + part(kSigmas * wide(gaussian)) + part(wide(bilateral_radius));
}

int margin_of(bool repeats, int side, double reach)
{
    return repeats ? 0 : static_cast<int>(std::min(reach, std::max(side - 1.0, 0.0)));
}

/// A place in or beside the picture, as the two texels that give its value: 2 * border - inner.
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

} // namespace

OpenBorders::OpenBorders(Borders const& borders, int rows, int columns, float gaussian,
                         float bilateral_radius)
    : rows_(rows), columns_(columns),
      margin_rows_(margin_of(borders.v_tile, rows, reach_of(gaussian, bilateral_radius))),
      margin_columns_(margin_of(borders.h_tile, columns, reach_of(gaussian, bilateral_radius)))
{
}

template <typename Texel>
TexelArray<Texel> OpenBorders::with_margins(Texel const* picture) const
{
    auto result = make_texel_array<Texel>(texels());
    std::ptrdiff_t const stride = columns();
#pragma omp parallel
    {
#pragma omp for schedule(static)
        for (std::ptrdiff_t y = 0; y < rows_; ++y) {
            Texel const* const from = picture + y * columns_;
            Texel* const to = &result[(y + margin_rows_) * stride];
            for (std::ptrdiff_t x = 0; x < stride; ++x) {
                auto const [border, inner] = mirrored(x - margin_columns_, columns_);
                to[x] = border == inner ? from[border] : carried_on(from[border], from[inner]);
            }
        }
#pragma omp for schedule(static)
        for (std::ptrdiff_t y = 0; y < rows(); ++y) {
            auto const [border, inner] = mirrored(y - margin_rows_, rows_);
            if (border != inner) {
                Texel const* const borders = &result[(border + margin_rows_) * stride];
                Texel const* const inners = &result[(inner + margin_rows_) * stride];
                for (std::ptrdiff_t x = 0; x < stride; ++x) {
                    result[y * stride + x] = carried_on(borders[x], inners[x]);
                }
            }
        }
    }
    return result;
}

TexelArray<float> OpenBorders::extended(float const* picture) const
{
    return with_margins(picture);
}

TexelArray<float3> OpenBorders::extended(float3 const* picture) const
{
    return with_margins(picture);
}

void OpenBorders::copy_inside(float3 const* extended, float3* picture) const
{
#pragma omp parallel for schedule(static)
    for (std::ptrdiff_t y = 0; y < rows_; ++y) {
        std::copy_n(extended + (y + margin_rows_) * columns() + margin_columns_, columns_,
                    picture + y * columns_);
    }
}

} // namespace umbrixlib::detail
