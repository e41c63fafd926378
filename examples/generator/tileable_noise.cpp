// SPDX-License-Identifier: MIT
#include "tileable_noise.h"

namespace umbrixlib::examples {
namespace {

/// Mixes the bits of @p value so that each bit of the result hangs on all of them.
std::uint32_t scrambled(std::uint32_t value)
{
    value ^= value >> 16;
    value *= 0x7feb352dU;
    value ^= value >> 15;
    value *= 0x846ca68bU;
    value ^= value >> 16;
    return value;
}

/// Ease of the interpolation between lattice points: slope and curvature are zero at both ends.
double faded(double t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

/// What the lattice point (@p x, @p y) contributes at the offset (@p dx, @p dy) from it.
double slope_at(int x, int y, double dx, double dy, std::uint32_t seed)
{
    double const turns = cell_random(x, y, seed);
    return cosine_of_turns(turns) * dx + sine_of_turns(turns) * dy;
}

} // namespace

double cell_random(int x, int y, std::uint32_t seed)
{
    std::uint32_t const hash =
        scrambled(static_cast<std::uint32_t>(x) +
                  scrambled(static_cast<std::uint32_t>(y) + scrambled(seed + 0x9e3779b9U)));
    return static_cast<double>(hash) / 4294967296.0;
}

double gradient_noise(Point p, int columns, int rows, std::uint32_t seed)
{
    double const x = p.x * columns;
    double const y = p.y * rows;
    double const dx = fraction(x);
    double const dy = fraction(y);
    int const left = wrap(static_cast<int>(std::floor(x)), columns);
    int const low = wrap(static_cast<int>(std::floor(y)), rows);
    int const right = wrap(left + 1, columns);
    int const high = wrap(low + 1, rows);
    double const below =
        mix(slope_at(left, low, dx, dy, seed), slope_at(right, low, dx - 1.0, dy, seed), faded(dx));
    double const above = mix(slope_at(left, high, dx, dy - 1.0, seed),
                             slope_at(right, high, dx - 1.0, dy - 1.0, seed), faded(dx));
    return 1.4 * mix(below, above, faded(dy));
}

double fractal_noise(Point p, int columns, int rows, int octaves, std::uint32_t seed)
{
    double sum = 0.0;
    double strength = 0.5;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += strength * gradient_noise(p, columns << octave, rows << octave,
                                         seed + static_cast<std::uint32_t>(octave));
        strength *= 0.5;
    }
    return sum * 1.4;
}

Point warped(Point p, double reach, int cells, int octaves, std::uint32_t seed)
{
    return {p.x + reach * fractal_noise(p, cells, octaves, seed),
            p.y + reach * fractal_noise(p, cells, octaves, seed + 100)};
}

} // namespace umbrixlib::examples
