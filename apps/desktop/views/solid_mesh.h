// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace umbrix_desktop {

/// A body that a map is put on.
enum class Solid { kPlane, kSphere, kCylinder };

/// A point of a surface, as the graphics processor gets it.
struct SolidVertex {
    float place[3];
    float normal[3];
    float right[3]; ///< Where the texture's right is; a unit vector, square to the normal.
    float u;        ///< Place in the texture, a whole number a tile; v is 0 at the bottom.
    float v;
};

/// Triangles, three indices each, counterclockwise seen from outside.
struct SolidMesh {
    std::vector<SolidVertex> vertices;
    std::vector<std::uint32_t> indices;
};

/// A body about as large as a sphere of radius 1 around 0. A map has one tile from bottom to top; around a
/// sphere it has two and around a cylinder three, so that its texels are about square.
SolidMesh make_solid(Solid solid);

} // namespace umbrix_desktop
