// SPDX-License-Identifier: MIT
/// @file
/// Normals to the light from three directions.
#pragma once
#include "kernels/dialect.h"

BEGIN_KERNELS

enum LightResponse { kPlain = 0, kFlatIsFull = 2, kSquared = 3 };

/// Light along one basis vector on a surface with the normal (x, y, z). The products are exact, the sum is
/// rounded once.
FN float light_along(float x, float y, float z, float basis_x, float basis_y, float basis_z, int response)
{
    double const light =
        (double)y * (double)basis_y + (double)x * (double)basis_x + (double)z * (double)basis_z;
    double const lit = light < 0.0 ? 0.0 : light;
    if (response == kFlatIsFull) {
        return (float)(lit / (double)basis_z);
    }
    if (response == kSquared) {
        return (float)(lit * lit);
    }
    return (float)light;
}

KERNEL light_normals(ITEM GLOBAL float* image, Index count, int response, float ax, float ay, float az,
                     float bx, float by, float bz, float cx, float cy, float cz)
{
    Index const i = GID0;
    if (i >= count) {
        return;
    }
    float const x = image[3 * i];
    float const y = image[3 * i + 1];
    float const z = image[3 * i + 2];
    image[3 * i] = light_along(x, y, z, cx, cy, cz, response);
    image[3 * i + 1] = light_along(x, y, z, bx, by, bz, response);
    image[3 * i + 2] = light_along(x, y, z, ax, ay, az, response);
}

END_KERNELS
