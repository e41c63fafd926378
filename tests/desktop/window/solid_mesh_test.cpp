// SPDX-License-Identifier: MIT
#include "views/solid_mesh.h"

#include <array>
#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

using Vector = std::array<double, 3>;

Vector vector(float const (&numbers)[3])
{
    return {static_cast<double>(numbers[0]), static_cast<double>(numbers[1]),
            static_cast<double>(numbers[2])};
}

Vector minus(Vector const& a, Vector const& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double dot(Vector const& a, Vector const& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector cross(Vector const& a, Vector const& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

class SolidMeshes : public testing::TestWithParam<Solid> {};

TEST_P(SolidMeshes, HaveTheirTexturesRightAcrossTheirNormals)
{
    for (SolidVertex const& vertex : make_solid(GetParam()).vertices) {
        EXPECT_NEAR(dot(vector(vertex.normal), vector(vertex.normal)), 1, 1e-6);
        EXPECT_NEAR(dot(vector(vertex.right), vector(vertex.right)), 1, 1e-6);
        EXPECT_NEAR(dot(vector(vertex.normal), vector(vertex.right)), 0, 1e-6);
    }
}

TEST_P(SolidMeshes, ShowTheirTrianglesOutside)
{
    SolidMesh const mesh = make_solid(GetParam());
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        auto const at = [&](std::size_t j) { return mesh.vertices[mesh.indices[i + j]]; };
        Vector const area = cross(minus(vector(at(1).place), vector(at(0).place)),
                                  minus(vector(at(2).place), vector(at(0).place)));
        EXPECT_GE(dot(area, vector(at(0).normal)), -1e-9) << i; // at a pole of a sphere there is no area
    }
}

TEST_P(SolidMeshes, GoRightWhereTheirTextureDoes)
{
    SolidMesh const mesh = make_solid(GetParam());
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        SolidVertex const& from = mesh.vertices[mesh.indices[i]];
        SolidVertex const& to = mesh.vertices[mesh.indices[i + 1]];
        if (to.u > from.u && to.v == from.v) {
            EXPECT_GE(dot(minus(vector(to.place), vector(from.place)), vector(from.right)), -1e-6) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Bodies, SolidMeshes,
                         testing::Values(Solid::kPlane, Solid::kSphere, Solid::kCylinder));

} // namespace
} // namespace umbrix_desktop
