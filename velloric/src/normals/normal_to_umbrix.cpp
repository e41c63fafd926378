// SPDX-License-Identifier: MIT
#include "boundary/texture_kernels.h"
#include "common/basis.h"
#include "common/rounding.h"
#include "common/thread_share.h"

#include <cstddef>

namespace {

using umbrixlib::detail::kBasisA;
using umbrixlib::detail::kBasisB;
using umbrixlib::detail::kBasisC;
using umbrixlib::detail::kUnitBasisC;
using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

/// Light that falls along @p basis on a surface with @p normal. The products are exact and the sum is taken
/// in the order of `normal2umbrix`; the caller rounds it once.
double light(float3 const& normal, float3 const& basis)
{
    return wide(normal.y) * wide(basis.y) + wide(normal.x) * wide(basis.x) + wide(normal.z) * wide(basis.z);
}

/// @p light without its negative values; NaN stays.
double lit(double light)
{
    return light < 0.0 ? 0.0 : light;
}

float plain(float3 const& normal, float3 const& basis)
{
    return narrow(light(normal, basis));
}

/// The light on a flat surface is the z of the basis.
float flat_is_full(float3 const& normal, float3 const& basis)
{
    return narrow(lit(light(normal, basis)) / wide(basis.z));
}

float squared(float3 const& normal, float3 const& basis)
{
    double const value = lit(light(normal, basis));
    return narrow(value * value);
}

using Response = float (*)(float3 const& normal, float3 const& basis);

template <Response response>
void convert(float3* image, std::size_t count, float3 const& basis_c, std::size_t thread, std::size_t threads)
{
    for (std::size_t i = thread; i < count; i += threads) {
        float3 const normal = image[i];
        image[i] = {response(normal, basis_c), response(normal, kBasisB), response(normal, kBasisA)};
    }
}

} // namespace

void Normal2Umbrix(float3* image, int height, int width, Modes mode, int thread, int threads)
{
    if (height < 1 || width < 1 || !umbrixlib::detail::has_share(thread, threads)) {
        return;
    }
    std::size_t const count = static_cast<std::size_t>(height) * static_cast<std::size_t>(width);
    auto const first = static_cast<std::size_t>(thread);
    auto const step = static_cast<std::size_t>(threads);
    switch (mode) {
    case Modes_UnitBasis:
        return convert<plain>(image, count, kUnitBasisC, first, step);
    case Modes_FlatIsFull:
        return convert<flat_is_full>(image, count, kUnitBasisC, first, step);
    case Modes_Squared:
        return convert<squared>(image, count, kUnitBasisC, first, step);
    case Modes_Projection:
        break;
    }
    convert<plain>(image, count, kBasisC, first, step);
}
