// SPDX-License-Identifier: MIT
#include "stages/light.h"

#include "common/basis.h"
#include "common/modes.h"
#include "kernels/light.h"

namespace coralith {
namespace {

int response_of(int mode)
{
    switch (mode) {
    case Modes_FlatIsFull:
        return kernels::kFlatIsFull;
    case Modes_Squared:
        return kernels::kSquared;
    default:
        return kernels::kPlain;
    }
}

bool has_unit_basis(int mode)
{
    return mode == Modes_UnitBasis || mode == Modes_FlatIsFull || mode == Modes_Squared;
}

} // namespace

bool light_normals(Backend& backend, Shape shape, int mode, float const* normals, float* light)
{
    float3 const& a = umbrixlib::detail::kBasisA;
    float3 const& b = umbrixlib::detail::kBasisB;
    float3 const& c = has_unit_basis(mode) ? umbrixlib::detail::kUnitBasisC : umbrixlib::detail::kBasisC;
    DeviceArray image(backend);
    return image.fill(normals, static_cast<std::size_t>(shape.texels()) * 3) &&
           backend.launch(
               Kernel::kLightNormals, shape.texels(),
               {image, shape.texels(), response_of(mode), a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z}) &&
           backend.finish() && backend.download(image.memory(), light, shape.bytes(3));
}

} // namespace coralith
