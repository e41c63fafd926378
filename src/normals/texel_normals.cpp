// SPDX-License-Identifier: MIT
#include "normals/texel_normals.h"

#include "common/rounding.h"

#include <cmath>
#include <numbers>

namespace umbrixlib::detail {

namespace {

/// 1 / sqrt(@p square), rounded at every step.
float inverse_root(double square)
{
    float const root = narrow(std::sqrt(wide(narrow(square))));
    return narrow(1.0 / wide(root));
}

/// The tangent from a texel towards a neighbour.
struct Tangent {
    float rise;   ///< Height component of its unit vector.
    double angle; ///< Against its own half of the axis, 0 to pi / 2, the sign lost.

    Tangent(float neighbour, float centre)
    {
        float const difference = narrow(wide(neighbour) - wide(centre));
        float const run = inverse_root(1.0 + wide(difference) * wide(difference));
        rise = narrow(wide(run) * wide(difference));
        angle = wide(narrow(std::acos(wide(run))));
    }
};

/// Angle of the bisector of the tangents towards the neighbours on the @p plus and the @p minus side,
/// measured from the plus side of the axis. The expressions of the rows are alike in real numbers and not in
/// their last bits.
double bisector_angle(float plus, float minus, float centre)
{
    constexpr double kPi = std::numbers::pi;
    Tangent const p(plus, centre);
    Tangent const q(minus, centre);
    double const mean = (wide(plus) + wide(minus)) * 0.5;
    double const c = wide(centre);
    if (mean > c && q.rise >= 0.0f && p.rise >= 0.0f) { // valley
        return (kPi - (q.angle + p.angle)) * 0.5 + p.angle;
    }
    if (c >= mean && q.rise <= 0.0f && p.rise <= 0.0f) { // ridge, or flat
        return kPi - ((kPi - (q.angle + p.angle)) * 0.5 + p.angle);
    }
    if (c == mean && q.rise > 0.0f && p.rise < 0.0f) { // straight, falling
        return kPi / 2 - p.angle;
    }
    if (c == mean && q.rise < 0.0f && p.rise > 0.0f) { // straight, rising
        return p.angle + kPi / 2;
    }
    if (mean > c && q.rise > 0.0f && p.rise < 0.0f) { // falling, bent upwards
        return (kPi - q.angle + p.angle) * 0.5 - p.angle;
    }
    if (c > mean && q.rise < 0.0f && p.rise > 0.0f) { // rising, bent downwards
        return kPi - ((kPi - q.angle + p.angle) * 0.5 - p.angle);
    }
    if (mean > c && q.rise < 0.0f && p.rise > 0.0f) { // rising, bent upwards
        return (kPi - p.angle + q.angle) * 0.5 + p.angle;
    }
    if (c > mean && q.rise > 0.0f && p.rise < 0.0f) { // falling, bent downwards
        return kPi - ((kPi - p.angle + q.angle) * 0.5 + p.angle);
    }
    return 0.0;
}

} // namespace

} // namespace umbrixlib::detail

inline namespace umbrix_v0 {

using namespace umbrixlib::detail;

float3 GetNormal(float ym, float yp, float xp, float xm)
{
    float const x = narrow(wide(xm) - wide(xp));
    float const y = narrow(wide(ym) - wide(yp));
    float const inverse = inverse_root(wide(y) * wide(y) + wide(x) * wide(x) + 1.0);
    return {narrow(wide(inverse) * wide(x)), narrow(wide(inverse) * wide(y)), inverse};
}

float3 GetNormal(float ym, float yp, float xp, float xm, float c)
{
    double const a = bisector_angle(xp, xm, c);
    double const b = bisector_angle(yp, ym, c);
    return {narrow(std::cos(a)), narrow(std::cos(b)), narrow(std::sin(b) + std::sin(a))};
}

} // namespace umbrix_v0
