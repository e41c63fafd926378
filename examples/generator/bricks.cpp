// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

namespace umbrixlib::examples {
namespace {

constexpr int kColumns = 4;
constexpr int kRows = 12; // even: every second course is shifted by half a brick
constexpr double kHalfWidth = 0.5 / kColumns;
constexpr double kHalfHeight = 0.5 / kRows;
constexpr double kHalfJoint = 0.0062;

/// Distance from the outline of a box with rounded corners, positive inside.
double depth_in_box(Point from_centre, Point half_size, double corner)
{
    double const x = std::abs(from_centre.x) - half_size.x + corner;
    double const y = std::abs(from_centre.y) - half_size.y + corner;
    double const outside = length({std::max(x, 0.0), std::max(y, 0.0)});
    return corner - outside - std::min(std::max(x, y), 0.0);
}

} // namespace

/// Running bond. Bricks of slightly different size, height and tilt, with worn edges, chipped corners and
/// pores; mortar raked back into a hollow joint.
double bricks(Point p)
{
    int const course = static_cast<int>(std::floor(p.y * kRows));
    double const shift = wrap(course, 2) == 0 ? 0.25 : 0.75;
    int const column = static_cast<int>(std::floor(p.x * kColumns - shift));
    auto const trait = [&](std::uint32_t which) {
        return cell_random(wrap(column, kColumns), wrap(course, kRows), 300 + which);
    };
    Point const centre{(column + shift + 0.5) / kColumns, (course + 0.5) / kRows};
    Point const from_centre{p.x - centre.x, p.y - centre.y};

    double const slant = 0.03 * (trait(1) - 0.5);
    Point const turned{from_centre.x - slant * from_centre.y - 0.002 * (trait(2) - 0.5),
                       from_centre.y + slant * from_centre.x - 0.002 * (trait(3) - 0.5)};
    Point const half_size{kHalfWidth - kHalfJoint - 0.0025 * trait(4),
                          kHalfHeight - kHalfJoint - 0.002 * trait(5)};
    double const wear =
        0.0024 * fractal_noise(p, 40, 3, 51) - 0.009 * smooth_step(0.25, 0.7, fractal_noise(p, 26, 2, 53));
    double const inside = depth_in_box(turned, half_size, 0.009) + wear;

    double const grain = 0.035 * fractal_noise(p, 64, 3, 61) + 0.05 * fractal_noise(p, 10, 20, 2, 63);
    double const pores = mix(0.03, 0.12, trait(9)) * smooth_step(0.3, 0.7, fractal_noise(p, 56, 3, 67));
    double const level = 0.82 + 0.2 * (trait(6) - 0.5);
    double const tilt = 1.0 * from_centre.x * (trait(7) - 0.5) + 1.6 * from_centre.y * (trait(8) - 0.5);
    double const face = level + tilt + grain - pores;

    double const hollow = 0.1 * unit_clamp(-inside / kHalfJoint);
    double const mortar =
        0.36 - hollow + 0.06 * fractal_noise(p, 32, 2, 71) + 0.06 * fractal_noise(p, 110, 2, 73);
    double const edge = quarter_round(inside / 0.011);
    return inside <= 0.0 ? mortar : std::max(mortar, mix(0.3, face, edge));
}

} // namespace umbrixlib::examples
