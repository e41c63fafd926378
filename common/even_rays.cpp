// SPDX-License-Identifier: MIT
#include "common/even_rays.h"

#include "common/basis.h"
#include "common/ray_directions.h"
#include "common/rounding.h"
#include "common/sine_cosine.h"

#include <cmath>

namespace umbrixlib::detail {
namespace {

/// A point of an additive recurrence that fills the unit cube evenly, coordinate by coordinate: multiples of
/// the powers of 1 / g, modulo 1, where g is the root of g^4 = g + 1. Its second and third dimension, the
/// more even pair, go to the two angles that every ray takes. Source: M. Roberts, The Unreasonable
/// Effectiveness of Quasirandom Sequences, 2018.
class EvenPoint {
public:
    explicit EvenPoint(int index) : index_(index) {}

    double operator()()
    {
        constexpr double kStrides[] = {0.67104360670378920, 0.54970047790197026, 0.81917251339616443};
        double const position = 0.5 + index_ * kStrides[next_++];
        return position - std::floor(position);
    }

private:
    int index_;
    int next_ = 0;
};

ray step_of(float3 direction, float one_texel)
{
    float3 const step = step_vector(direction, one_texel);
    return {step.x, step.y, step.z};
}

} // namespace

void even_rays(int width, RayBands const& bands, int rays, float theta_limit, float alpha_limit)
{
    float const one_texel = narrow(1.0 / wide(static_cast<float>(width)));
    Elevations const upper(kUpperElevation, alpha_limit);
    Elevations const lower(kLowerElevation, alpha_limit);
    for (int i = 0; i < rays; ++i) {
        ThreeBands const directions =
            i == 0 ? ThreeBands{kBasisA, kBasisB, kBasisC}
                   : ray_directions(upper, lower, theta_limit, EvenPoint(i), sine_cosine);
        bands.a[i] = step_of(directions.a, one_texel);
        bands.b[i] = step_of(directions.b, one_texel);
        bands.c[i] = step_of(directions.c, one_texel);
    }
}

} // namespace umbrixlib::detail
