// SPDX-License-Identifier: MIT
#include "textures_internal.h"
#include "tileable_noise.h"

#include <limits>

namespace umbrixlib::examples {
namespace {

constexpr int kColumns = 6;
constexpr int kRows = 8; // even: every second row is shifted by half a stone
constexpr double kHalfStone = 0.5 / kRows;

/// One stone of the endless pavement; the wrapped column and row give it its random traits.
class Stone {
public:
    Stone(int column, int row) : column_(column), row_(row) {}

    Stone neighbour(int columns, int rows) const { return {column_ + columns, row_ + rows}; }

    Point centre() const
    {
        double const shift = wrap(row_, 2) == 0 ? 0.25 : 0.75;
        return {(column_ + shift + 0.55 * (trait(1) - 0.5)) / kColumns,
                (row_ + 0.5 + 0.42 * (trait(2) - 0.5)) / kRows};
    }

    /// A number from 0 to 1 of this stone.
    double trait(std::uint32_t which) const
    {
        return cell_random(wrap(column_, kColumns), wrap(row_, kRows), 700 + which);
    }

private:
    int column_;
    int row_;
};

Point offset(Point from, Point to)
{
    return {to.x - from.x, to.y - from.y};
}

Stone nearest_stone(Point p)
{
    Stone const home(static_cast<int>(std::floor(p.x * kColumns)), static_cast<int>(std::floor(p.y * kRows)));
    Stone nearest = home;
    double nearest_distance = std::numeric_limits<double>::max();
    for (int rows = -2; rows <= 2; ++rows) {
        for (int columns = -2; columns <= 2; ++columns) {
            Stone const candidate = home.neighbour(columns, rows);
            double const distance = length(offset(p, candidate.centre()));
            if (distance < nearest_distance) {
                nearest_distance = distance;
                nearest = candidate;
            }
        }
    }
    return nearest;
}

/// Distance from @p p to the outline of @p stone in half stones. The neighbours' distances are joined by a
/// power mean in place of the least of them, which rounds the corners off.
double distance_to_outline(Point p, Stone const& stone)
{
    Point const centre = stone.centre();
    double closeness = 0.0;
    for (int rows = -2; rows <= 2; ++rows) {
        for (int columns = -2; columns <= 2; ++columns) {
            if (rows == 0 && columns == 0) {
                continue;
            }
            Point const other = stone.neighbour(columns, rows).centre();
            Point const across = offset(centre, other);
            Point const middle{0.5 * (centre.x + other.x), 0.5 * (centre.y + other.y)};
            Point const way = offset(p, middle);
            double const distance = (way.x * across.x + way.y * across.y) / (length(across) * kHalfStone);
            closeness += 1.0 / square(std::max(distance, 1e-6));
        }
    }
    return 2.0 / std::sqrt(closeness);
}

} // namespace

/// Worn stones in sand: each with a size, height and tilt of its own, broad rounded shoulders, shallow dents.
double cobbles(Point p)
{
    Point const place = warped(p, 0.012, 12, 3, 11);
    Stone const stone = nearest_stone(place);
    Point const from_centre = offset(stone.centre(), place);

    double const sand = 0.12 + 0.05 * fractal_noise(p, 12, 2, 31) + 0.04 * fractal_noise(p, 96, 2, 37);

    double const gap = 0.22 + 0.08 * stone.trait(5);
    double const inside = distance_to_outline(place, stone) - gap;
    double const shoulder = quarter_round(inside / mix(0.5, 0.75, stone.trait(6)));
    double const level = 0.78 + 0.2 * (stone.trait(3) - 0.5);
    double const tilt =
        1.6 * (from_centre.x * (stone.trait(7) - 0.5) + from_centre.y * (stone.trait(8) - 0.5));
    double const dents = 0.05 * fractal_noise(p, 24, 4, 41) + 0.018 * gradient_noise(p, 128, 128, 43);
    double const top = shoulder * (level + tilt + dents);
    return inside <= 0.0 ? sand : std::max(sand, top);
}

} // namespace umbrixlib::examples
