// SPDX-License-Identifier: MIT
#include "foundation/vector_math.h"

#include "common/float_functions.h"
#include "common/ray_directions.h"
#include "common/rounding.h"

#include <cmath>

inline namespace umbrix_v0 {

using umbrixlib::detail::narrow;
using umbrixlib::detail::wide;

namespace {

/// a * b in double; exact, as the factors are floats.
double product(float a, float b)
{
    return wide(a) * wide(b);
}

/// N(sqrt(N(square))).
float root_of(double square)
{
    return narrow(std::sqrt(wide(narrow(square))));
}

float distance(float dx, float dy, float dz)
{
    return umbrixlib::detail::fabs(root_of(product(dx, dx) + product(dy, dy) + product(dz, dz)));
}

} // namespace

float* cross(float* const a, float* const b)
{
    // One object rather than an array, so that the scalar `delete` on the first float releases the whole
    // block.
    float3* const result = static_cast<float3*>(::operator new(sizeof(float3)));
    *result = {narrow(product(a[1], b[2]) - product(a[2], b[1])),
               narrow(product(a[2], b[0]) - product(a[0], b[2])),
               narrow(product(b[1], a[0]) - product(b[0], a[1]))};
    return &result->x;
}

float dot(float* const a, float* const b)
{
    return narrow(product(a[1], b[1]) + product(a[0], b[0]) + product(a[2], b[2]));
}

float length(float* const v)
{
    return root_of(product(v[1], v[1]) + product(v[0], v[0]) + product(v[2], v[2]));
}

float length(float x, float y, float z)
{
    return umbrixlib::detail::fabs(root_of(product(y, y) + product(x, x) + product(z, z)));
}

float length(float x1, float x2, float y1, float y2, float z1, float z2)
{
    return distance(narrow(wide(x1) - wide(x2)), narrow(wide(y1) - wide(y2)), narrow(wide(z1) - wide(z2)));
}

float length(float* const a, float* const b)
{
    return distance(narrow(wide(b[0]) - wide(a[0])), narrow(wide(b[1]) - wide(a[1])),
                    narrow(wide(b[2]) - wide(a[2])));
}

void normalize(float* const v)
{
    double const len = wide(umbrixlib::detail::fabs(length(v)));
    v[0] = narrow(wide(v[0]) / len);
    v[1] = narrow(wide(v[1]) / len);
    v[2] = narrow(wide(v[2]) / len);
}

float rsqrt(float x)
{
    return narrow(1.0 / wide(narrow(std::sqrt(wide(x)))));
}

float saturate(float x)
{
    if (x > 1.0f) {
        return 1.0f;
    }
    return 0.0f > x ? 0.0f : x;
}

float max_num(float a, float b)
{
    return a >= b ? a : b;
}

float torad(float degrees)
{
    return umbrixlib::detail::to_radians(degrees);
}

float3 operator++(float3 v)
{
    return {narrow(wide(v.x) + 1.0), narrow(wide(v.y) + 1.0), narrow(wide(v.z) + 1.0)};
}

float3 operator--(float3 v)
{
    return {narrow(wide(v.x) - 1.0), narrow(wide(v.y) - 1.0), narrow(wide(v.z) - 1.0)};
}

void limit_num(int& value, int limit)
{
    if (limit <= 0) {
        return;
    }
    if (value > limit) {
        value = (value - 1) % limit + 1;
    } else if (value < 0) {
        int const remainder = value % limit;
        value = remainder == 0 ? 0 : remainder + limit;
    }
}

void limit_num(float& value, float limit)
{
    if (limit <= 0.0f) {
        return;
    }
    auto const step = [&value](double by) {
        float const before = value;
        value = narrow(wide(value) + by);
        return value != before;
    };
    if (value > limit) {
        while (step(-wide(limit)) && value > limit) {
        }
    } else if (value < 0.0f) {
        while (step(wide(limit)) && value < 0.0f) {
        }
    }
}

} // namespace umbrix_v0
