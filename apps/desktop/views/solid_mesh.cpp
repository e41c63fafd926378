// SPDX-License-Identifier: MIT
#include "views/solid_mesh.h"

#include <cmath>
#include <numbers>

namespace umbrix_desktop {

namespace {

constexpr int kAround = 96;
constexpr int kUp = 48;

/// The point of a body at a place of its texture, both 0 to 1.
SolidVertex vertex_at(Solid solid, double u, double v)
{
    auto const made = [](double x, double y, double z, double nx, double ny, double nz, double rx, double rz,
                         double u_, double v_) {
        auto const f = [](double number) { return static_cast<float>(number); };
        return SolidVertex{{f(x), f(y), f(z)}, {f(nx), f(ny), f(nz)}, {f(rx), 0, f(rz)}, f(u_), f(v_)};
    };
    if (solid == Solid::kPlane) {
        return made(2 * u - 1, 2 * v - 1, 0, 0, 0, 1, 1, 0, u, v);
    }
    // The seam is behind, where u begins.
    double const around = (u * 2 - 1.5) * std::numbers::pi;
    double const x = std::cos(around);
    double const z = -std::sin(around);
    double const right_x = -std::sin(around);
    double const right_z = -std::cos(around);
    if (solid == Solid::kCylinder) {
        return made(x * 0.8, 1.6 * v - 0.8, z * 0.8, x, 0, z, right_x, right_z, u * 3, v);
    }
    double const up = (v - 0.5) * std::numbers::pi;
    double const ring = std::cos(up);
    return made(x * ring, std::sin(up), z * ring, x * ring, std::sin(up), z * ring, right_x, right_z, u * 2,
                v);
}

} // namespace

SolidMesh make_solid(Solid solid)
{
    int const columns = solid == Solid::kPlane ? 1 : kAround;
    int const rows = solid == Solid::kSphere ? kUp : 1;
    SolidMesh mesh;
    for (int row = 0; row <= rows; ++row) {
        for (int column = 0; column <= columns; ++column) {
            mesh.vertices.push_back(vertex_at(solid, 1.0 * column / columns, 1.0 * row / rows));
        }
    }
    auto const line = static_cast<std::uint32_t>(columns + 1);
    for (std::uint32_t row = 0; row < static_cast<std::uint32_t>(rows); ++row) {
        for (std::uint32_t column = 0; column + 1 < line; ++column) {
            std::uint32_t const corner = row * line + column;
            for (std::uint32_t const index :
                 {corner, corner + 1, corner + line + 1, corner, corner + line + 1, corner + line}) {
                mesh.indices.push_back(index);
            }
        }
    }
    return mesh;
}

} // namespace umbrix_desktop
